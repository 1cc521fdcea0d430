#include "mirror/MirrorCanvasView.h"
#include "mirror/MirrorImageView.h"
#include "overlay/StickerView.h"
#include "platform/Assets.h"
#include "platform/Screen.h"
#include "resources/AssetNames.h"

#include <QDir>
#include <QGraphicsPixmapItem>
#include <QPainter>
#include <QTest>
#include <gtest/gtest.h>

namespace {

constexpr double W = 390;

ImagePtr samplePhoto(const char* name = "fruits.jpg") {
    return Image::fromFile(QDir(QStringLiteral(LUMIVEX_SAMPLES_DIR)).filePath(QString::fromLatin1(name)));
}

// How far each pane's offset moves along the split when the source pane's moves by +1, as the linking
// of the pattern is meant to be seen: the mirrored neighbours go the other way.
int expectedSign(int pattern, int source, int pane) {
    if (pane == source)
        return 1;
    switch (pattern) {
    case 0:
    case 1:
    case 4: // mirrored across the seam
    case 5:
    case 6:
    case 7:
    case 8:
        return -1;
    case 14:
    case 15: // pairs: the partner follows, the other pair mirrors
        return pane / 2 == source / 2 ? 1 : -1;
    case 17: // alternate: only the pane two away follows
        return pane == (source + 2) % 4 ? 1 : -1;
    default:
        return 1;
    }
}

// Where each pane rests along the split, in fractions of the canvas side, pattern by pattern.
const std::vector<std::vector<double>> restFractions = {
    {0.5, 0},
    {0.5, 0},
    {0, 0},
    {0, 0},
    {0.5, 0},
    {0.5, 0},
    {0.5, 0},
    {0.5, 0},
    {0.5, 0},
    {0, 0, 0},
    {0, 0, 0},
    {0, 0, 0},
    {0, 0, 0},
    {0, 0, 0},
    {0.75, 0.75, 0, 0},
    {0.75, 0.75, 0, 0},
    {0.75, 0.75, 0.75, 0.75},
    {0.75, 0, 0.75, 0},
};

bool isColumns(int pattern) {
    return MirrorPatterns::pattern(pattern)->split == MirrorSplit::columns;
}

int channelDistance(QRgb a, QRgb b) {
    return std::max(
        {std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

class MirrorCanvasTest : public ::testing::Test {
protected:
    void SetUp() override {
        Screen::main().setScale(3.0);
        canvas = std::make_unique<MirrorCanvasView>(W);
        canvas->setSelectedImage(samplePhoto());
        canvas->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(canvas.get()));
    }
    QImage flatten() { return canvas->snapshot()->bitmap(); }

    // A real mouse drag inside the pane, by `by` points.
    void drag(MirrorPaneView* pane, QPointF by) {
        QWidget* surface = canvas->viewport();
        const QPoint from = canvas->mapFromScene(pane->frame().center());
        const QPoint to = from + by.toPoint();
        QTest::mousePress(surface, Qt::LeftButton, {}, from);
        QTest::mouseMove(surface, from + (to - from) / 2);
        QTest::mouseMove(surface, to);
        QTest::mouseRelease(surface, Qt::LeftButton, {}, to);
    }

    std::unique_ptr<MirrorCanvasView> canvas;
};

// Every two-dimensional pattern, at zoom 1: a drag in one pane moves every pane by the pattern's rule,
// seen on the flattened canvas. Each pane must show, after the drag, what it showed before shifted by
// its own expected amount along the split, to within one level.
TEST_F(MirrorCanvasTest, DragInOnePaneMovesEveryPaneByTheLinkRule) {
    const double scale = Screen::main().scale();
    for (int pattern = 0; pattern < MirrorPatterns::lowCount; ++pattern) {
        canvas->applyLowMirrorPattern(pattern);
        const std::vector<MirrorPaneView*> panes = canvas->showingPanes();
        ASSERT_EQ(int(panes.size()), MirrorPatterns::pattern(pattern)->paneCount());
        ASSERT_EQ(panes.size(), restFractions[size_t(pattern)].size());
        for (int k = 0; k < int(panes.size()); ++k) {
            const double rest = restFractions[size_t(pattern)][size_t(k)] * W;
            EXPECT_EQ(panes[size_t(k)]->contentOffset(),
                      isColumns(pattern) ? QPointF(rest, 0) : QPointF(0, rest))
                << "pattern " << pattern << " pane " << k;
        }
        for (int source : {0, int(panes.size()) - 1}) {
            const bool cols = isColumns(pattern);
            const auto along = [cols](QPointF p) { return cols ? p.x() : p.y(); };
            std::vector<double> before(panes.size());
            for (size_t k = 0; k < panes.size(); ++k)
                before[k] = along(panes[k]->contentOffset());
            // Drag towards the side with room: the picture follows the pointer, the offset goes against it.
            const double room = along(panes[size_t(source)]->maximumContentOffset()) - before[size_t(source)];
            const double d = room >= 12 ? -12 : 12;
            const QImage shotBefore = flatten();
            drag(panes[size_t(source)], cols ? QPointF(d, 0) : QPointF(0, d));
            const QImage shotAfter = flatten();
            const double moved = along(panes[size_t(source)]->contentOffset()) - before[size_t(source)];
            ASSERT_NEAR(std::abs(moved), 12, 1e-9) << "pattern " << pattern << " source " << source;

            for (int k = 0; k < int(panes.size()); ++k) {
                const double expected = expectedSign(pattern, source, k) * moved;
                EXPECT_NEAR(along(panes[size_t(k)]->contentOffset()) - before[size_t(k)], expected, 1e-9)
                    << "pattern " << pattern << " source " << source << " pane " << k;
                // Pixels: after(p) = before(p + shift), inside the pane away from its edges.
                const QRect r = QRectF(MirrorPatterns::paneRect(pattern, k, W).topLeft() * scale,
                                       MirrorPatterns::paneRect(pattern, k, W).size() * scale)
                                    .toAlignedRect()
                                    .adjusted(3, 3, -3, -3);
                const int shift = int(std::lround(expected * scale));
                int compared = 0, worst = 0, changed = 0;
                for (int y = r.top(); y <= r.bottom(); y += 3)
                    for (int x = r.left(); x <= r.right(); x += 2) {
                        const QPoint from = cols ? QPoint(x + shift, y) : QPoint(x, y + shift);
                        if (!r.contains(from))
                            continue;
                        ++compared;
                        worst =
                            std::max(worst, channelDistance(shotAfter.pixel(x, y), shotBefore.pixel(from)));
                        changed += channelDistance(shotAfter.pixel(x, y), shotBefore.pixel(x, y)) > 8;
                    }
                EXPECT_GT(compared, 200) << "pattern " << pattern << " pane " << k;
                EXPECT_LE(worst, 1) << "pattern " << pattern << " source " << source << " pane " << k;
                EXPECT_GT(changed, compared / 10)
                    << "pane did not move: pattern " << pattern << " pane " << k;
            }
        }
    }
}

// The mirrored patterns meet at their seam: the columns either side of it are reflections.
TEST_F(MirrorCanvasTest, MirroredPanesMeetAtTheSeamAfterADrag) {
    const double scale = Screen::main().scale();
    for (int pattern : {0, 1, 14}) {
        canvas->applyLowMirrorPattern(pattern);
        drag(canvas->showingPanes().front(), QPointF(-20, 0));
        const QImage shot = flatten();
        const int seam = int(std::lround((pattern == 14 ? W / 2 : W / 2) * scale));
        int worst = 0;
        for (int y = 10; y < shot.height() - 10; y += 7)
            for (int i = 3; i < 60; ++i)
                worst =
                    std::max(worst, channelDistance(shot.pixel(seam - 1 - i, y), shot.pixel(seam + i, y)));
        EXPECT_LE(worst, 2) << "pattern " << pattern;
    }
}

// An overlay pattern is the plain or mirrored pair under its overlay picture, drawn over the whole
// canvas: even indices over the first pattern, odd ones over the second.
TEST_F(MirrorCanvasTest, OverlayPatternsLayTheirPictureOverTheMatchingPair) {
    for (int index : {0, 1, 6, 13, 26, 27}) {
        canvas->applyLowMirrorPattern(index % 2 ? 1 : 0);
        QImage expected = flatten();
        const ImagePtr overlay = Assets::image(AssetNames::overlayName(index));
        ASSERT_NE(overlay, nullptr) << qPrintable(AssetNames::overlayName(index));
        {
            QPainter painter(&expected);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(QRect(QPoint(), expected.size()), overlay->uprightBitmap());
        }
        canvas->applyHighMirrorPattern(index, MirrorPatterns::mirrorFirst(index));
        ASSERT_NE(canvas->overlayView(), nullptr);
        EXPECT_EQ(canvas->overlayView()->acceptedMouseButtons(), Qt::NoButton);
        EXPECT_EQ(canvas->showingPattern(), index % 2 ? 1 : 0);
        const QImage shot = flatten();
        int worst = 0;
        for (int y = 0; y < shot.height(); y += 5)
            for (int x = 0; x < shot.width(); x += 5)
                worst = std::max(worst, channelDistance(shot.pixel(x, y), expected.pixel(x, y)));
        EXPECT_LE(worst, 3) << "overlay " << index;
    }
    // The next pattern takes the overlay away.
    canvas->applyLowMirrorPattern(3);
    EXPECT_EQ(canvas->overlayView(), nullptr);
}

TEST_F(MirrorCanvasTest, LastPatternClearsStickersOthersRaiseThem) {
    auto* sticker = new StickerView(new StickerPictureView(samplePhoto("apple.jpg"), QSizeF(80, 80)));
    canvas->addSticker(sticker);
    canvas->applyLowMirrorPattern(5);
    ASSERT_EQ(canvas->stickersOnCanvas().size(), 1);
    for (MirrorPaneView* pane : canvas->showingPanes())
        EXPECT_GT(sticker->zValue(), pane->zValue());
    canvas->applyHighMirrorPattern(4, true);
    EXPECT_GT(sticker->zValue(), canvas->overlayView()->zValue());
    canvas->applyLowMirrorPattern(17);
    EXPECT_TRUE(canvas->stickersOnCanvas().isEmpty());
    canvas->applyLowMirrorPattern(40); // out of range: builds nothing
    EXPECT_EQ(canvas->showingPattern(), -1);
    EXPECT_TRUE(canvas->showingPanes().empty());
}

TEST_F(MirrorCanvasTest, ZoomIsSharedByLinkedPanesOnlyWhereItsOwnPictureZooms) {
    canvas->applyLowMirrorPattern(2);
    MirrorPaneView* first = canvas->showingPanes()[0];
    MirrorPaneView* second = canvas->showingPanes()[1];
    canvas->zoom(first, 2.0, QPointF(40, 40));
    EXPECT_DOUBLE_EQ(second->state().zoomScale, 2.0);
    EXPECT_DOUBLE_EQ(second->imageView()->zoomScale(), 2.0);
    EXPECT_EQ(second->contentOffset(), first->contentOffset());
    canvas->zoom(first, 9.0);
    EXPECT_DOUBLE_EQ(first->state().zoomScale, 4.0);

    // In the seventh pattern a zoom goes to the second picture of the first pattern, not its own.
    canvas->applyLowMirrorPattern(6);
    MirrorPaneView* pane = canvas->showingPanes()[0];
    canvas->zoom(pane, 2.0);
    EXPECT_DOUBLE_EQ(pane->imageView()->zoomScale(), 1.0);
    EXPECT_DOUBLE_EQ(canvas->panes(0)[1]->imageView()->zoomScale(), 2.0);

    // Only the patterns that repeat one picture unmirrored zoom a pane's own picture.
    for (int pattern = 0; pattern < MirrorPatterns::lowCount; ++pattern) {
        canvas->applyLowMirrorPattern(pattern);
        MirrorPaneView* first = canvas->showingPanes()[0];
        canvas->zoom(first, 2.0);
        const bool own = pattern == 2 || pattern == 3 || (pattern >= 9 && pattern <= 12);
        EXPECT_DOUBLE_EQ(first->imageView()->zoomScale(), own ? 2.0 : 1.0) << "pattern " << pattern;
    }
}

// A camera picture held upright is mirrored by the flags for turned pictures, and still meets itself.
TEST_F(MirrorCanvasTest, TurnedPictureGetsTheTurnedMirrorFlags) {
    const ImagePtr photo = samplePhoto()->withOrientation(ImageOrientation::right, 1.0);
    EXPECT_EQ(MirrorPatterns::imageFor(MirrorForm::horizontal, photo)->orientation(),
              ImageOrientation::leftMirrored);
    EXPECT_EQ(MirrorPatterns::imageFor(MirrorForm::vertical, photo)->orientation(),
              ImageOrientation::rightMirrored);
    EXPECT_EQ(MirrorPatterns::imageFor(MirrorForm::vertical, samplePhoto())->orientation(),
              ImageOrientation::downMirrored);
    canvas->setSelectedImage(photo);
    canvas->applyLowMirrorPattern(0);
    const QImage shot = flatten();
    const int seam = shot.width() / 2;
    int worst = 0;
    for (int y = 10; y < shot.height() - 10; y += 7)
        for (int i = 3; i < 60; ++i)
            worst = std::max(worst, channelDistance(shot.pixel(seam - 1 - i, y), shot.pixel(seam + i, y)));
    EXPECT_LE(worst, 2);
}

TEST(MirrorColorText, ReadsAsFarAsItCan) {
    EXPECT_EQ(colorFromHex(QStringLiteral("#FACA16")), Color(250 / 255.0, 202 / 255.0, 22 / 255.0));
    EXPECT_EQ(colorFromHex(QStringLiteral("faca16")), colorFromHex(QStringLiteral("#faCA16")));
    // "color-wheel" reads its leading "c" and stops.
    EXPECT_EQ(colorFromHex(QStringLiteral("color-wheel")), Color(0, 0, 12 / 255.0));
    EXPECT_EQ(colorFromHex(QStringLiteral("zz"), 0.5), Color(0, 0, 0, 0.5));
}

} // namespace
