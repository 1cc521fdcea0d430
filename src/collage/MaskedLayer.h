#pragma once

#include <QImage>
#include <QSizeF>
#include <functional>

class QPainter;

// Composes a view's picture with its feather mask into one premultiplied bitmap: the content is
// drawn in points into a layer of `pixelScale` pixels per point, then the layer's alpha is
// multiplied by the mask stretched over the whole layer. Without a mask the layer stays hard-edged.
namespace MaskedLayer {

QSize layerPixelSize(const QSizeF& sizePoints, double pixelScale);

QImage compose(const QSizeF& sizePoints, double pixelScale, const std::function<void(QPainter&)>& drawContent,
               const QImage& mask);

// Pixels per point at which a painter draws, from its world transform and device; `exact` keeps the
// value (flattening), otherwise it is rounded up to a half power of two so that continuous zooming
// reuses composed layers.
double pixelScaleFor(const QPainter& painter, bool exact, double maximum);

// While set (flattening, main thread), layers are composed at exactly the painter's resolution.
void setRenderingSnapshot(bool snapshot);
bool isRenderingSnapshot();

} // namespace MaskedLayer
