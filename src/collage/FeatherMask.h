#pragma once

#include "platform/Image.h"

#include <QSize>
#include <QString>
#include <QtGlobal>
#include <cstdint>

// The mask that fades a collage pane (and its backdrop) out towards its edges: the product of a
// horizontal and a vertical linear ramp, full inside, zero on the outermost pixel ring. Sizes and
// feathers are in points; `scale` is pixels per point. Pure functions, safe on any thread.
namespace FeatherMask {

// The mask's bitmap size: each side rounded, at least one pixel.
QSize pixelSize(double width, double height, double scale);

// The shared cache's key, "WxH-FxG": truncated pixel size and whole-point feathers in pixels.
// Unlike pixelSize() the key truncates, so two sizes that round alike may still have two keys.
QString key(double width, double height, double horizontalFeather, double verticalFeather, double scale);

// The cache cost: the pixel size at four bytes a pixel.
std::int64_t cost(double width, double height, double scale);

// Writes W × H alpha bytes, row by row `bytesPerLine` apart, for ramps `hpPixels` wide at the left
// and right and `vpPixels` high at the top and bottom (0 or less: no ramp on that axis).
void render(uchar* alpha, qsizetype bytesPerLine, int width, int height, double hpPixels, double vpPixels);

// The mask as an image at `scale`: white, premultiplied, so its alpha (and each channel) is the
// mask. Feathers are rounded to whole points first. Null for a scale that is not positive or when
// the bitmap cannot be allocated.
ImagePtr make(double width, double height, double horizontalFeather, double verticalFeather, double scale);

} // namespace FeatherMask
