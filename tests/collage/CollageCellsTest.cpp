#include "collage/AspectRatioOptionCell.h"
#include "collage/CollageCellStyle.h"
#include "collage/LayoutOptionCell.h"
#include "collage/LayoutThumbnailView.h"
#include "collage/SymbolIconView.h"
#include "collage/ToolButtonCell.h"
#include "collage/TransformActionCell.h"
#include "platform/Assets.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <map>

namespace {

QImage render(QWidget& widget) {
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

int paintedPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) != 0;
    return count;
}

} // namespace

TEST(LayoutThumbnailViewTest, NothingIsDrawnWithoutAnOption) {
    EXPECT_FALSE(LayoutThumbnailView::strokes(std::nullopt, QRectF(0, 0, 40, 40)));
    LayoutThumbnailView view;
    view.resize(40, 40);
    EXPECT_EQ(paintedPixels(render(view)), 0);
    view.setOption(CollageLayoutOption::fourEqualGrid);
    EXPECT_GT(paintedPixels(render(view)), 0);
}

TEST(LayoutThumbnailViewTest, StrokesTheInsetOutlineAndOnlyInteriorEdges) {
    const auto columns =
        LayoutThumbnailView::strokes(CollageLayoutOption::twoColumnsEqual, QRectF(0, 0, 102, 52));
    ASSERT_TRUE(columns);
    EXPECT_EQ(columns->outline, QRectF(1, 1, 100, 50));
    // The shared edge once from each side, nothing on the border.
    EXPECT_EQ(columns->edges, (std::vector<QLineF>{{51, 1, 51, 51}, {51, 1, 51, 51}}));

    const auto grid = LayoutThumbnailView::strokes(CollageLayoutOption::fourEqualGrid, QRectF(0, 0, 42, 42));
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->edges.size(), 8u);

    // A pane that overhangs the right edge has no right edge of its own, but its top still reaches out.
    const auto overhang =
        LayoutThumbnailView::strokes(CollageLayoutOption::sixEighteenLayout, QRectF(0, 0, 102, 102));
    ASSERT_TRUE(overhang);
    const QLineF top = overhang->edges.back();
    EXPECT_DOUBLE_EQ(top.y1(), 71.0);
    EXPECT_DOUBLE_EQ(top.x2(), 1 + 1.04 * 100);
}

TEST(LayoutThumbnailViewTest, NoLayoutStrokesAnEdgeOverTheOutline) {
    const QRectF bounds(0, 0, 62, 62);
    for (CollageLayoutOption option : allCases<CollageLayoutOption>()) {
        const auto lines = LayoutThumbnailView::strokes(option, bounds);
        ASSERT_TRUE(lines);
        const QRectF r = lines->outline;
        for (const QLineF& edge : lines->edges) {
            if (edge.x1() == edge.x2()) {
                EXPECT_GT(edge.x1(), r.left() + 0.05) << layoutOptionName(option).toStdString();
                EXPECT_LT(edge.x1(), r.right() - 0.05) << layoutOptionName(option).toStdString();
            } else {
                EXPECT_GT(edge.y1(), r.top() + 0.05) << layoutOptionName(option).toStdString();
                EXPECT_LT(edge.y1(), r.bottom() - 0.05) << layoutOptionName(option).toStdString();
            }
        }
    }
}

TEST(LayoutOptionCellTest, ShowsItsLayoutAndSelection) {
    LayoutOptionCell cell;
    cell.resize(64, 64);
    EXPECT_FALSE(cell.thumbnailView()->option());
    cell.configure(CollageLayoutOption::sevenLayoutTen, true);
    EXPECT_EQ(cell.thumbnailView()->geometry(), QRect(12, 12, 40, 40));
    EXPECT_EQ(cell.thumbnailView()->option(), CollageLayoutOption::sevenLayoutTen);
    EXPECT_EQ(cell.borderWidth(), 2.0);
    EXPECT_EQ(cell.borderColor(), CollageCellStyle::systemBlue());
    cell.configure(CollageLayoutOption::twoRowsEqual, false);
    EXPECT_EQ(cell.borderWidth(), 1.0);
    EXPECT_EQ(cell.borderColor().alphaF(), QColor::fromRgbF(1, 1, 1, 0.08f).alphaF());

    int taps = 0;
    cell.onTap = [&] { ++taps; };
    QTest::mouseClick(&cell, Qt::LeftButton, {}, QPoint(32, 32));
    EXPECT_EQ(taps, 1);
}

TEST(AspectRatioOptionCellTest, OutlineKeepsTheShapeWithinLimits) {
    EXPECT_EQ(AspectRatioOptionCell::outlineSize(std::nullopt), QSizeF(26, 26));
    EXPECT_EQ(AspectRatioOptionCell::outlineSize(1.0), QSizeF(26, 26));
    EXPECT_EQ(AspectRatioOptionCell::outlineSize(4.0), QSizeF(26, 8)); // 6.5 raised to the minimum
    EXPECT_EQ(AspectRatioOptionCell::outlineSize(2.0), QSizeF(26, 13));
    EXPECT_EQ(AspectRatioOptionCell::outlineSize(0.75), QSizeF(19.5, 26));
    EXPECT_EQ(AspectRatioOptionCell::outlineSize(0.1), QSizeF(8, 26));
}

TEST(AspectRatioOptionCellTest, BadgesTellTheSameNamesApart) {
    AspectRatioOptionCell facebook, twitter, original;
    facebook.configure(CollageAspectRatioOption::facebook2x1, false);
    twitter.configure(CollageAspectRatioOption::twitter2x1, false);
    original.configure(CollageAspectRatioOption::original, false);
    EXPECT_EQ(facebook.title(), "2:1");
    EXPECT_EQ(twitter.title(), "2:1");
    EXPECT_FALSE(facebook.brandBadgeView()->isHidden());
    EXPECT_FALSE(twitter.brandBadgeView()->isHidden());
    EXPECT_NE(facebook.brandIconView()->symbolName(), twitter.brandIconView()->symbolName());
    EXPECT_TRUE(original.brandBadgeView()->isHidden());
    EXPECT_EQ(original.currentOutlineSize(), QSizeF(26, 26));
    // Badge, outline and title keep apart in a 64-point cell, whatever the shape.
    twitter.resize(64, 64);
    for (CollageAspectRatioOption option : allCases<CollageAspectRatioOption>()) {
        twitter.configure(option, false);
        const QRect badge = twitter.brandBadgeView()->geometry();
        const QRectF outline = twitter.outlineRect();
        EXPECT_TRUE(QRectF(twitter.rect()).contains(QRectF(badge))) << displayName(option).toStdString();
        EXPECT_FALSE(QRectF(badge).intersects(outline)) << displayName(option).toStdString();
        EXPECT_LE(outline.bottom(), twitter.titleRect().top()) << displayName(option).toStdString();
        EXPECT_GE(outline.top(), 0.0);
    }
    twitter.configure(CollageAspectRatioOption::twitter2x1, false);

    // Reusing a cell for a shape without a brand hides the badge again.
    facebook.configure(CollageAspectRatioOption::a4, true);
    EXPECT_TRUE(facebook.brandBadgeView()->isHidden());
    EXPECT_EQ(facebook.titleColor(), CollageCellStyle::systemBlue());
    EXPECT_EQ(facebook.borderWidth(), 2.0);
    EXPECT_NEAR(facebook.cardBackgroundColor().alphaF(), 0.16, 0.005);
    EXPECT_EQ(twitter.titleColor(), QColor(Qt::white));
    EXPECT_NEAR(twitter.cardBackgroundColor().alphaF(), 0.05, 0.005);

    // Missing brand pictures fall back to a letter: the cell still paints.
    EXPECT_GT(paintedPixels(render(twitter)), 0);
}

TEST(ToolButtonCellTest, GeometryAndTint) {
    ToolButtonCell cell;
    EXPECT_EQ(cell.size(), QSize(72, 64));
    cell.configure(CollageTool::feather, false);
    EXPECT_EQ(cell.title(), "Feather");
    EXPECT_EQ(cell.tintColor(), QColor(Qt::white));
    cell.configure(CollageTool::feather, true);
    EXPECT_EQ(cell.tintColor(), QColor(10, 132, 255));
    for (bool selected : {false, true}) {
        cell.configure(CollageTool::delete_, selected);
        EXPECT_EQ(cell.tintColor(), QColor(255, 69, 58));
    }
    const QRectF icon = cell.iconRect();
    const QRectF title = cell.titleRect();
    EXPECT_EQ(icon.size(), QSizeF(22, 22));
    EXPECT_DOUBLE_EQ(icon.center().x(), 36.0);
    EXPECT_DOUBLE_EQ(title.top() - icon.bottom(), 6.0);
    EXPECT_GE(title.left(), 4.0);
    EXPECT_LE(title.right(), 68.0);
    EXPECT_NEAR(icon.top(), 64 - title.bottom(), 0.5); // the stack is centred
    EXPECT_EQ(cell.titleFont().pixelSize(), 12);
    EXPECT_EQ(cell.fittedTitleFont().pixelSize(), 12);

    // A title wider than the cell at 12 is set smaller until it fits, not cut; past 10 it is elided.
    cell.configure(ToolDisplayable{"Background", "photo.on.rectangle.angled"}, false);
    const QFont fitted = cell.fittedTitleFont();
    EXPECT_LE(QFontMetricsF(fitted).horizontalAdvance("Background"), title.width());
    EXPECT_GE(fitted.pixelSize(), 10);
    cell.configure(ToolDisplayable{"Backgrounds and more", "photo"}, false);
    EXPECT_EQ(cell.fittedTitleFont().pixelSize(), 10);
}

// With a symbol picture installed, the icon is drawn in the tool's tint, not in its own colour.
TEST(ToolButtonCellTest, SymbolPicturesAreTinted) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    QImage glyph(22, 22, QImage::Format_ARGB32);
    glyph.fill(Qt::black);
    ASSERT_TRUE(glyph.save(folder.filePath("trash.png")));
    Assets::setSearchPaths({folder.path()});

    ToolButtonCell cell;
    cell.configure(CollageTool::delete_, false);
    const QImage picture = render(cell);
    const QRgb centre = picture.pixel(cell.iconRect().center().toPoint());
    EXPECT_EQ(qRed(centre), 255);
    EXPECT_EQ(qGreen(centre), 69);
    EXPECT_EQ(qBlue(centre), 58);

    // An uninstalled symbol leaves a quiet placeholder, not the tint over the whole icon.
    cell.configure(CollageTool::feather, false);
    const QImage placeholder = render(cell);
    EXPECT_EQ(qAlpha(placeholder.pixel(cell.iconRect().center().toPoint())), 0);

    Assets::resetSearchPaths();
}

TEST(TransformActionCellTest, DividerAndSelectionMarks) {
    TransformActionCell first, second;
    first.configure(CollageTransformAction::importImages, false, false);
    second.configure(CollageTransformAction::crop, false, true);
    EXPECT_EQ(first.title(), "Import");
    EXPECT_EQ(second.symbolName(), "crop");
    EXPECT_FALSE(first.isLeadingDividerVisible());
    EXPECT_TRUE(second.isLeadingDividerVisible());
    EXPECT_FALSE(second.isSelectionRingVisible());
    EXPECT_FALSE(second.isSelectionDotVisible());
    second.configure(CollageTransformAction::crop, true, true);
    EXPECT_TRUE(second.isSelectionRingVisible());
    EXPECT_TRUE(second.isSelectionDotVisible());

    EXPECT_TRUE(QRectF(second.rect()).contains(second.titleRect()));
    EXPECT_TRUE(QRectF(second.rect()).contains(second.selectionDotRect()));
    EXPECT_GT(paintedPixels(render(second)), 0);
}

namespace {

// The brand badge of a ratio cell as a dark panel shows it at scale 1.
QImage badgeAtScaleOne(CollageAspectRatioOption option) {
    QWidget panel;
    panel.setStyleSheet(QStringLiteral("background: rgb(28, 28, 28);"));
    panel.resize(64, 64);
    auto* cell = new AspectRatioOptionCell(&panel);
    cell->setGeometry(0, 0, 64, 64);
    cell->configure(option, false);
    panel.show();
    const QImage image = panel.grab().toImage();
    EXPECT_EQ(image.devicePixelRatio(), 1.0);
    return image.copy(cell->brandBadgeView()->geometry());
}

} // namespace

TEST(AspectRatioOptionCellTest, BrandBadgesAreReadableAtScaleOneAndEachBrandLooksItsOwn) {
    std::map<QString, QImage> badges;
    for (CollageAspectRatioOption option : allCases<CollageAspectRatioOption>()) {
        const auto brand = brandIconName(option);
        if (!brand)
            continue;
        const QImage badge = badgeAtScaleOne(option);
        ASSERT_GE(badge.width(), 16);
        ASSERT_EQ(badge.width(), badge.height());
        // A light mark on a darker ground, each clearly there, the mark neither a speck nor a blob.
        int light = 0, ground = 0;
        QRect mark;
        for (int y = 0; y < badge.height(); ++y)
            for (int x = 0; x < badge.width(); ++x) {
                const int grey = qGray(badge.pixel(x, y));
                if (grey >= 200) {
                    ++light;
                    mark |= QRect(x, y, 1, 1);
                } else if (grey <= 140) {
                    ++ground;
                }
            }
        const int area = badge.width() * badge.height();
        EXPECT_GE(light, area / 12) << brand->toStdString();
        EXPECT_LE(light, area / 2) << brand->toStdString();
        EXPECT_GE(ground, area * 2 / 5) << brand->toStdString();
        EXPECT_GE(mark.height(), badge.height() * 3 / 8) << brand->toStdString();
        badges[*brand] = badge;
    }
    ASSERT_EQ(badges.size(), 6u);
    // Every brand differs from every other at a glance, not by a pixel or two.
    for (auto a = badges.begin(); a != badges.end(); ++a)
        for (auto b = std::next(a); b != badges.end(); ++b) {
            double difference = 0;
            for (int y = 0; y < a->second.height(); ++y)
                for (int x = 0; x < a->second.width(); ++x) {
                    const QRgb p = a->second.pixel(x, y), q = b->second.pixel(x, y);
                    difference += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                                  std::abs(qBlue(p) - qBlue(q));
                }
            difference /= 3.0 * a->second.width() * a->second.height();
            EXPECT_GE(difference, 30.0) << a->first.toStdString() << " and " << b->first.toStdString();
        }
}
