#include "frames/FrameGeometry.h"

#include <cmath>

namespace FrameGeometry {

namespace {

// x y width height of each cell in sixths of the area, cells in order, frames in order.
const std::vector<std::vector<FrameCell>> table{
    {{0, 0, 6, 3}, {0, 3, 6, 3}},                                                         // 0
    {{0, 0, 3, 6}, {3, 0, 3, 6}},                                                         // 1
    {{0, 0, 4, 6}, {4, 0, 2, 6}},                                                         // 2
    {{0, 0, 2, 6}, {2, 0, 4, 6}},                                                         // 3
    {{0, 0, 6, 2}, {0, 2, 6, 4}},                                                         // 4
    {{0, 0, 6, 4}, {0, 4, 6, 2}},                                                         // 5
    {{0, 0, 6, 3}, {0, 3, 3, 3}, {3, 3, 3, 3}},                                           // 6
    {{0, 0, 3, 3}, {3, 0, 3, 3}, {0, 3, 6, 3}},                                           // 7
    {{0, 0, 3, 3}, {3, 0, 3, 6}, {0, 3, 3, 3}},                                           // 8
    {{0, 0, 3, 6}, {3, 0, 3, 3}, {3, 3, 3, 3}},                                           // 9
    {{0, 0, 6, 2}, {0, 2, 6, 2}, {0, 4, 6, 2}},                                           // 10
    {{0, 0, 2, 6}, {2, 0, 2, 6}, {4, 0, 2, 6}},                                           // 11
    {{0, 0, 3, 3}, {0, 3, 3, 3}, {3, 0, 3, 3}, {3, 3, 3, 3}},                             // 12
    {{0, 0, 3, 2}, {0, 2, 6, 2}, {0, 4, 6, 2}, {3, 0, 3, 2}},                             // 13
    {{0, 0, 6, 2}, {0, 2, 3, 2}, {3, 2, 3, 2}, {0, 4, 6, 2}},                             // 14
    {{0, 0, 3, 6}, {3, 0, 3, 2}, {3, 2, 3, 2}, {3, 4, 3, 2}},                             // 15
    {{0, 0, 3, 2}, {0, 2, 3, 2}, {0, 4, 3, 2}, {3, 0, 3, 6}},                             // 16
    {{0, 0, 3, 4}, {0, 4, 6, 2}, {3, 0, 3, 2}, {3, 2, 3, 2}},                             // 17
    {{0, 0, 2, 2}, {0, 2, 2, 4}, {2, 4, 2, 2}, {4, 4, 2, 2}, {2, 0, 4, 4}},               // 18
    {{0, 0, 2, 3}, {2, 0, 2, 3}, {4, 0, 2, 3}, {0, 3, 3, 3}, {3, 3, 3, 3}},               // 19
    {{0, 0, 3, 3}, {3, 0, 3, 3}, {0, 3, 2, 3}, {2, 3, 2, 3}, {4, 3, 2, 3}},               // 20
    {{0, 0, 3, 2}, {0, 2, 3, 2}, {0, 4, 3, 2}, {3, 0, 3, 3}, {3, 3, 3, 3}},               // 21
    {{0, 0, 2, 3}, {0, 3, 2, 3}, {2, 0, 2, 6}, {4, 0, 2, 3}, {4, 3, 2, 3}},               // 22
    {{0, 0, 3, 2}, {3, 0, 3, 2}, {0, 2, 6, 2}, {0, 4, 3, 2}, {3, 4, 3, 2}},               // 23
    {{0, 0, 3, 2}, {0, 2, 3, 2}, {3, 0, 3, 2}, {3, 2, 3, 2}, {0, 4, 6, 2}},               // 24
    {{0, 0, 6, 2}, {0, 2, 3, 2}, {3, 2, 3, 2}, {0, 4, 3, 2}, {3, 4, 3, 2}},               // 25
    {{0, 0, 4, 4}, {4, 0, 2, 2}, {4, 2, 2, 2}, {0, 4, 2, 2}, {2, 4, 4, 2}},               // 26
    {{0, 0, 2, 3}, {2, 0, 2, 3}, {4, 0, 2, 3}, {0, 3, 2, 3}, {2, 3, 2, 3}, {4, 3, 2, 3}}, // 27
    {{0, 0, 3, 2}, {3, 0, 3, 2}, {0, 2, 3, 2}, {3, 2, 3, 2}, {0, 4, 3, 2}, {3, 4, 3, 2}}, // 28
    {{0, 0, 2, 2}, {0, 2, 2, 4}, {2, 0, 2, 3}, {2, 3, 2, 3}, {4, 0, 2, 4}, {4, 4, 2, 2}}, // 29
    {{0, 0, 2, 4}, {0, 4, 2, 2}, {2, 0, 2, 3}, {2, 3, 2, 3}, {4, 0, 2, 2}, {4, 2, 2, 4}}, // 30
    {{0, 0, 2, 2}, {2, 0, 4, 2}, {0, 2, 3, 2}, {3, 2, 3, 2}, {0, 4, 4, 2}, {4, 4, 2, 2}}, // 31
    {{0, 0, 4, 2}, {4, 0, 2, 2}, {0, 2, 3, 2}, {3, 2, 3, 2}, {0, 4, 2, 2}, {2, 4, 4, 2}}, // 32
};

double sixths(int n) {
    return n / 6.0;
}

// One axis of a cell: at the edge a margin of `spacing` on both sides is taken off, inside one gap.
void placeAxis(int start, int length, double extent, double spacing, double& origin, double& size) {
    if (start == 0) {
        origin = spacing;
        size = sixths(length) * extent - 2 * spacing;
    } else {
        origin = sixths(start) * extent;
        size = sixths(length) * extent - spacing;
    }
}

} // namespace

const std::vector<FrameCell>& cells(int frame) {
    static const std::vector<FrameCell> none;
    return frame >= 0 && frame < frameCount ? table[std::size_t(frame)] : none;
}

int cellCount(int frame) {
    if (frame < 0)
        return 0;
    if (frame < 6)
        return 2;
    if (frame < 12)
        return 3;
    if (frame < 18)
        return 4;
    if (frame < 27)
        return 5;
    if (frame < 33)
        return 6;
    return 0;
}

std::optional<int> firstFrameOfRange(int frame) {
    switch (cellCount(frame)) {
    case 2:
        return 0;
    case 3:
        return 6;
    case 4:
        return 12;
    case 5:
        return 18;
    case 6:
        return 27;
    default:
        return std::nullopt;
    }
}

QRectF cellRect(const FrameCell& cell, const QSizeF& area, double coordx, double coordy) {
    double x = 0, y = 0, width = 0, height = 0;
    placeAxis(cell.x, cell.width, area.width(), coordx, x, width);
    placeAxis(cell.y, cell.height, area.height(), coordy, y, height);
    return {x, y, width, height};
}

QList<QRectF> cellRects(int frame, const QSizeF& area, double coordx, double coordy) {
    QList<QRectF> rects;
    for (const FrameCell& cell : cells(frame))
        rects << cellRect(cell, area, coordx, coordy);
    if (frame == 3)
        rects[1].setWidth(sixths(cells(3)[1].width) * area.width());
    return rects;
}

double zoomScale(int frame, int cell) {
    if (frame == 17)
        return cell == 0 ? 3.0 : 2.0;
    if (frame == 31 && cell == 1)
        return 2.0;
    return frame <= 16 ? 2.0 : 3.0;
}

std::optional<double> spacingFromSlider(double value) {
    if (!std::isfinite(value))
        return std::nullopt;
    return std::trunc(value);
}

PictureFit pictureFit(const QSizeF& picture, const QSizeF& cell) {
    const double ratio = picture.width() / picture.height();
    if (cell.height() < cell.width()) {
        const QSizeF size(cell.width(), cell.width() / ratio);
        return {size, QSizeF(size.height(), size.height())};
    }
    const QSizeF size(ratio * cell.height(), cell.height());
    return {size, QSizeF(size.width(), size.width())};
}

} // namespace FrameGeometry
