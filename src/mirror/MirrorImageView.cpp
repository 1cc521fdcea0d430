#include "mirror/MirrorImageView.h"

#include "platform/ImageView.h"

#include <QPainter>

MirrorImageView::MirrorImageView(double side, int tag, QGraphicsItem* parent)
    : QGraphicsObject(parent), side_(side), tag_(tag) {
    setAcceptedMouseButtons(Qt::NoButton);
}

void MirrorImageView::setImage(ImagePtr image) {
    if (image == image_)
        return;
    image_ = std::move(image);
    // The mirrored forms share the picture's pixels; turning them upright is done once here, never
    // while the user drags.
    upright_ = image_ ? image_->uprightBitmap() : QImage();
    update();
}

void MirrorImageView::setZoomScale(double zoom) {
    if (zoom == zoom_)
        return;
    prepareGeometryChange();
    zoom_ = zoom;
}

QRectF MirrorImageView::boundingRect() const {
    return {0, 0, side_ * zoom_, side_ * zoom_};
}

void MirrorImageView::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) {
    if (upright_.isNull())
        return;
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(ImageView::targetRect(image_->size(), boundingRect(), ContentMode::scaleAspectFill),
                       upright_);
}
