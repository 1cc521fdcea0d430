#pragma once

#include <QList>
#include <QRectF>
#include <QSizeF>
#include <optional>
#include <vector>

// The 33 classic frames and the arithmetic that places their cells in the frame area. Pure functions on
// values, in points; the editor's frame area and the artwork generator's previews both lay cells out
// from here, so a preview always shows the frame the editor makes.
namespace FrameGeometry {

constexpr int frameCount = 33;
constexpr int maxCells = 6;
// Outer margin and gap between cells, both ways, before the user moves the spacing slider.
constexpr double defaultSpacing = 5.0;
constexpr double minimumZoomScale = 1.0;
constexpr double maximumZoomScale = 6.0;

// A cell's place in the unit square of the frame area, in sixths: every frame splits its area into
// halves and thirds, and n / 6.0 gives the same double as the half or third it stands for.
struct FrameCell {
    int x, y, width, height;
};

// The cells of `frame` in cell order; empty for a frame outside 0…32.
const std::vector<FrameCell>& cells(int frame);

// Cells by number range: 0…5 have two, 6…11 three, 12…17 four, 18…26 five, 27…32 six; 0 otherwise.
int cellCount(int frame);
// The first frame of the range `frame` lies in (0, 6, 12, 18 or 27); nothing outside 0…32. The frames
// of one range are those the editor offers in place of each other.
std::optional<int> firstFrameOfRange(int frame);

// One cell's rectangle in an area of `area`. A side at the area's edge keeps a margin of the spacing;
// a side inside keeps a gap of one spacing to its neighbour (taken from the cell that starts there).
QRectF cellRect(const FrameCell& cell, const QSizeF& area, double coordx, double coordy);
// Every cell of `frame`. In frame 3 the wide right cell runs to the area's right edge with no margin.
QList<QRectF> cellRects(int frame, const QSizeF& area, double coordx, double coordy);

// The zoom a cell starts at: 2 in frames 0…16, 3 from 17 on, except the first cell of 17 (3, the others
// 2) and the second cell of 31 (2).
double zoomScale(int frame, int cell);

// The spacing a slider value stands for: truncated to whole points. Nothing for a value that is not a
// finite number.
std::optional<double> spacingFromSlider(double value);

// How a picture fills a cell before zooming: the picture's size scaled so that it spans the cell's
// longer side, and the square content the cell may pan over, whose side is the picture's along the
// cell's longer side.
struct PictureFit {
    QSizeF pictureSize;
    QSizeF contentSize;
};
// `picture` must not be empty.
PictureFit pictureFit(const QSizeF& picture, const QSizeF& cell);

} // namespace FrameGeometry
