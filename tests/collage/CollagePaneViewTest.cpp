#include "collage/CollagePaneView.h"
#include "collage/FeatherMask.h"
#include "platform/Screen.h"
#include "support/TestSupport.h"

#include "CollageTestSupport.h"

#include <QGraphicsScene>
#include <QPainter>
#include <gtest/gtest.h>

namespace {

ImagePtr picture(QSize size = QSize(400, 300)) {
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.fillRect(image.rect(), Qt::darkCyan);
    painter.fillRect(QRect(0, 0, size.width() / 2, size.height() / 2), Qt::red);
    return Image::make(image);
}

// A pane on a canvas-sized scene, selected so that editing acts on it.
struct PaneOnCanvas {
    QGraphicsScene scene{QRectF(0, 0, 400, 400)};
    CollagePaneView* pane = new CollagePaneView;
    PaneOnCanvas(QRectF frame = QRectF(-25, -25, 250, 450)) {
        scene.addItem(pane);
        pane->setFrame(frame);
        pane->setIsSelected(true);
    }
};

TEST(CollagePane, CropWindowHasThePaneShapeAndStaysInsideThePicture) {
    // A tall pane on a wide picture: a full-height window, centred on the subject where it can be.
    const QRectF centred =
        CollagePaneView::subjectContentsRect(QRectF(0.4, 0.4, 0.2, 0.2), QSizeF(100, 200), QSizeF(400, 300));
    EXPECT_DOUBLE_EQ(centred.width(), 0.5 / (4.0 / 3.0));
    EXPECT_DOUBLE_EQ(centred.height(), 1.0);
    EXPECT_DOUBLE_EQ(centred.center().x(), 0.5);
    const QRectF atEdge =
        CollagePaneView::subjectContentsRect(QRectF(0.85, 0.1, 0.1, 0.1), QSizeF(100, 200), QSizeF(400, 300));
    EXPECT_DOUBLE_EQ(atEdge.right(), 1.0);
    // A wide pane on a tall picture: full width; the box's origin is at the bottom, so a subject
    // low in the box space sits low in the picture.
    const QRectF low =
        CollagePaneView::subjectContentsRect(QRectF(0.4, 0.0, 0.2, 0.1), QSizeF(300, 100), QSizeF(300, 600));
    EXPECT_DOUBLE_EQ(low.width(), 1.0);
    EXPECT_DOUBLE_EQ(low.height(), 0.5 / 3.0);
    EXPECT_DOUBLE_EQ(low.bottom(), 1.0);
    EXPECT_EQ(CollagePaneView::subjectContentsRect(std::nullopt, QSizeF(300, 100), QSizeF(300, 600)),
              QRectF(0, 0, 1, 1));
}

TEST(CollagePane, RubberBandDampsOvershootAndClampsWithoutRoom) {
    EXPECT_DOUBLE_EQ(CollagePaneView::rubberBand(50, 0, 100, 400), 50);
    const double over = CollagePaneView::rubberBand(200, 0, 100, 400);
    EXPECT_GT(over, 100);
    EXPECT_LT(over, 200);
    EXPECT_DOUBLE_EQ(over, 100 + (100 * 400 * 0.55) / (400 + 100 * 0.55));
    EXPECT_DOUBLE_EQ(CollagePaneView::rubberBand(-100, 0, 100, 400),
                     -(100 * 400 * 0.55) / (400 + 100 * 0.55));
    EXPECT_DOUBLE_EQ(CollagePaneView::rubberBand(200, 0, 100, 0), 100);
}

// A wide canvas and a tall pane off its centre, so that neither axis can stand in for the other.
TEST(CollagePane, TranslationLimitsLeave32PointsInsideOnEverySide) {
    const QRectF canvas(0, 0, 600, 300);
    const QRectF frame(100, -25, 150, 350);
    const QPointF c = frame.center();
    for (double scale : {1.0, 2.5}) {
        const auto l = CollagePaneView::translationLimits(canvas, frame, scale);
        const double pw = frame.width() * scale / 2, ph = frame.height() * scale / 2;
        EXPECT_DOUBLE_EQ(c.x() + l.maxX - pw, 600 - 32.0) << scale; // its left edge 32 from the right
        EXPECT_DOUBLE_EQ(c.x() + l.minX + pw, 32.0) << scale;       // its right edge 32 from the left
        EXPECT_DOUBLE_EQ(c.y() + l.maxY - ph, 300 - 32.0) << scale;
        EXPECT_DOUBLE_EQ(c.y() + l.minY + ph, 32.0) << scale;
    }
}

TEST(CollagePane, EachAxisSpringsAgainstItsOwnLimitsAndDimension) {
    QGraphicsScene scene(QRectF(0, 0, 600, 300));
    auto* pane = new CollagePaneView;
    scene.addItem(pane);
    pane->setFrame(QRectF(100, -25, 150, 350));
    pane->setIsSelected(true);
    const auto l = CollagePaneView::translationLimits(scene.sceneRect(), pane->frame(), 1.0);

    // Past the far side on both axes: each overshoot is damped against its own axis.
    const QPointF far(l.maxX + 200, l.maxY + 120);
    pane->translate(far.x(), far.y());
    EXPECT_DOUBLE_EQ(pane->translation().x(), CollagePaneView::rubberBand(far.x(), l.minX, l.maxX, 600));
    EXPECT_DOUBLE_EQ(pane->translation().y(), CollagePaneView::rubberBand(far.y(), l.minY, l.maxY, 300));
    pane->clampTranslation(false);
    EXPECT_EQ(pane->translation(), QPointF(l.maxX, l.maxY));

    // And past the near side.
    pane->translate(l.minX - l.maxX - 200, l.minY - l.maxY - 120);
    EXPECT_DOUBLE_EQ(pane->translation().x(), CollagePaneView::rubberBand(l.minX - 200, l.minX, l.maxX, 600));
    EXPECT_DOUBLE_EQ(pane->translation().y(), CollagePaneView::rubberBand(l.minY - 120, l.minY, l.maxY, 300));
    pane->clampTranslation(false);
    EXPECT_EQ(pane->translation(), QPointF(l.minX, l.minY));

    // Exactly at a limit nothing is damped; inside, nothing changes.
    pane->setTranslation(QPointF(l.maxX, l.minY));
    pane->translate(0, 0);
    EXPECT_EQ(pane->translation(), QPointF(l.maxX, l.minY));
    pane->setTranslation(QPointF(10, -10));
    pane->clampTranslation(false);
    EXPECT_EQ(pane->translation(), QPointF(10, -10));

    // A zoom widens the limits on both axes by the growth of the pane.
    pane->zoom(2.0);
    const auto wide = CollagePaneView::translationLimits(scene.sceneRect(), pane->frame(), 2.0);
    EXPECT_DOUBLE_EQ(wide.maxX - l.maxX, 150 / 2.0);
    EXPECT_DOUBLE_EQ(wide.maxY - l.maxY, 350 / 2.0);
}

TEST(CollagePane, EditingNeedsTheSelectionAndZoomStaysWithinLimits) {
    PaneOnCanvas canvas;
    CollagePaneView* pane = canvas.pane;
    pane->setIsSelected(false);
    pane->zoom(2.0);
    pane->translate(10, 10);
    pane->rotateQuarterTurn();
    pane->toggleFlip();
    EXPECT_DOUBLE_EQ(pane->scale(), 1.0);
    EXPECT_EQ(pane->translation(), QPointF());
    EXPECT_EQ(pane->imageRotationQuarterTurns(), 0);
    EXPECT_FALSE(pane->isImageFlipped());

    pane->setIsSelected(true);
    pane->zoom(2.0);
    pane->zoom(2.0);
    EXPECT_DOUBLE_EQ(pane->scale(), 3.0);
    pane->zoom(0.1);
    EXPECT_DOUBLE_EQ(pane->scale(), 1.0);
    for (int i = 0; i < 4; ++i)
        pane->rotateQuarterTurn();
    EXPECT_EQ(pane->imageRotationQuarterTurns(), 0);

    pane->zoom(2.0);
    pane->translate(30, -20);
    pane->toggleFlip();
    pane->setFeathers(70, 5);
    pane->resetTransform();
    EXPECT_DOUBLE_EQ(pane->scale(), 1.0);
    EXPECT_EQ(pane->translation(), QPointF());
    EXPECT_FALSE(pane->isImageFlipped());
    EXPECT_DOUBLE_EQ(pane->horizontalFeather(), 25.0);
    EXPECT_DOUBLE_EQ(pane->verticalFeather(), 25.0);
}

TEST(CollagePane, CheckmarkKeepsItsSizeAndStaysCentredWhateverTheZoom) {
    PaneOnCanvas canvas;
    ASSERT_EQ(canvas.pane->childItems().size(), 1);
    const QGraphicsItem* mark = canvas.pane->childItems().front();
    const QSizeF size = mark->sceneBoundingRect().size();
    canvas.pane->zoom(2.5);
    canvas.pane->translate(-20, 30);
    EXPECT_NEAR(mark->sceneBoundingRect().width(), size.width(), 1e-9);
    EXPECT_NEAR(mark->sceneBoundingRect().height(), size.height(), 1e-9);
    const QPointF centre = canvas.pane->sceneBoundingRect().center();
    EXPECT_NEAR(mark->sceneBoundingRect().center().x(), centre.x(), 1e-9);
    EXPECT_NEAR(mark->sceneBoundingRect().center().y(), centre.y(), 1e-9);
}

TEST(CollagePane, FourQuarterTurnsDrawThePictureAsBefore) {
    PaneOnCanvas canvas(QRectF(0, 0, 120, 160));
    canvas.pane->setImage(picture());
    canvas.pane->setFeathers(0, 0);
    auto render = [&] {
        canvas.pane->ensureFeatherMask();
        QImage out(120, 160, QImage::Format_ARGB32_Premultiplied);
        out.fill(Qt::white);
        QPainter painter(&out);
        canvas.scene.render(&painter, QRectF(0, 0, 120, 160), QRectF(0, 0, 120, 160));
        return out;
    };
    const QImage before = render();
    canvas.pane->rotateQuarterTurn();
    const QImage turned = render();
    EXPECT_NE(turned, before);
    for (int i = 0; i < 3; ++i)
        canvas.pane->rotateQuarterTurn();
    EXPECT_EQ(render(), before);
}

TEST(CollagePane, LateMaskForOldFeathersIsDropped) {
    Screen::main().setScale(3.0);
    // A size no other run uses, so the masks are built on the worker rather than found in the cache.
    static int run = 0;
    const QRectF frame(0, 0, 173 + run++, 211);
    collagetest::WorkerHold hold;
    QGraphicsScene scene(QRectF(0, 0, 400, 400));
    auto* pane = new CollagePaneView;
    pane->setFeatherMaskBuilder([gate = hold.gate()](double w, double h, double hf, double vf, double s) {
        if (hf == 40.0)
            gate();
        return FeatherMask::make(w, h, hf, vf, s);
    });
    scene.addItem(pane);
    pane->setFrame(frame);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !pane->hasPendingWork(); }));

    // The 40-point mask is under way when the feathers change to 10; the 10-point mask lands first.
    pane->setFeathers(40, 40);
    ASSERT_TRUE(hold.waitUntilHeld());
    pane->setFeathers(10, 10);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !pane->hasPendingWork(); }));
    auto alphaAt30 = [&] {
        const QImage mask = pane->featherMask()->bitmap();
        return qAlpha(mask.pixel(30, mask.height() / 2));
    };
    ASSERT_NE(pane->featherMask(), nullptr);
    ASSERT_EQ(alphaAt30(), 255); // 10 points of ramp: full alpha 30 pixels in

    // Then the old mask finishes: it must not replace the current one.
    hold.release();
    ASSERT_TRUE(collagetest::drainWorkers());
    EXPECT_EQ(alphaAt30(), 255);
    EXPECT_EQ(pane->featherMask()->pixelSize(), FeatherMask::pixelSize(frame.width(), frame.height(), 3.0));
    EXPECT_EQ(pane->maskRequest(), (FeatherMaskLoader::Request{frame.size(), 10, 10}));
}

TEST(CollagePane, ASizeBelowOnePixelStillGetsAMask) {
    PaneOnCanvas canvas(QRectF(0, 0, 0.1, 0.1));
    canvas.pane->ensureFeatherMask();
    ASSERT_NE(canvas.pane->featherMask(), nullptr);
    EXPECT_EQ(canvas.pane->featherMask()->pixelSize(), QSize(1, 1));
}

} // namespace
