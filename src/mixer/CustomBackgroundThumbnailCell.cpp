#include "mixer/CustomBackgroundThumbnailCell.h"

#include "platform/ImageView.h"

#include <QPainter>
#include <QPainterPath>

CustomBackgroundThumbnailCell::CustomBackgroundThumbnailCell(QWidget* parent) : QAbstractButton(parent) {
    setFixedSize(side, side);
    setCursor(Qt::PointingHandCursor);
}

void CustomBackgroundThumbnailCell::configure(ImagePtr image, bool isSelected) {
    if (image != image_) {
        image_ = std::move(image);
        // Scaled once, so scrolling a row of them costs nothing.
        thumbnail_ = image_
                         ? image_->uprightBitmap().scaled(side * 2, side * 2, Qt::KeepAspectRatioByExpanding,
                                                          Qt::SmoothTransformation)
                         : QImage();
    }
    ringShown_ = isSelected;
    update();
}

void CustomBackgroundThumbnailCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QPainterPath clip;
    clip.addRoundedRect(QRectF(rect()), 10, 10);
    painter.fillPath(clip, QColor::fromRgbF(0.22, 0.22, 0.22));
    if (!thumbnail_.isNull()) {
        painter.setClipPath(clip);
        painter.drawImage(
            ImageView::targetRect(thumbnail_.size(), QRectF(rect()), ContentMode::scaleAspectFill),
            thumbnail_);
        painter.setClipping(false);
    }
    if (ringShown_) {
        painter.setPen(QPen(QColor(10, 132, 255), 3));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), 10, 10);
    }
}
