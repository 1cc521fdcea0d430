#include "filters/FilterThumbnailButton.h"

#include <QPainter>
#include <QPainterPath>

FilterThumbnailButton::FilterThumbnailButton(int tag, QImage thumbnail, QWidget* parent)
    : QAbstractButton(parent), tag_(tag), thumbnail_(std::move(thumbnail)) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus);
}

void FilterThumbnailButton::setBorder(double width, const QColor& color) {
    borderWidth_ = width;
    borderColor_ = color;
    update();
}

void FilterThumbnailButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRectF bounds = rect();
    QPainterPath clip;
    clip.addRoundedRect(bounds, cornerRadius, cornerRadius);
    painter.setClipPath(clip);
    if (!thumbnail_.isNull()) {
        // Aspect fill: cover the button, centred, and let the clip cut the overflow.
        const QSizeF size = QSizeF(thumbnail_.size()).scaled(bounds.size(), Qt::KeepAspectRatioByExpanding);
        const QRectF target(bounds.center().x() - size.width() / 2, bounds.center().y() - size.height() / 2,
                            size.width(), size.height());
        painter.drawImage(target, thumbnail_);
    }
    if (isDown()) // the touch highlight
        painter.fillRect(bounds, QColor(255, 255, 255, 60));
    if (borderWidth_ > 0 && borderColor_.alpha() > 0) {
        const double inset = borderWidth_ / 2;
        painter.setPen(QPen(borderColor_, borderWidth_));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(bounds.adjusted(inset, inset, -inset, -inset), cornerRadius - inset,
                                cornerRadius - inset);
    }
}
