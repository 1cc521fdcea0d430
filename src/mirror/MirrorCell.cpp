#include "mirror/MirrorCell.h"

#include "platform/Assets.h"
#include "platform/ImageView.h"
#include "resources/AssetNames.h"

#include <QPainter>
#include <QPainterPath>

MirrorCell::MirrorCell(int index, QWidget* parent) : QAbstractButton(parent), index_(index) {
    setFixedSize(side, side);
    setCursor(Qt::PointingHandCursor);
    preview_ = Assets::image(AssetNames::overlayThumbnailName(index));
    if (preview_)
        upright_ = preview_->uprightBitmap();
    setAccessibleName(AssetNames::overlayThumbnailName(index));
}

void MirrorCell::setChosen(bool chosen) {
    chosen_ = chosen;
    update();
}

void MirrorCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QPainterPath clip;
    clip.addRoundedRect(QRectF(rect()), 5, 5);
    painter.setClipPath(clip);
    if (!upright_.isNull())
        painter.drawImage(
            ImageView::targetRect(preview_->size(), QRectF(rect()), ContentMode::scaleAspectFill), upright_);
    if (chosen_) {
        painter.setPen(QPen(QColor(0xfa, 0xca, 0x16), 3));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), 5, 5);
    }
}
