#include "collage/CollageAspectRatioOption.h"
#include "collage/CollageLayoutOption.h"
#include "collage/CollageTools.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <map>
#include <ostream>
#include <set>

void PrintTo(const QRectF& r, std::ostream* os) {
    *os << "(" << r.x() << ", " << r.y() << ", " << r.width() << ", " << r.height() << ")";
}

namespace {

QRectF pane(CollageLayoutOption option, int index) {
    return paneRects(option).at(index);
}

} // namespace

TEST(CollageLayoutCatalogueTest, CasesAreOrderedAndCountedByPaneNumber) {
    const auto cases = allCases<CollageLayoutOption>();
    ASSERT_EQ(cases.size(), 127u);
    std::map<int, int> casesPerPaneCount;
    std::set<QString> names;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(cases[i]), i);
        const int count = static_cast<int>(paneRects(cases[i]).size());
        EXPECT_EQ(count, paneCount(cases[i]));
        ++casesPerPaneCount[count];
        names.insert(layoutOptionName(cases[i]));
    }
    EXPECT_EQ(casesPerPaneCount,
              (std::map<int, int>{{2, 6}, {3, 10}, {4, 20}, {5, 24}, {6, 21}, {7, 22}, {8, 24}}));
    EXPECT_EQ(names.size(), 127u);
    EXPECT_EQ(layoutOptionName(cases.front()), "twoColumnsEqual");
    EXPECT_EQ(layoutOptionName(cases.back()), "eightLayoutTwentyFour");
    EXPECT_EQ(layoutOptionName(CollageLayoutOption::sixSeventeenLayout), "sixSeventeenLayout");
}

// The panes are hand-drawn, but each row still covers the canvas about once; a mistyped figure shows up
// as a gap or an overlap far larger than the drawings' own slack.
TEST(CollageLayoutCatalogueTest, EveryRowCoversTheCanvasAboutOnce) {
    for (CollageLayoutOption option : allCases<CollageLayoutOption>()) {
        double area = 0;
        for (const QRectF& r : paneRects(option)) {
            EXPECT_GE(r.left(), 0.0) << layoutOptionName(option).toStdString();
            EXPECT_GE(r.top(), 0.0) << layoutOptionName(option).toStdString();
            EXPECT_GT(r.width(), 0.0) << layoutOptionName(option).toStdString();
            EXPECT_GT(r.height(), 0.0) << layoutOptionName(option).toStdString();
            EXPECT_LE(r.bottom(), 1.0 + 1e-12) << layoutOptionName(option).toStdString();
            area += r.width() * r.height();
        }
        EXPECT_NEAR(area, 1.0, 0.015) << layoutOptionName(option).toStdString();
    }
}

TEST(CollageLayoutCatalogueTest, OverhangingPanesAreKeptUnclamped) {
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::sixEighteenLayout, 5).right(), 1.04);
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::fiveTopTwoColumnsBottomThreeColumns, 4).right(), 1.001);
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::sixSeventeenLayout, 3).right(), 1.01);
    // The fifth pane starts a little below the row above it ends.
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::sixSeventeenLayout, 4).top(), 0.34);
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::sixSeventeenLayout, 0).bottom(), 0.33);

    double widest = 0;
    for (CollageLayoutOption option : allCases<CollageLayoutOption>())
        for (const QRectF& r : paneRects(option))
            widest = std::max(widest, r.right());
    EXPECT_DOUBLE_EQ(widest, 1.04);
}

TEST(CollageLayoutCatalogueTest, SpotRowsKeepTheirDrawnValuesAndPaneOrder) {
    EXPECT_EQ(paneRects(CollageLayoutOption::threeColumnsEqual),
              (std::vector<QRectF>{{0, 0, 1.0 / 3, 1}, {1.0 / 3, 0, 1.0 / 3, 1}, {2.0 / 3, 0, 1.0 / 3, 1}}));
    EXPECT_EQ(pane(CollageLayoutOption::threeColumnsEqual, 1).x(), 1.0 / 3);
    EXPECT_EQ(pane(CollageLayoutOption::threeColumnsEqual, 2).width(), 1.0 / 3);

    // The large right pane comes first.
    EXPECT_EQ(paneRects(CollageLayoutOption::fourRightLargeStackedLeftBottomThin),
              (std::vector<QRectF>{{0.383, 0, 0.617, 0.665},
                                   {0, 0, 0.383, 0.464},
                                   {0, 0.464, 0.383, 0.536},
                                   {0.383, 0.665, 0.617, 0.335}}));
    EXPECT_EQ(paneRects(CollageLayoutOption::twoColumnsEqualGap),
              (std::vector<QRectF>{{0, 0, 0.4, 1}, {0.4, 0, 0.6, 1}}));
    EXPECT_EQ(pane(CollageLayoutOption::sevenLayoutEight, 4), QRectF(0.763, 0.254, 0.237, 0.272));
    EXPECT_EQ(pane(CollageLayoutOption::eightLayoutTwentyFour, 7), QRectF(0.75, 0.78, 0.25, 0.22));
    EXPECT_EQ(pane(CollageLayoutOption::fiveLeftFourRowsRightFull, 4), QRectF(0.499, 0, 0.501, 1));
}

TEST(CollageAspectRatioCatalogueTest, RatiosAreTheExactQuotients) {
    const auto cases = allCases<CollageAspectRatioOption>();
    ASSERT_EQ(cases.size(), 17u);
    EXPECT_EQ(cases.front(), CollageAspectRatioOption::original);
    EXPECT_EQ(cases.back(), CollageAspectRatioOption::landscape5x4);

    EXPECT_FALSE(ratio(CollageAspectRatioOption::original).has_value());
    EXPECT_EQ(ratio(CollageAspectRatioOption::facebookEvent), 1.910828025477707);
    EXPECT_EQ(ratio(CollageAspectRatioOption::a4), 0.7070707070707071);
    EXPECT_EQ(ratio(CollageAspectRatioOption::a5), 0.7047619047619048);
    EXPECT_EQ(ratio(CollageAspectRatioOption::landscape4x3), 4.0 / 3.0);
    EXPECT_EQ(ratio(CollageAspectRatioOption::pinterest), 2.0 / 3.0);
    EXPECT_EQ(ratio(CollageAspectRatioOption::youtube), 16.0 / 9.0);
    EXPECT_EQ(ratio(CollageAspectRatioOption::youtubeCover), 16.0 / 9.0);
    EXPECT_EQ(ratio(CollageAspectRatioOption::instagramStory), 0.5625);
    EXPECT_EQ(ratio(CollageAspectRatioOption::linkedin), 4.0);
}

TEST(CollageAspectRatioCatalogueTest, NamesAndBadges) {
    QStringList names;
    for (CollageAspectRatioOption option : allCases<CollageAspectRatioOption>())
        names << displayName(option);
    EXPECT_EQ(names, QStringList({"Original", "3:4", "4:3", "Event", "Post", "2:1", "YouTube", "Story", "2:1",
                                  "Header", "Linkedin", "Pinterest", "Cover", "A4", "A5", "1:2", "5:4"}));
    // The two "2:1" shapes are told apart only by their brands.
    EXPECT_EQ(brandIconName(CollageAspectRatioOption::facebook2x1), QString("f.square.fill"));
    EXPECT_EQ(brandIconName(CollageAspectRatioOption::twitter2x1), QString("x.square.fill"));
    EXPECT_EQ(brandIconName(CollageAspectRatioOption::instagramStory), QString("camera.aperture"));
    for (auto plain : {CollageAspectRatioOption::original, CollageAspectRatioOption::a4,
                       CollageAspectRatioOption::portrait1x2, CollageAspectRatioOption::landscape5x4})
        EXPECT_FALSE(brandIconName(plain).has_value());
}

TEST(CollageToolCatalogueTest, ToolsActionsAndPanelsInBarOrder) {
    QStringList tools;
    for (CollageTool tool : allCases<CollageTool>())
        tools << title(tool) + "|" + symbolName(tool);
    EXPECT_EQ(tools, QStringList({"Feather|wind", "Ratio|rectangle.split.2x1", "Layout|square.grid.2x2",
                                  "Transform|arrow.left.and.right.righttriangle.left.righttriangle.right",
                                  "Reset|arrow.counterclockwise", "Delete|trash"}));
    QStringList actions;
    for (CollageTransformAction action : allCases<CollageTransformAction>())
        actions << title(action) + "|" + symbolName(action);
    EXPECT_EQ(
        actions,
        QStringList({"Import|square.and.arrow.down", "Swap|arrow.2.squarepath", "Rotate|arrow.clockwise",
                     "Flip|arrow.left.and.right.righttriangle.left.righttriangle.right", "Crop|crop"}));
    EXPECT_EQ(allCases<OptionsPanel>().size(), 4u);
    EXPECT_EQ(allCases<OptionsPanel>()[1], OptionsPanel::layout);

    for (CollageTool tool : allCases<CollageTool>())
        EXPECT_EQ(toolDisplayable(tool).isDestructive, tool == CollageTool::delete_);
}
