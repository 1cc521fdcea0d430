#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

// The picture filters the program needs, as pure functions: image in, new image out, the input
// untouched. 32-bit and 8-bit formats are worked on directly; 32-bit pixels with straight alpha are
// premultiplied for the work, so colour does not bleed out of transparent areas, and come back in
// their own format. Any other format comes back as 32-bit (premultiplied when it has alpha). A null
// input gives a null output.
namespace ImageFilters {

// Gaussian blur with a standard deviation of `sigma` pixels. Edges are extended by reflection, so
// the borders neither darken nor lighten. A sigma that is not positive returns the image as is.
QImage gaussianBlur(const QImage& image, double sigma);

// The `source` region of `image` (clipped to it) averaged down to `size`, each output pixel the mean
// of the area it covers. Null for an empty region or size.
QImage areaScaled(const QImage& image, const QRect& source, const QSize& size);

// `image` where `mask` (8-bit, same size, 255 opaque) lets it through and clear elsewhere:
// ARGB32_Premultiplied, each channel scaled by the mask. Null when the sizes differ or either is null.
QImage blendWithMaskOverClear(const QImage& image, const QImage& mask);

// The hue turned by `radians` around the grey axis in YIQ space, brightness kept: a turn of 2π is the
// picture again. Alpha is kept.
QImage hueAdjust(const QImage& image, double radians);

} // namespace ImageFilters
