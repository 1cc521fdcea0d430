#include "frames/FrameGeometry.h"

#include <QStringList>
#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace FrameGeometry;

// The frames as fractions of the area (x y width height per cell), written out independently of the
// program's table so that a slip in either shows.
const std::array<const char*, 33> kFractions{
    "0 0 1 1/2; 0 1/2 1 1/2",
    "0 0 1/2 1; 1/2 0 1/2 1",
    "0 0 2/3 1; 2/3 0 1/3 1",
    "0 0 1/3 1; 1/3 0 2/3 1",
    "0 0 1 1/3; 0 1/3 1 2/3",
    "0 0 1 2/3; 0 2/3 1 1/3",
    "0 0 1 1/2; 0 1/2 1/2 1/2; 1/2 1/2 1/2 1/2",
    "0 0 1/2 1/2; 1/2 0 1/2 1/2; 0 1/2 1 1/2",
    "0 0 1/2 1/2; 1/2 0 1/2 1; 0 1/2 1/2 1/2",
    "0 0 1/2 1; 1/2 0 1/2 1/2; 1/2 1/2 1/2 1/2",
    "0 0 1 1/3; 0 1/3 1 1/3; 0 2/3 1 1/3",
    "0 0 1/3 1; 1/3 0 1/3 1; 2/3 0 1/3 1",
    "0 0 1/2 1/2; 0 1/2 1/2 1/2; 1/2 0 1/2 1/2; 1/2 1/2 1/2 1/2",
    "0 0 1/2 1/3; 0 1/3 1 1/3; 0 2/3 1 1/3; 1/2 0 1/2 1/3",
    "0 0 1 1/3; 0 1/3 1/2 1/3; 1/2 1/3 1/2 1/3; 0 2/3 1 1/3",
    "0 0 1/2 1; 1/2 0 1/2 1/3; 1/2 1/3 1/2 1/3; 1/2 2/3 1/2 1/3",
    "0 0 1/2 1/3; 0 1/3 1/2 1/3; 0 2/3 1/2 1/3; 1/2 0 1/2 1",
    "0 0 1/2 2/3; 0 2/3 1 1/3; 1/2 0 1/2 1/3; 1/2 1/3 1/2 1/3",
    "0 0 1/3 1/3; 0 1/3 1/3 2/3; 1/3 2/3 1/3 1/3; 2/3 2/3 1/3 1/3; 1/3 0 2/3 2/3",
    "0 0 1/3 1/2; 1/3 0 1/3 1/2; 2/3 0 1/3 1/2; 0 1/2 1/2 1/2; 1/2 1/2 1/2 1/2",
    "0 0 1/2 1/2; 1/2 0 1/2 1/2; 0 1/2 1/3 1/2; 1/3 1/2 1/3 1/2; 2/3 1/2 1/3 1/2",
    "0 0 1/2 1/3; 0 1/3 1/2 1/3; 0 2/3 1/2 1/3; 1/2 0 1/2 1/2; 1/2 1/2 1/2 1/2",
    "0 0 1/3 1/2; 0 1/2 1/3 1/2; 1/3 0 1/3 1; 2/3 0 1/3 1/2; 2/3 1/2 1/3 1/2",
    "0 0 1/2 1/3; 1/2 0 1/2 1/3; 0 1/3 1 1/3; 0 2/3 1/2 1/3; 1/2 2/3 1/2 1/3",
    "0 0 1/2 1/3; 0 1/3 1/2 1/3; 1/2 0 1/2 1/3; 1/2 1/3 1/2 1/3; 0 2/3 1 1/3",
    "0 0 1 1/3; 0 1/3 1/2 1/3; 1/2 1/3 1/2 1/3; 0 2/3 1/2 1/3; 1/2 2/3 1/2 1/3",
    "0 0 2/3 2/3; 2/3 0 1/3 1/3; 2/3 1/3 1/3 1/3; 0 2/3 1/3 1/3; 1/3 2/3 2/3 1/3",
    "0 0 1/3 1/2; 1/3 0 1/3 1/2; 2/3 0 1/3 1/2; 0 1/2 1/3 1/2; 1/3 1/2 1/3 1/2; 2/3 1/2 1/3 1/2",
    "0 0 1/2 1/3; 1/2 0 1/2 1/3; 0 1/3 1/2 1/3; 1/2 1/3 1/2 1/3; 0 2/3 1/2 1/3; 1/2 2/3 1/2 1/3",
    "0 0 1/3 1/3; 0 1/3 1/3 2/3; 1/3 0 1/3 1/2; 1/3 1/2 1/3 1/2; 2/3 0 1/3 2/3; 2/3 2/3 1/3 1/3",
    "0 0 1/3 2/3; 0 2/3 1/3 1/3; 1/3 0 1/3 1/2; 1/3 1/2 1/3 1/2; 2/3 0 1/3 1/3; 2/3 1/3 1/3 2/3",
    "0 0 1/3 1/3; 1/3 0 2/3 1/3; 0 1/3 1/2 1/3; 1/2 1/3 1/2 1/3; 0 2/3 2/3 1/3; 2/3 2/3 1/3 1/3",
    "0 0 2/3 1/3; 2/3 0 1/3 1/3; 0 1/3 1/2 1/3; 1/2 1/3 1/2 1/3; 0 2/3 1/3 1/3; 1/3 2/3 2/3 1/3",
};

double fraction(const QString& text) {
    const QStringList parts = text.split(QLatin1Char('/'));
    return parts.size() == 2 ? parts[0].toDouble() / parts[1].toDouble() : text.toDouble();
}

// Unit-square rectangles of a frame.
QList<QRectF> unitCells(int frame) {
    QList<QRectF> cells;
    for (const QString& cell : QString::fromLatin1(kFractions[std::size_t(frame)]).split(QLatin1Char(';'))) {
        const QStringList v = cell.simplified().split(QLatin1Char(' '));
        cells << QRectF(fraction(v[0]), fraction(v[1]), fraction(v[2]), fraction(v[3]));
    }
    return cells;
}

constexpr double kEps = 1e-9;
const std::array<QSizeF, 2> kAreas{QSizeF(390, 422), QSizeF(320, 284)};
// Whole points across the spacing slider's range.
const std::array<double, 6> kSpacings{0, 1, 5, 12, 20, 30};

bool near(double a, double b) {
    return std::abs(a - b) < 1e-6;
}

TEST(FrameGeometry, CellCountsFollowTheNumberRangesAndTheTable) {
    const std::array<int, 6> firsts{0, 6, 12, 18, 27, 33};
    for (int range = 0; range < 5; ++range) {
        for (int frame = firsts[std::size_t(range)]; frame < firsts[std::size_t(range) + 1]; ++frame) {
            EXPECT_EQ(cellCount(frame), range + 2) << frame;
            EXPECT_EQ(int(cells(frame).size()), range + 2) << frame;
            EXPECT_EQ(firstFrameOfRange(frame), firsts[std::size_t(range)]) << frame;
        }
    }
    for (int outside : {-1, 33, 100}) {
        EXPECT_EQ(cellCount(outside), 0);
        EXPECT_TRUE(cells(outside).empty());
        EXPECT_TRUE(cellRects(outside, kAreas[0], 5, 5).isEmpty());
        EXPECT_FALSE(firstFrameOfRange(outside));
    }
}

TEST(FrameGeometry, AtSpacingZeroCellsAreTheTableAndTileTheArea) {
    for (const QSizeF& area : kAreas) {
        for (int frame = 0; frame < frameCount; ++frame) {
            const QList<QRectF> rects = cellRects(frame, area, 0, 0);
            const QList<QRectF> unit = unitCells(frame);
            ASSERT_EQ(rects.size(), unit.size()) << frame;
            double covered = 0;
            for (int i = 0; i < rects.size(); ++i) {
                const QRectF expected(unit[i].x() * area.width(), unit[i].y() * area.height(),
                                      unit[i].width() * area.width(), unit[i].height() * area.height());
                EXPECT_NEAR(rects[i].x(), expected.x(), kEps) << frame << " cell " << i;
                EXPECT_NEAR(rects[i].y(), expected.y(), kEps) << frame << " cell " << i;
                EXPECT_NEAR(rects[i].width(), expected.width(), kEps) << frame << " cell " << i;
                EXPECT_NEAR(rects[i].height(), expected.height(), kEps) << frame << " cell " << i;
                covered += rects[i].width() * rects[i].height();
            }
            EXPECT_NEAR(covered, area.width() * area.height(), 1e-6) << frame;
        }
    }
}

// For every frame and spacing: inside the area, no overlaps, a margin of one spacing at the area's
// edges and a gap of one spacing between neighbours, except the right edge of frame 3's wide cell.
TEST(FrameGeometry, CellsKeepMarginsAndGapsAcrossTheSpacingRange) {
    for (const QSizeF& area : kAreas) {
        for (double s : kSpacings) {
            for (int frame = 0; frame < frameCount; ++frame) {
                const QList<QRectF> rects = cellRects(frame, area, s, s);
                const QList<QRectF> unit = unitCells(frame);
                for (int i = 0; i < rects.size(); ++i) {
                    const QRectF& r = rects[i];
                    const QString where =
                        QStringLiteral("frame %1 cell %2 spacing %3").arg(frame).arg(i).arg(s);
                    EXPECT_GT(r.width(), 0) << qPrintable(where);
                    EXPECT_GT(r.height(), 0) << qPrintable(where);
                    EXPECT_GE(r.left(), -kEps) << qPrintable(where);
                    EXPECT_GE(r.top(), -kEps) << qPrintable(where);
                    EXPECT_LE(r.right(), area.width() + kEps) << qPrintable(where);
                    EXPECT_LE(r.bottom(), area.height() + kEps) << qPrintable(where);
                    const bool atLeft = unit[i].x() == 0, atTop = unit[i].y() == 0;
                    const bool atRight = near(unit[i].right(), 1), atBottom = near(unit[i].bottom(), 1);
                    const bool edgeException = frame == 3 && i == 1;
                    EXPECT_TRUE(!atLeft || near(r.left(), s)) << qPrintable(where);
                    EXPECT_TRUE(!atTop || near(r.top(), s)) << qPrintable(where);
                    EXPECT_TRUE(!atRight || near(r.right(), edgeException ? area.width() : area.width() - s))
                        << qPrintable(where);
                    EXPECT_TRUE(!atBottom || near(r.bottom(), area.height() - s)) << qPrintable(where);
                    for (int j = 0; j < rects.size(); ++j) {
                        if (j == i)
                            continue;
                        const QRectF overlap = r.intersected(rects[j]);
                        EXPECT_TRUE(overlap.isEmpty() || overlap.width() * overlap.height() < 1e-6)
                            << qPrintable(where) << " overlaps " << j;
                        // j starts where i ends, side by side or one above the other.
                        const bool beside = near(unit[j].left(), unit[i].right()) &&
                                            unit[j].top() < unit[i].bottom() &&
                                            unit[i].top() < unit[j].bottom();
                        const bool below = near(unit[j].top(), unit[i].bottom()) &&
                                           unit[j].left() < unit[i].right() &&
                                           unit[i].left() < unit[j].right();
                        EXPECT_TRUE(!beside || near(rects[j].left() - r.right(), s))
                            << qPrintable(where) << " to " << j;
                        EXPECT_TRUE(!below || near(rects[j].top() - r.bottom(), s))
                            << qPrintable(where) << " to " << j;
                    }
                }
            }
        }
    }
}

TEST(FrameGeometry, SplitsOfTheTwoCellFramesDifferOnlyByTheirFraction) {
    const QSizeF area(390, 422);
    // Thirds are divided out, not rounded: 390 / 3 is exactly 130, 422 / 3 is not a whole number.
    EXPECT_DOUBLE_EQ(cellRects(4, area, 0, 0)[1].top(), 422 / 3.0);
    EXPECT_DOUBLE_EQ(cellRects(2, area, 0, 0)[1].left(), 2 * 390 / 3.0);
    EXPECT_DOUBLE_EQ(cellRects(0, area, 0, 0)[1].top(), 211);
    EXPECT_DOUBLE_EQ(cellRects(3, area, 5, 5)[1].width(), 260);
}

TEST(FrameGeometry, ZoomStartsAtTwoThenThreeWithTwoExceptions) {
    for (int frame = 0; frame < frameCount; ++frame) {
        for (int cell = 0; cell < cellCount(frame); ++cell) {
            double expected = frame <= 16 ? 2.0 : 3.0;
            if (frame == 17)
                expected = cell == 0 ? 3.0 : 2.0;
            if (frame == 31 && cell == 1)
                expected = 2.0;
            EXPECT_EQ(zoomScale(frame, cell), expected) << frame << " cell " << cell;
        }
    }
    EXPECT_EQ(zoomScale(31, 0), 3.0);
    EXPECT_EQ(zoomScale(16, 3), 2.0);
}

TEST(FrameGeometry, SliderSpacingIsTruncatedAndMustBeANumber) {
    EXPECT_EQ(spacingFromSlider(7.9), 7.0);
    EXPECT_EQ(spacingFromSlider(0.4), 0.0);
    EXPECT_EQ(spacingFromSlider(30), 30.0);
    EXPECT_FALSE(spacingFromSlider(std::nan("")));
    EXPECT_FALSE(spacingFromSlider(INFINITY));
}

TEST(FrameGeometry, PictureFitSpansTheLongerSideOfTheCellAndPansOverASquare) {
    // A wide cell: the picture takes the cell's width.
    PictureFit wide = pictureFit(QSizeF(400, 300), QSizeF(200, 100));
    EXPECT_EQ(wide.pictureSize, QSizeF(200, 150));
    EXPECT_EQ(wide.contentSize, QSizeF(150, 150));
    // A tall (or square) cell: the picture takes the cell's height.
    PictureFit tall = pictureFit(QSizeF(400, 300), QSizeF(100, 200));
    EXPECT_NEAR(tall.pictureSize.width(), 400.0 * 200 / 300, 1e-9);
    EXPECT_EQ(tall.pictureSize.height(), 200);
    EXPECT_EQ(tall.contentSize.width(), tall.pictureSize.width());
    EXPECT_EQ(tall.contentSize.height(), tall.pictureSize.width());
    // Extreme pictures stay finite.
    PictureFit dot = pictureFit(QSizeF(1, 1), QSizeF(120, 80));
    EXPECT_EQ(dot.pictureSize, QSizeF(120, 120));
    PictureFit strip = pictureFit(QSizeF(20000, 1), QSizeF(100, 200));
    EXPECT_EQ(strip.pictureSize, QSizeF(4'000'000, 200));
}

} // namespace
