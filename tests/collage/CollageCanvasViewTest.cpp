#include "collage/CollageCanvasView.h"
#include "collage/CollageBackdropPaneView.h"
#include "platform/Screen.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace {

ImagePtr solid(const QColor& color, QSize size = QSize(300, 400)) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return Image::make(image);
}

std::vector<ImagePtr> photos(int count) {
    std::vector<ImagePtr> result;
    for (int i = 0; i < count; ++i)
        result.push_back(solid(QColor::fromHsv((i * 45) % 360, 200, 220)));
    return result;
}

struct Canvas {
    CollageCanvasView view;
    explicit Canvas(QSize size = QSize(390, 520)) {
        view.resize(size);
        view.show();
    }
    bool settle() {
        return testsupport::waitUntil([this] { return !view.hasPendingWork(); }, 10000);
    }
};

TEST(CollageCanvas, EightPhotosOnAFourPaneLayoutBecomeEqualColumns) {
    Canvas canvas(QSize(400, 500));
    canvas.view.configure(photos(8), CollageLayoutOption::fourEqualGrid);
    const auto& panes = canvas.view.paneViews();
    ASSERT_EQ(panes.size(), 8u);
    for (int i = 0; i < 8; ++i) {
        const QRectF frame = panes[i]->frame();
        EXPECT_DOUBLE_EQ(frame.width(), 400.0 / 8 + 50) << i;
        EXPECT_DOUBLE_EQ(frame.height(), 500.0 + 50) << i;
        EXPECT_DOUBLE_EQ(frame.left(), (i == 0 ? 0.0 : 400.0 * i / 8) - 25) << i;
        EXPECT_EQ(canvas.view.backdropViews()[i]->frame(), frame);
    }
    EXPECT_EQ(canvas.view.selectedIndex(), 0);
    EXPECT_TRUE(panes[0]->isSelected());
    EXPECT_EQ(canvas.view.zOrder(), (std::vector<int>{7, 6, 5, 4, 3, 2, 1, 0}));
}

TEST(CollageCanvas, PanesOverhangTheirLayoutRectangleOnBothAxes) {
    // Rows and columns on a canvas that is not square: each axis takes its own side.
    Canvas canvas(QSize(400, 300));
    canvas.view.configure(photos(4), CollageLayoutOption::fourEqualGrid);
    const auto& panes = canvas.view.paneViews();
    ASSERT_EQ(panes.size(), 4u);
    EXPECT_EQ(panes[0]->frame(), QRectF(-25, -25, 250, 200));
    EXPECT_EQ(panes[1]->frame(), QRectF(175, -25, 250, 200));
    EXPECT_EQ(panes[2]->frame(), QRectF(-25, 125, 250, 200));
    EXPECT_EQ(panes[3]->frame(), QRectF(175, 125, 250, 200));
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(canvas.view.backdropViews()[i]->frame(), panes[i]->frame()) << i;

    canvas.view.configure(photos(3), CollageLayoutOption::threeTopFullBottomSplitRight);
    EXPECT_EQ(canvas.view.paneViews()[2]->frame(),
              QRectF(400 * 0.7 - 25, 300 * 0.55 - 25, 400 * 0.3 + 50, 300 * 0.45 + 50));
    // A new size moves them along, backdrops with them.
    canvas.view.resize(300, 400);
    EXPECT_EQ(canvas.view.paneViews()[2]->frame(),
              QRectF(300 * 0.7 - 25, 400 * 0.55 - 25, 300 * 0.3 + 50, 400 * 0.45 + 50));
    EXPECT_EQ(canvas.view.backdropViews()[2]->frame(), canvas.view.paneViews()[2]->frame());
}

TEST(CollageCanvas, ABackdropCarriesItsPanesFeathersAndNoOther) {
    Canvas canvas;
    canvas.view.configure(photos(3), CollageLayoutOption::threeColumnsEqual);
    const auto& panes = canvas.view.paneViews();
    const auto& backdrops = canvas.view.backdropViews();
    canvas.view.selectPane(1);
    EXPECT_FALSE(panes[0]->isSelected());
    EXPECT_TRUE(panes[1]->isSelected());
    canvas.view.setSelectedPaneFeather(70, 5);
    for (int i = 0; i < 3; ++i) {
        const double h = i == 1 ? 70 : 25, v = i == 1 ? 5 : 25;
        EXPECT_DOUBLE_EQ(panes[i]->horizontalFeather(), h) << i;
        EXPECT_DOUBLE_EQ(panes[i]->verticalFeather(), v) << i;
        EXPECT_DOUBLE_EQ(backdrops[i]->horizontalFeather(), h) << i;
        EXPECT_DOUBLE_EQ(backdrops[i]->verticalFeather(), v) << i;
    }
    ASSERT_TRUE(canvas.settle());
    EXPECT_EQ(backdrops[1]->maskRequest(), panes[1]->maskRequest());

    int selectionChanges = 0;
    canvas.view.onSelectionChanged = [&] { ++selectionChanges; };
    canvas.view.resetSelectedPane();
    EXPECT_EQ(selectionChanges, 1);
    EXPECT_DOUBLE_EQ(backdrops[1]->horizontalFeather(), 25.0);
    EXPECT_DOUBLE_EQ(backdrops[1]->verticalFeather(), 25.0);
    EXPECT_EQ(canvas.view.selectedPaneFeather(), std::make_pair(25.0, 25.0));
}

TEST(CollageCanvas, GapLayoutOverhangsLessAndRatioChangesMovePanesWithoutRebuilding) {
    Canvas canvas(QSize(400, 400));
    canvas.view.configure(photos(2), CollageLayoutOption::twoColumnsEqualGap);
    const auto panes = canvas.view.paneViews();
    EXPECT_EQ(panes[0]->frame(), QRectF(-22, -22, 400 * 0.4 + 44, 444));
    EXPECT_EQ(panes[1]->frame(), QRectF(400 * 0.4 - 22, -22, 400 * 0.6 + 44, 444));

    panes[0]->zoom(2.0);
    canvas.view.resize(400, 200);
    EXPECT_EQ(canvas.view.paneViews(), panes);
    EXPECT_EQ(panes[1]->frame(), QRectF(400 * 0.4 - 22, -22, 400 * 0.6 + 44, 244));
    EXPECT_DOUBLE_EQ(panes[0]->scale(), 2.0);
}

TEST(CollageCanvas, BackdropsTakeTheCanvasBlurAsAFractionWithinZeroAndOne) {
    Canvas canvas;
    for (auto [intensity, fraction] : {std::pair{1.7, 1.0}, {-0.2, 0.0}, {0.6, 0.6}, {1.0, 1.0}}) {
        canvas.view.blurIntensity = intensity;
        canvas.view.configure(photos(2), CollageLayoutOption::twoColumnsEqual);
        for (auto* backdrop : canvas.view.backdropViews()) {
            EXPECT_DOUBLE_EQ(backdrop->blurIntensity, intensity);
            EXPECT_DOUBLE_EQ(backdrop->blurFraction(), fraction) << intensity;
        }
    }
}

TEST(CollageCanvas, MovingALayerReordersStackingOnly) {
    Canvas canvas;
    int layersChanged = 0;
    canvas.view.onLayersChanged = [&] { ++layersChanged; };
    canvas.view.configure(photos(3), CollageLayoutOption::threeColumnsEqual);
    EXPECT_EQ(layersChanged, 1);
    const auto& panes = canvas.view.paneViews();
    canvas.view.moveLayer(0, 2);
    EXPECT_EQ(canvas.view.zOrder(), (std::vector<int>{1, 0, 2}));
    EXPECT_GT(panes[1]->zValue(), panes[0]->zValue());
    EXPECT_GT(panes[0]->zValue(), panes[2]->zValue());
    EXPECT_EQ(canvas.view.layerThumbnail(0), panes[1]->currentImage());
    EXPECT_EQ(layersChanged, 1);
    for (auto [from, to] : {std::pair{-1, 0}, {0, 3}, {1, 1}})
        canvas.view.moveLayer(from, to);
    EXPECT_EQ(canvas.view.zOrder(), (std::vector<int>{1, 0, 2}));
    EXPECT_EQ(canvas.view.layerThumbnail(3), nullptr);
}

TEST(CollageCanvas, GesturesActOnlyOnTheSelectedPaneAndSpringBackInside) {
    Canvas canvas(QSize(400, 400));
    // With no panes, gestures have nothing to act on.
    canvas.view.handleCanvasPinch(GestureState::began, 2.0);
    canvas.view.handleCanvasPan(GestureState::began, QPointF(10, 10));

    canvas.view.configure(photos(2), CollageLayoutOption::twoColumnsEqual);
    canvas.view.selectPane(1);
    CollagePaneView* pane = canvas.view.paneViews()[1];
    canvas.view.handleCanvasPinch(GestureState::began, 2.0);
    canvas.view.handleCanvasPinch(GestureState::changed, 2.0);
    EXPECT_DOUBLE_EQ(pane->scale(), 3.0);
    canvas.view.handleCanvasPinch(GestureState::changed, 0.01);
    EXPECT_DOUBLE_EQ(pane->scale(), 1.0);
    canvas.view.handleCanvasPinch(GestureState::ended);
    EXPECT_DOUBLE_EQ(canvas.view.paneViews()[0]->scale(), 1.0);

    // Dragged far to the right, then let go: 32 points stay inside the canvas.
    canvas.view.handleCanvasPan(GestureState::began, QPointF(0, 0));
    for (int i = 0; i < 20; ++i)
        canvas.view.handleCanvasPan(GestureState::changed, QPointF(200, 0));
    const auto limits = CollagePaneView::translationLimits(QRectF(0, 0, 400, 400), pane->frame(), 1.0);
    EXPECT_GT(pane->translation().x(), limits.maxX); // rubber band lets it overshoot while dragging
    canvas.view.handleCanvasPan(GestureState::ended);
    EXPECT_DOUBLE_EQ(pane->translation().x(), limits.maxX);
    const QRectF onCanvas = pane->mapRectToScene(pane->boundingRect());
    EXPECT_NEAR(400 - onCanvas.left(), 32.0, 1e-9);
}

TEST(CollageCanvas, CustomBackgroundHidesBackdropsAcrossRebuildsUntilCleared) {
    Canvas canvas;
    canvas.view.setCustomBackground(solid(Qt::yellow));
    canvas.view.configure(photos(3), CollageLayoutOption::threeRowsTopLarge);
    for (auto* backdrop : canvas.view.backdropViews()) {
        EXPECT_FALSE(backdrop->isVisible());
        EXPECT_DOUBLE_EQ(backdrop->blurFraction(), 0.35);
    }
    canvas.view.clearCustomBackground();
    EXPECT_FALSE(canvas.view.isCustomBackgroundActive());
    for (auto* backdrop : canvas.view.backdropViews())
        EXPECT_TRUE(backdrop->isVisible());
    ASSERT_TRUE(canvas.settle());
    for (auto* backdrop : canvas.view.backdropViews())
        EXPECT_FALSE(backdrop->blurredImage().isNull());
}

TEST(CollageCanvas, RebuildMakesNewPanesAndSelectsTheFirst) {
    Canvas canvas;
    canvas.view.configure(photos(3), CollageLayoutOption::threeColumnsEqual);
    canvas.view.selectPane(2);
    canvas.view.setSelectedPaneFeather(60, 10);
    EXPECT_EQ(canvas.view.selectedPaneFeather(), std::make_pair(60.0, 10.0));
    EXPECT_DOUBLE_EQ(canvas.view.backdropViews()[2]->horizontalFeather(), 60.0);
    std::vector<QPointer<CollagePaneView>> old(canvas.view.paneViews().begin(),
                                               canvas.view.paneViews().end());
    int selectionChanges = 0;
    canvas.view.onSelectionChanged = [&] { ++selectionChanges; };
    auto images = photos(3);
    std::swap(images[0], images[2]);
    canvas.view.configure(images, CollageLayoutOption::threeColumnsEqual);
    for (const auto& pane : old)
        EXPECT_TRUE(pane.isNull());
    EXPECT_EQ(canvas.view.selectedIndex(), 0);
    EXPECT_EQ(selectionChanges, 1);
    EXPECT_EQ(canvas.view.selectedPaneFeather(), std::make_pair(25.0, 25.0));
    canvas.view.selectPane(7); // ignored
    EXPECT_EQ(canvas.view.selectedIndex(), 0);
}

TEST(CollageCanvas, FlattenedThreePhotosHaveScreenResolutionAndSoftSeams) {
    Screen::main().setScale(3.0);
    Canvas canvas(QSize(390, 300));
    const std::vector<ImagePtr> images = {solid(QColor(220, 30, 30)), solid(QColor(30, 200, 40)),
                                          solid(QColor(30, 60, 230))};
    canvas.view.configure(images, CollageLayoutOption::threeColumnsEqual);
    ASSERT_TRUE(canvas.settle());
    const ImagePtr flat = canvas.view.flattenedImage();
    ASSERT_NE(flat, nullptr);
    EXPECT_EQ(flat->pixelSize(), QSize(1170, 900));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("collage.png"));
    ASSERT_TRUE(QImage(flat->bitmap()).save(path));
    const QImage written(path);
    ASSERT_EQ(written.size(), QSize(1170, 900));

    // Across the seam between the first and second columns the colour travels the whole way from
    // red to green, but never in one step.
    const int y = 450;
    const int seam = 390;
    int largestStep = 0;
    for (int x = seam - 150; x < seam + 150; ++x) {
        const QColor a = written.pixelColor(x, y);
        const QColor b = written.pixelColor(x + 1, y);
        largestStep = std::max({largestStep, std::abs(a.red() - b.red()), std::abs(a.green() - b.green())});
    }
    EXPECT_GT(written.pixelColor(seam - 150, y).red(), 180);
    EXPECT_GT(written.pixelColor(seam + 150, y).green(), 160);
    EXPECT_LT(largestStep, 16);
    // The selection mark in the middle of the first pane is not part of the picture, and comes back
    // afterwards.
    const QColor underMark = written.pixelColor(65 * 3, y);
    EXPECT_GT(underMark.red(), 180);
    EXPECT_LT(underMark.green(), 100);
    EXPECT_TRUE(canvas.view.paneViews()[0]->isCheckmarkVisible());
}

} // namespace

namespace {

TEST(CollageCanvas, MouseDragAnywhereMovesTheSelectedPaneAndClickSelectsTheTopPane) {
    Canvas canvas(QSize(400, 400));
    canvas.view.configure(photos(2), CollageLayoutOption::twoColumnsEqual);
    QWidget* surface = canvas.view.viewport();
    CollagePaneView* left = canvas.view.paneViews()[0];
    CollagePaneView* right = canvas.view.paneViews()[1];
    // A click near the seam lands where the right pane overlaps the left one; the right pane is on top.
    QTest::mouseClick(surface, Qt::LeftButton, {}, QPoint(210, 200));
    EXPECT_EQ(canvas.view.selectedIndex(), 1);
    QTest::mouseClick(surface, Qt::LeftButton, {}, QPoint(100, 200));
    EXPECT_EQ(canvas.view.selectedIndex(), 0);

    // Dragging over the right half still moves the selected left pane.
    QTest::mousePress(surface, Qt::LeftButton, {}, QPoint(300, 300));
    QTest::mouseMove(surface, QPoint(310, 300));
    QTest::mouseMove(surface, QPoint(330, 320));
    QTest::mouseRelease(surface, Qt::LeftButton, {}, QPoint(330, 320));
    EXPECT_EQ(left->translation(), QPointF(30, 20));
    EXPECT_EQ(right->translation(), QPointF());
    EXPECT_EQ(canvas.view.selectedIndex(), 0);

    QWheelEvent zoomIn(QPointF(200, 200), surface->mapToGlobal(QPointF(200, 200)), QPoint(), QPoint(0, 120),
                       Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(surface, &zoomIn);
    EXPECT_GT(left->scale(), 1.1);
    const double zoomed = left->scale();
    QWheelEvent plainScroll(QPointF(200, 200), surface->mapToGlobal(QPointF(200, 200)), QPoint(),
                            QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(surface, &plainScroll);
    EXPECT_DOUBLE_EQ(left->scale(), zoomed);
}

} // namespace
