#pragma once

#include "platform/Image.h"

#include <QImage>
#include <QSizeF>

// The soft, light picture a backdrop pane shows under its photo pane: the photo aspect-filled into
// the pane, blurred and veiled in white, at a fraction of full strength.
namespace BackdropBlur {

// Full strength is a Gaussian of this standard deviation, in points. A phone's extra-light material
// blurs hard enough that a face in a pane turns into a few soft patches of colour; at 20 points (60
// pixels at 3×) shapes below a quarter of a 390-point screen melt, while large areas of colour still
// follow the photo, which is the look a backdrop needs next to the sharp pane.
inline constexpr double kFullRadius = 20.0;

// Full strength also lays white over the picture at this opacity: the material's milky veil, light
// enough that the photo's colours still read through.
inline constexpr double kFullVeil = 0.3;

// The backdrop's picture for a pane of `paneSizePoints` on a screen of `screenScale`, at `fraction`
// (clamped to 0…1) of full strength, where radius and veil both grow linearly. The result has the
// pane's aspect ratio and at most the pane's pixel size: once the blur is strong, fewer pixels carry
// the same picture, so it comes back small, to be drawn scaled to the pane. Null for an empty pane or
// a scale that is not positive. Deterministic; safe on any thread.
QImage make(const Image& photo, QSizeF paneSizePoints, double screenScale, double fraction);

} // namespace BackdropBlur
