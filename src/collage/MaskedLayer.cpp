#include "collage/MaskedLayer.h"

#include <QPaintDevice>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <algorithm>
#include <cmath>

namespace MaskedLayer {

namespace {
bool renderingSnapshot = false;
}

void setRenderingSnapshot(bool snapshot) {
    renderingSnapshot = snapshot;
}

bool isRenderingSnapshot() {
    return renderingSnapshot;
}

QSize layerPixelSize(const QSizeF& sizePoints, double pixelScale) {
    return QSize(std::max(1, static_cast<int>(std::lround(sizePoints.width() * pixelScale))),
                 std::max(1, static_cast<int>(std::lround(sizePoints.height() * pixelScale))));
}

QImage compose(const QSizeF& sizePoints, double pixelScale, const std::function<void(QPainter&)>& drawContent,
               const QImage& mask) {
    const QSize pixels = layerPixelSize(sizePoints, pixelScale);
    QImage layer(pixels, QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    QPainter painter(&layer);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels.width() / sizePoints.width(), pixels.height() / sizePoints.height());
    painter.save();
    drawContent(painter);
    painter.restore();
    if (!mask.isNull()) {
        painter.resetTransform();
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        painter.drawImage(QRect(QPoint(0, 0), pixels), mask);
    }
    return layer;
}

double pixelScaleFor(const QPainter& painter, bool exact, double maximum) {
    double scale = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter.worldTransform());
    if (const QPaintDevice* device = painter.device())
        scale *= device->devicePixelRatioF();
    scale = std::clamp(scale, 0.05, maximum);
    if (exact)
        return scale;
    const double steps = std::ceil(std::log2(scale) * 2.0 - 1e-9) / 2.0;
    return std::min(maximum, std::pow(2.0, steps));
}

} // namespace MaskedLayer
