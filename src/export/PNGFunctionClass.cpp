#include "export/PNGFunctionClass.h"

#include "export/RasterExport.h"

#include <QPainter>

ImagePtr PNGFunctionClass::renderFlattened(const ImagePtr& image, const QColor& color, double width,
                                           double height) {
    if (!image)
        return nullptr;
    const QSizeF own = image->size();
    const QImage upright = image->uprightBitmap();
    return RasterExport::drawInContext(QSizeF(width, height), [&](QPainter& painter) {
        painter.fillRect(QRectF(0, 0, width, height), color);
        const QPointF origin((width - own.width()) / 2, (height - own.height()) / 2);
        painter.drawImage(QRectF(origin, own), upright);
    });
}

ImagePtr PNGFunctionClass::renderClearBacked(const ImagePtr& image) {
    if (!image)
        return nullptr;
    const QSizeF own = image->size();
    const QImage upright = image->uprightBitmap();
    const ImagePtr drawn = RasterExport::drawInContext(own, [&](QPainter& painter) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(QRectF(QPointF(0, 0), own), Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.drawImage(QRectF(QPointF(0, 0), own), upright);
    });
    if (!drawn)
        return image;
    const QByteArray png = drawn->pngData();
    if (png.isEmpty())
        return image;
    // Decoded bytes carry no scale: one pixel to the point, as a picture read from data has.
    ImagePtr decoded = Image::fromData(png);
    return decoded ? decoded : image;
}
