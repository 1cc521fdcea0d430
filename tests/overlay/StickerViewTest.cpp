#include "overlay/StickerView.h"
#include "platform/Animations.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPointer>
#include <QTest>
#include <QWheelEvent>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace {

struct Recorder : StickerViewDelegate {
    QStringList calls;
    void stickerViewDidBeginMoving(StickerView*) override { calls << "beginMove"; }
    void stickerViewDidChangeMoving(StickerView*) override { calls << "move"; }
    void stickerViewDidEndMoving(StickerView*) override { calls << "endMove"; }
    void stickerViewDidBeginRotating(StickerView*) override { calls << "beginRotate"; }
    void stickerViewDidChangeRotating(StickerView*) override { calls << "rotate"; }
    void stickerViewDidEndRotating(StickerView*) override { calls << "endRotate"; }
    void stickerViewDidClose(StickerView*) override { calls << "close"; }
    void stickerViewDidTap(StickerView*) override { calls << "tap"; }
};

// A phone-sized canvas whose scene coordinates are the viewport's, with a 100 × 60 overlay at (200, 300).
class StickerViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        scene.setSceneRect(0, 0, 390, 844);
        view = std::make_unique<QGraphicsView>(&scene);
        view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view->setFrameShape(QFrame::NoFrame);
        view->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        view->resize(390, 844);
        view->show();
        sticker = new StickerView(new StickerPictureView(nullptr, QSizeF(100, 60)));
        sticker->delegate = &recorder;
        sticker->setCenter(QPointF(200, 300));
        scene.addItem(sticker);
    }

    QPoint at(QPointF scenePoint) const { return view->mapFromScene(scenePoint); }
    // Where a point lands once the mouse has put it on a whole point of the viewport.
    QPointF pixel(QPointF scenePoint) const { return view->mapToScene(at(scenePoint)); }
    QPointF cornerInScene(int corner) const { return sticker->mapToScene(sticker->cornerPoint(corner)); }

    // A press, moves in `steps` even steps, and a release, all real mouse events on the viewport.
    void drag(QPointF from, QPointF to, int steps = 6) {
        QWidget* port = view->viewport();
        QTest::mousePress(port, Qt::LeftButton, {}, at(from));
        for (int i = 1; i <= steps; ++i)
            QTest::mouseMove(port, at(from + (to - from) * (double(i) / steps)));
        QTest::mouseRelease(port, Qt::LeftButton, {}, at(to));
    }
    // A real wheel turn over the viewport, as the window system delivers it.
    void wheel(QPointF where, int angle, Qt::KeyboardModifiers modifiers) {
        const QPoint local = at(where);
        QWheelEvent event(local, view->viewport()->mapToGlobal(local), QPoint(), QPoint(0, angle),
                          Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view->viewport(), &event);
    }
    void click(QPointF where) { QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at(where)); }

    QGraphicsScene scene;
    std::unique_ptr<QGraphicsView> view;
    QPointer<StickerView> sticker;
    Recorder recorder;
};

TEST_F(StickerViewTest, MadeAroundItsContentWithHandlesOnTheCorners) {
    EXPECT_EQ(sticker->bounds().size(), QSizeF(122, 82));
    EXPECT_EQ(sticker->contentView()->size(), QSizeF(100, 60));
    EXPECT_EQ(sticker->minimumSize(), 44);
    EXPECT_EQ(sticker->closeImageView()->pos(), QPointF(-50, -30));
    EXPECT_EQ(sticker->rotateImageView()->pos(), QPointF(50, 30));
    EXPECT_EQ(sticker->flipImageView()->pos(), QPointF(-50, 30));
    EXPECT_EQ(sticker->closeImageView()->side(), 22);
}

TEST_F(StickerViewTest, BodyDragMovesBothAxesAndATapOnlySelects) {
    drag(QPointF(190, 290), QPointF(250, 220));
    EXPECT_NEAR(sticker->center().x(), 260, 1e-9);
    EXPECT_NEAR(sticker->center().y(), 230, 1e-9);
    ASSERT_GE(recorder.calls.size(), 3);
    EXPECT_EQ(recorder.calls.first(), "beginMove");
    EXPECT_EQ(recorder.calls.last(), "endMove");
    EXPECT_FALSE(recorder.calls.contains("tap"));

    recorder.calls.clear();
    click(QPointF(255, 235));
    EXPECT_EQ(recorder.calls, QStringList{"tap"});
    EXPECT_EQ(sticker->center(), QPointF(260, 230));

    // Nothing keeps it on the canvas.
    drag(QPointF(260, 230), QPointF(389, 230));
    drag(QPointF(370, 230), QPointF(389, 230));
    EXPECT_EQ(sticker->center().x(), 408);
}

TEST_F(StickerViewTest, RotateHandleTurnsAndScalesAtOnceAndResumesFromThePresentAngle) {
    const QPointF c = sticker->center();
    const QPointF handle = cornerInScene(StickerView::bottomRight);
    const QPointF arm = handle - c;
    // A quarter turn clockwise and twice as far out.
    const QPointF target = c + QPointF(-arm.y(), arm.x()) * 2.0;
    drag(handle, target, 12);
    EXPECT_NEAR(sticker->rotationAngle(), M_PI / 2, 1e-4);
    EXPECT_NEAR(sticker->bounds().width(), 244, 0.05);
    EXPECT_NEAR(sticker->bounds().height(), 164, 0.05);
    EXPECT_EQ(sticker->center(), c);
    EXPECT_EQ(recorder.calls.first(), "beginRotate");
    EXPECT_EQ(recorder.calls.last(), "endRotate");

    // A second turn starts where the first left the overlay: grabbing the handle again changes nothing
    // until the finger moves around the centre.
    const QPointF handle2 = cornerInScene(StickerView::bottomRight);
    const QPointF arm2 = handle2 - c;
    const double a = -M_PI / 4; // an eighth back
    const QPointF back = c + QPointF(arm2.x() * std::cos(a) - arm2.y() * std::sin(a),
                                     arm2.x() * std::sin(a) + arm2.y() * std::cos(a));
    drag(handle2, back, 12);
    // The mouse lands on whole points, so the expectation is taken from where it really went.
    const QPointF from = pixel(handle2) - c, to = pixel(back) - c;
    const double turned = std::atan2(to.y(), to.x()) - std::atan2(from.y(), from.x());
    EXPECT_NEAR(sticker->rotationAngle(), M_PI / 2 + turned, 1e-5);
    EXPECT_NEAR(turned, -M_PI / 4, 0.01);
    EXPECT_NEAR(sticker->bounds().width(), 244 * std::hypot(to.x(), to.y()) / std::hypot(from.x(), from.y()),
                0.3);
}

TEST_F(StickerViewTest, TurningInwardsStopsAtTheMinimumOnTheShorterSide) {
    const QPointF c = sticker->center();
    const QPointF handle = cornerInScene(StickerView::bottomRight);
    drag(handle, c + (handle - c) * 0.05, 10);
    EXPECT_NEAR(sticker->bounds().height(), 44, 1e-6);
    EXPECT_NEAR(sticker->bounds().width(), 122.0 * 44 / 82, 1e-6);
    // No upper limit.
    const QPointF handle2 = cornerInScene(StickerView::bottomRight);
    const QPointF out = c + (handle2 - c) * 4.0;
    drag(handle2, out, 10);
    const double grown = std::hypot((pixel(out) - c).x(), (pixel(out) - c).y()) /
                         std::hypot((pixel(handle2) - c).x(), (pixel(handle2) - c).y());
    EXPECT_NEAR(sticker->bounds().height(), 44 * grown, 1e-3);
    EXPECT_GT(grown, 3.9);
    EXPECT_EQ(sticker->contentView()->size().height(), sticker->bounds().height() - 22);
}

TEST_F(StickerViewTest, CloseHandleReportsAndRemovesTheOverlay) {
    click(cornerInScene(StickerView::topLeft));
    EXPECT_EQ(recorder.calls, QStringList{"close"});
    EXPECT_TRUE(scene.items().isEmpty());
    EXPECT_TRUE(testsupport::waitUntil([&] { return sticker.isNull(); }, 1000));
}

TEST_F(StickerViewTest, InvisibleFlipHandleStillTakesTapsAndTwoFlipsRestore) {
    ASSERT_FALSE(sticker->flipImageView()->image()); // no picture set, as the editor leaves it
    click(cornerInScene(StickerView::bottomLeft));
    EXPECT_DOUBLE_EQ(sticker->contentScaleX(), -1.0);
    EXPECT_TRUE(recorder.calls.isEmpty()); // flipping is not reported
    // The content is mirrored inside its frame; the handles stay where they are.
    const QPointF left = sticker->contentView()->mapToParent(QPointF(0, 0));
    EXPECT_NEAR(left.x(), 50, 1e-9);
    EXPECT_EQ(sticker->rotateImageView()->pos(), QPointF(50, 30));
    click(cornerInScene(StickerView::bottomLeft));
    EXPECT_DOUBLE_EQ(sticker->contentScaleX(), 1.0);
}

TEST_F(StickerViewTest, TwoQuickFlipsWithRealTimingEndWhereTheyStarted) {
    Animations::setInstant(false);
    click(cornerInScene(StickerView::bottomLeft));
    testsupport::spin(120); // part way through the first
    const double midway = sticker->contentScaleX();
    EXPECT_GT(midway, -1.0);
    EXPECT_LT(midway, 1.0);
    click(cornerInScene(StickerView::bottomLeft));
    EXPECT_TRUE(testsupport::waitUntil([&] { return sticker->contentScaleX() == 1.0; }, 2000));
    testsupport::spin(350);
    Animations::setInstant(true);
    EXPECT_DOUBLE_EQ(sticker->contentScaleX(), 1.0);
}

TEST_F(StickerViewTest, HiddenHandlesTakeNoInputAndDropTheOutline) {
    sticker->showEditingHandlers = false;
    sticker->updateHandlers();
    EXPECT_FALSE(sticker->closeImageView()->isVisible());
    EXPECT_EQ(sticker->contentBorderWidth(), 0.0);
    click(cornerInScene(StickerView::topLeft));
    EXPECT_EQ(recorder.calls, QStringList{"tap"}); // the body, not the close handle
    EXPECT_EQ(sticker->scene(), &scene);

    sticker->showEditingHandlers = true;
    sticker->enableClose = false;
    sticker->updateHandlers();
    EXPECT_FALSE(sticker->closeImageView()->isVisible());
    EXPECT_TRUE(sticker->rotateImageView()->isVisible());
    EXPECT_EQ(sticker->contentBorderWidth(), 1.0);
}

TEST_F(StickerViewTest, HandlerSizeKeepsRotationAndCentreAndRaisesTheMinimum) {
    sticker->setTransform(QTransform().rotate(30));
    sticker->setHandlerSize(0);
    EXPECT_EQ(sticker->defaultInset(), 11);
    EXPECT_EQ(sticker->bounds().size(), QSizeF(122, 82));

    sticker->setHandlerSize(30);
    EXPECT_EQ(sticker->defaultInset(), 15);
    EXPECT_EQ(sticker->minimumSize(), 60);
    EXPECT_EQ(sticker->bounds().size(), QSizeF(130, 90));
    EXPECT_EQ(sticker->rotateImageView()->side(), 30);
    EXPECT_EQ(sticker->center(), QPointF(200, 300));
    EXPECT_NEAR(sticker->rotationAngle(), M_PI / 6, 1e-9);
    sticker->setHandlerSize(5); // rounds half away from zero
    EXPECT_EQ(sticker->defaultInset(), 3);
    EXPECT_EQ(sticker->minimumSize(), 60);
}

TEST_F(StickerViewTest, CtrlWheelScalesDownToTheMinimum) {
    for (int i = 0; i < 30; ++i)
        wheel(sticker->center(), -120, Qt::ControlModifier);
    EXPECT_NEAR(std::min(sticker->bounds().width(), sticker->bounds().height()), 44, 1e-6);
    wheel(sticker->center(), 120, Qt::ControlModifier);
    EXPECT_NEAR(sticker->bounds().height(), 44 * 1.1, 1e-6);
}

TEST_F(StickerViewTest, AltWheelTurnsFifteenDegreesANotch) {
    const double before = sticker->rotationAngle();
    wheel(sticker->center(), 240, Qt::AltModifier);
    EXPECT_NEAR(sticker->rotationAngle() - before, 30 * M_PI / 180, 1e-9);
}

TEST_F(StickerViewTest, TwoFingersTurnAndScaleAboutTheCentre) {
    const std::unique_ptr<QPointingDevice> touchScreen(QTest::createTouchDevice());
    QPointingDevice* screen = touchScreen.get();
    const QPointF c = sticker->center();
    QTest::touchEvent(view->viewport(), screen)
        .press(0, at(c + QPointF(-20, 0)))
        .press(1, at(c + QPointF(20, 0)));
    QTest::touchEvent(view->viewport(), screen)
        .move(0, at(c + QPointF(0, -30)))
        .move(1, at(c + QPointF(0, 30)));
    QTest::touchEvent(view->viewport(), screen)
        .release(0, at(c + QPointF(0, -30)))
        .release(1, at(c + QPointF(0, 30)));
    EXPECT_NEAR(sticker->rotationAngle(), M_PI / 2, 0.06);
    EXPECT_NEAR(sticker->bounds().width(), 122 * 1.5, 6);
    EXPECT_EQ(recorder.calls.first(), "beginRotate");
    EXPECT_EQ(recorder.calls.last(), "endRotate");
}

} // namespace
