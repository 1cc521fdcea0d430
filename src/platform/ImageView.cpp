#include "platform/ImageView.h"

#include <QPainter>
#include <QPainterPath>

ImageView::ImageView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TranslucentBackground);
}

void ImageView::setImage(ImagePtr image) {
    if (image == image_)
        return;
    image_ = std::move(image);
    upright_ = image_ ? image_->uprightBitmap() : QImage();
    update();
}

void ImageView::setContentMode(ContentMode mode) {
    mode_ = mode;
    update();
}

void ImageView::setCornerRadius(double radius) {
    cornerRadius_ = radius;
    update();
}

QRectF ImageView::targetRect(const QSizeF& imageSize, const QRectF& bounds, ContentMode mode) {
    if (imageSize.isEmpty() || bounds.isEmpty())
        return bounds;
    switch (mode) {
    case ContentMode::scaleToFill:
        return bounds;
    case ContentMode::center: {
        QRectF r(QPointF(), imageSize);
        r.moveCenter(bounds.center());
        return r;
    }
    case ContentMode::scaleAspectFit:
    case ContentMode::scaleAspectFill: {
        const double sx = bounds.width() / imageSize.width();
        const double sy = bounds.height() / imageSize.height();
        const double s = mode == ContentMode::scaleAspectFit ? std::min(sx, sy) : std::max(sx, sy);
        QRectF r(QPointF(), imageSize * s);
        r.moveCenter(bounds.center());
        return r;
    }
    }
    return bounds;
}

void ImageView::paintEvent(QPaintEvent*) {
    if (upright_.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::Antialiasing);
    if (cornerRadius_ > 0.0) {
        QPainterPath clip;
        clip.addRoundedRect(QRectF(rect()), cornerRadius_, cornerRadius_);
        painter.setClipPath(clip);
    } else {
        painter.setClipRect(rect());
    }
    painter.drawImage(targetRect(image_->size(), QRectF(rect()), mode_), upright_);
}
