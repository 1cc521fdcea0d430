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

// The panes are hand-drawn, yet every row tiles the canvas: no two panes share area and together they
// cover it all. A mistyped figure shows up as an overlap, a gap or a pane out of the canvas.
TEST(CollageLayoutCatalogueTest, EveryRowTilesTheCanvasWithoutGapOrOverlap) {
    const QRectF canvas(0, 0, 1, 1);
    for (CollageLayoutOption option : allCases<CollageLayoutOption>()) {
        const std::string name = layoutOptionName(option).toStdString();
        const auto rects = paneRects(option);
        double area = 0;
        for (std::size_t i = 0; i < rects.size(); ++i) {
            const QRectF& r = rects[i];
            EXPECT_GE(r.left(), 0.0) << name;
            EXPECT_GE(r.top(), 0.0) << name;
            EXPECT_GT(r.width(), 0.0) << name;
            EXPECT_GT(r.height(), 0.0) << name;
            EXPECT_LE(r.bottom(), 1.0 + 1e-12) << name;
            const QRectF inside = r.intersected(canvas);
            area += inside.width() * inside.height();
            for (std::size_t j = i + 1; j < rects.size(); ++j) {
                const QRectF shared = r.intersected(rects[j]);
                EXPECT_LT(shared.width() * shared.height(), 1e-9) << name << " panes " << i << " and " << j;
            }
        }
        // One row leaves a thin strip under its first column uncovered.
        const double uncovered = option == CollageLayoutOption::sixSeventeenLayout ? 0.34 * 0.01 : 0.0;
        EXPECT_NEAR(area, 1.0 - uncovered, 1e-9) << name;
    }
}

TEST(CollageLayoutCatalogueTest, OverhangingPanesAreKeptUnclamped) {
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::sixEighteenLayout, 5).right(), 1.04);
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::fiveTopTwoColumnsBottomThreeColumns, 4).right(), 1.001);
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::sixSeventeenLayout, 3).right(), 1.01);
    // The fifth pane starts a little below the row above it ends.
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::sixSeventeenLayout, 4).top(), 0.34);
    EXPECT_DOUBLE_EQ(pane(CollageLayoutOption::sixSeventeenLayout, 0).bottom(), 0.33);

    // No other pane reaches past the right edge.
    int overhanging = 0;
    for (CollageLayoutOption option : allCases<CollageLayoutOption>())
        for (const QRectF& r : paneRects(option))
            overhanging += r.right() > 1.0 + 1e-12;
    EXPECT_EQ(overhanging, 3);
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

// Each ratio agrees with its name and shape: "a:b" is a over b, the portrait shapes are taller than
// wide, and shapes made for two sites alike are the same number.
TEST(CollageAspectRatioCatalogueTest, EveryRatioMatchesItsName) {
    for (CollageAspectRatioOption option : allCases<CollageAspectRatioOption>()) {
        const QString name = displayName(option);
        const QStringList parts = name.split(QLatin1Char(':'));
        if (parts.size() == 2) {
            ASSERT_TRUE(ratio(option).has_value()) << name.toStdString();
            EXPECT_EQ(*ratio(option), parts[0].toDouble() / parts[1].toDouble()) << name.toStdString();
        }
    }
    using R = CollageAspectRatioOption;
    for (R tall : {R::instagramStory, R::pinterest, R::a4, R::a5, R::portrait3x4, R::portrait1x2})
        EXPECT_LT(ratio(tall).value_or(1.0), 1.0) << displayName(tall).toStdString();
    for (R wide : {R::facebookEvent, R::youtube, R::twitterHeader, R::linkedin, R::landscape5x4})
        EXPECT_GT(ratio(wide).value_or(1.0), 1.0) << displayName(wide).toStdString();
    EXPECT_EQ(ratio(R::facebookPost), 1.0);
    EXPECT_EQ(ratio(R::twitterHeader), 3.0);
    EXPECT_EQ(ratio(R::facebook2x1), ratio(R::twitter2x1));
    EXPECT_EQ(ratio(R::youtube), ratio(R::youtubeCover));
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
