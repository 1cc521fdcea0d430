// Gestures and selections that overlap running animations, played in real time.
#include "collage/CollageCanvasView.h"
#include "support/TestSupport.h"

#include "CollageTestSupport.h"

#include <QPainter>
#include <QPointingDevice>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

using collagetest::RealTimeAnimations;

std::vector<ImagePtr> photos(int count) {
    std::vector<ImagePtr> result;
    for (int i = 0; i < count; ++i) {
        QImage image(300, 400, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(i * 70, 200, 220));
        result.push_back(Image::make(image));
    }
    return result;
}

struct Canvas {
    CollageCanvasView view;
    Canvas() {
        view.resize(400, 400);
        view.show();
        view.configure(photos(2), CollageLayoutOption::twoColumnsEqual);
    }
    CollagePaneView* pane(int i) const { return view.paneViews()[i]; }
    // Drags the selected pane by `delta` in one gesture.
    void drag(const QPointF& delta) {
        view.handleCanvasPan(GestureState::began, QPointF());
        for (int i = 0; i < 4; ++i)
            view.handleCanvasPan(GestureState::changed, delta / 4);
        view.handleCanvasPan(GestureState::ended);
    }
    // Where the pane is drawn on the canvas.
    QRectF drawn(int i) const { return pane(i)->mapRectToScene(pane(i)->boundingRect()); }
};

TEST(CollageCanvasTiming, SpringBackCutShortByAGestureOnAnotherPaneStillEndsInside) {
    RealTimeAnimations realTime;
    Canvas canvas;
    testsupport::spin(1100); // the panes' scale-in
    // Both axes: far to the right and far down, past what may leave the canvas.
    canvas.drag(QPointF(900, 700));
    const auto limits =
        CollagePaneView::translationLimits(QRectF(0, 0, 400, 400), canvas.pane(0)->frame(), 1.0);
    testsupport::spin(60); // the first pane is on its way back
    canvas.view.selectPane(1);
    canvas.drag(QPointF(-10, 5));
    testsupport::spin(600);

    EXPECT_DOUBLE_EQ(canvas.pane(0)->translation().x(), limits.maxX);
    EXPECT_DOUBLE_EQ(canvas.pane(0)->translation().y(), limits.maxY);
    EXPECT_NEAR(400 - canvas.drawn(0).left(), 32.0, 1e-6);
    EXPECT_NEAR(400 - canvas.drawn(0).top(), 32.0, 1e-6);
    EXPECT_EQ(canvas.pane(1)->translation(), QPointF(-10, 5));
}

TEST(CollageCanvasTiming, QuickReselectionKeepsTheCheckmark) {
    RealTimeAnimations realTime;
    Canvas canvas;
    ASSERT_TRUE(canvas.pane(0)->isCheckmarkVisible());
    // Away and straight back, while the first pane's mark is still fading out.
    canvas.view.selectPane(1);
    testsupport::spin(20);
    canvas.view.selectPane(0);
    testsupport::spin(400);
    EXPECT_TRUE(canvas.pane(0)->isCheckmarkVisible());
    EXPECT_DOUBLE_EQ(canvas.pane(0)->checkmarkAlpha(), 1.0);
    EXPECT_FALSE(canvas.pane(1)->isCheckmarkVisible());

    // The other way round: the second pane's fade-in is cut by its fade-out.
    canvas.view.selectPane(1);
    testsupport::spin(20);
    canvas.view.selectPane(0);
    testsupport::spin(400);
    EXPECT_FALSE(canvas.pane(1)->isCheckmarkVisible());
    EXPECT_TRUE(canvas.pane(0)->isCheckmarkVisible());
}

// Quarter turns clicked faster than they animate must still end on the last turn asked for: the picture
// takes the short way round from wherever the previous turn had got to.
TEST(CollageCanvasTiming, QuickQuarterTurnsEndWhereSlowOnesDo) {
    RealTimeAnimations realTime;
    // Red on the left, blue on the right: a quarter turn one way and three the other way differ.
    QImage halves(300, 400, QImage::Format_RGB32);
    halves.fill(Qt::red);
    QPainter(&halves).fillRect(150, 0, 150, 400, Qt::blue);
    auto turned = [&](int pauseMs) {
        Canvas canvas;
        canvas.view.configure({Image::make(halves), Image::make(halves)},
                              CollageLayoutOption::twoColumnsEqual);
        testsupport::spin(1100); // the panes' scale-in
        for (int i = 0; i < 3; ++i) {
            canvas.pane(0)->rotateQuarterTurn();
            testsupport::spin(pauseMs);
        }
        testsupport::spin(500);
        const ImagePtr flat = canvas.view.flattenedImage();
        return flat ? flat->bitmap() : QImage();
    };
    const QImage slow = turned(400), quick = turned(40);
    ASSERT_FALSE(slow.isNull());
    EXPECT_EQ(quick, slow);
}

TEST(CollageCanvasGestures, TwoFingersPanByTheirCentreAndZoomByTheirSpread) {
    Canvas canvas;
    QWidget* surface = canvas.view.viewport();
    const std::unique_ptr<QPointingDevice> touchScreen(QTest::createTouchDevice());
    QPointingDevice* touch = touchScreen.get();
    CollagePaneView* pane = canvas.pane(0);
    // Each gesture is recognised at its first step; from then on the pane follows the fingers' centre.
    auto gesture = [&](QPoint a0, QPoint a1, QPoint step0, QPoint step1) {
        QTest::touchEvent(surface, touch).press(0, a0).press(1, a1);
        for (int i = 1; i <= 6; ++i)
            QTest::touchEvent(surface, touch).move(0, a0 + step0 * i).move(1, a1 + step1 * i);
        QTest::touchEvent(surface, touch).release(0, a0 + step0 * 6).release(1, a1 + step1 * 6);
        QCoreApplication::processEvents();
    };

    // One finger rests while the other drags down: the centre moves down half as far, and the fingers
    // spread a little.
    gesture(QPoint(150, 200), QPoint(250, 200), QPoint(0, 0), QPoint(0, 10));
    EXPECT_GT(pane->scale(), 1.1);
    EXPECT_NEAR(pane->translation().x(), 0.0, 1e-9);
    EXPECT_GE(pane->translation().y(), 25.0 - 1e-9);
    EXPECT_LE(pane->translation().y(), 30.0 + 1e-9);

    // Both fingers travel together: the pane travels with them, once, not once per finger.
    QPointF before = pane->translation();
    const double scale = pane->scale();
    gesture(QPoint(150, 200), QPoint(250, 200), QPoint(5, -3), QPoint(5, -3));
    EXPECT_DOUBLE_EQ(pane->scale(), scale);
    EXPECT_GE(pane->translation().x() - before.x(), 25.0 - 1e-9);
    EXPECT_LE(pane->translation().x() - before.x(), 30.0 + 1e-9);
    EXPECT_DOUBLE_EQ(pane->translation().y() - before.y(), (pane->translation().x() - before.x()) * -3 / 5);

    // Spreading about a fixed centre zooms in place.
    before = pane->translation();
    gesture(QPoint(150, 200), QPoint(250, 200), QPoint(-5, 0), QPoint(5, 0));
    EXPECT_GT(pane->scale(), scale * 1.3);
    EXPECT_NEAR(pane->translation().x(), before.x(), 1e-9);
    EXPECT_NEAR(pane->translation().y(), before.y(), 1e-9);
}

} // namespace
