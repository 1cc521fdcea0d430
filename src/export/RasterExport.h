#pragma once

#include "platform/Image.h"

#include <QSizeF>
#include <QString>
#include <functional>

class QPainter;

// The arithmetic and drawing the format sheets share: label texts, the fit factor and the image
// context the sheets draw into. Pure functions; drawing functions may run on any thread.
namespace RasterExport {

// A double as its plain decimal description: the shortest text that reads back to the same value,
// always with a fraction ("1080.0", "0.1", "333.3333333333333"); exponent form above 2^53 and below
// 1e-4, as "1e+16".
QString decimalDescription(double value);

// "W x H px" from two decimal descriptions: the label as a sheet loads.
QString pixelLabelAtLoad(double width, double height);
// "W x H px" with one decimal each: the label while the size slider moves.
QString pixelLabel(double width, double height);
// The size slider's value with one decimal.
QString sizeValueText(float value);

// The quality slider's words: the value times ten truncated toward zero, in single precision as the
// slider gives it; a product that is not finite is a programmer's error.
QString qualityValueText(float value);
// "File size: …" for a quality value; below 0.1 reads "Large" on purpose, as the scale wraps round.
QString fileSizeText(float value);

// The factor that fits `size` into the target while keeping its proportions: the smaller of the two.
double fitFactor(double targetWidth, double targetHeight, const QSizeF& size);

// A picture of `points` at the screen's scale, drawn by `draw` in points on a clear (not opaque)
// context. Null when the size comes to no pixels.
ImagePtr drawInContext(const QSizeF& points, const std::function<void(QPainter&)>& draw);

// The picture drawn at (0, 0) in its size times `factor`.
ImagePtr renderScaled(const ImagePtr& image, double factor);

} // namespace RasterExport
