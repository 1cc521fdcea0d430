#include "collage/CollagePaneView.h"
#include "collage/FeatherMask.h"
#include "platform/Screen.h"
#include "support/TestSupport.h"

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
    PaneOnCanvas canvas(QRectF(0, 0, 173, 211)); // a size no other test uses, so nothing is cached
    CollagePaneView* pane = canvas.pane;
    pane->setFeathers(40, 40);
    pane->setFeathers(10, 10);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !pane->hasPendingWork(); }));
    ASSERT_NE(pane->featherMask(), nullptr);
    // 10 points of ramp: full alpha 30 pixels in from the left edge, half-way up the pane.
    const QImage mask = pane->featherMask()->bitmap();
    EXPECT_EQ(qAlpha(mask.pixel(30, mask.height() / 2)), 255);
    EXPECT_EQ(mask.size(), FeatherMask::pixelSize(173, 211, 3.0));
}

TEST(CollagePane, ASizeBelowOnePixelStillGetsAMask) {
    PaneOnCanvas canvas(QRectF(0, 0, 0.1, 0.1));
    canvas.pane->ensureFeatherMask();
    ASSERT_NE(canvas.pane->featherMask(), nullptr);
    EXPECT_EQ(canvas.pane->featherMask()->pixelSize(), QSize(1, 1));
}

} // namespace
