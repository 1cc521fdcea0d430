#include "export/FileTypeRowView.h"

#include "platform/Assets.h"

#include <QPainter>
#include <QPainterPath>

FileTypeRowView::FileTypeRowView(SavingtypeMethod type, QWidget* parent)
    : QAbstractButton(parent), type_(type) {
    setObjectName(QStringLiteral("fileTypeRow"));
    setCursor(Qt::PointingHandCursor);
    setText(savingTypeTitles().value(static_cast<int>(type)));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize FileTypeRowView::sizeHint() const {
    return QSize(200, 48);
}

void FileTypeRowView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // Half a point inside, so the hairline border is not cut in half by the edge.
    const QRectF frame =
        QRectF(rect()).adjusted(kBorderWidth / 2, kBorderWidth / 2, -kBorderWidth / 2, -kBorderWidth / 2);
    painter.setPen(QPen(borderColor(), kBorderWidth));
    painter.setBrush(isDown() ? QColor(0, 0, 0, 12) : QColor(Qt::transparent));
    painter.drawRoundedRect(frame, kCornerRadius, kCornerRadius);

    const int iconSide = height() - 16;
    if (ImagePtr icon = Assets::image(savingTypeIconNames().value(static_cast<int>(type_))))
        painter.drawImage(QRectF(12, 8, iconSide, iconSide), icon->uprightBitmap());
    painter.setPen(Qt::black);
    QFont font = painter.font();
    font.setPixelSize(15);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    painter.drawText(QRectF(24 + iconSide, 0, width() - iconSide - 60, height()), Qt::AlignVCenter, text());
    painter.setPen(QColor(0x94, 0x94, 0x94));
    painter.drawText(QRectF(width() - 32, 0, 20, height()), Qt::AlignCenter, QStringLiteral("›"));
}
