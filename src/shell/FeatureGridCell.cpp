#include "shell/FeatureGridCell.h"

#include "platform/ImageView.h"

#include <QPainter>
#include <QPainterPath>

FeatureGridCell::FeatureGridCell(QWidget* parent) : QAbstractButton(parent) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
}

void FeatureGridCell::configure(ImagePtr image, const QString& title) {
    setText(title);
    setAccessibleName(title);
    if (image != image_) {
        image_ = std::move(image);
        upright_ = image_ ? image_->uprightBitmap() : QImage();
    }
    update();
}

void FeatureGridCell::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF bounds = rect();
    p.setClipRect(bounds);
    if (!upright_.isNull()) {
        const QRectF target = ImageView::targetRect(image_->size(), bounds, ContentMode::scaleAspectFit);
        p.drawImage(target, upright_);
    } else {
        QPainterPath card;
        card.addRoundedRect(bounds.adjusted(6, 6, -6, -6), 16, 16);
        p.fillPath(card, Qt::white);
        p.setPen(QColor(0x1c, 0x1c, 0x1e));
        QFont font = p.font();
        font.setBold(true);
        font.setPixelSize(15);
        p.setFont(font);
        p.drawText(bounds, Qt::AlignCenter | Qt::TextWordWrap, text());
    }
    if (isDown()) {
        QPainterPath shade;
        shade.addRoundedRect(bounds.adjusted(6, 6, -6, -6), 16, 16);
        p.fillPath(shade, QColor(0, 0, 0, 45));
    }
}
