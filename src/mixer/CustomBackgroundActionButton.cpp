#include "mixer/CustomBackgroundActionButton.h"

#include "platform/Assets.h"

#include <QPainter>
#include <QPainterPath>

CustomBackgroundActionButton::CustomBackgroundActionButton(const QString& title, const QString& symbolName,
                                                           QWidget* parent)
    : QPushButton(parent), title_(title), symbolName_(symbolName) {
    setObjectName(title);
    setAccessibleName(title);
    setCursor(Qt::PointingHandCursor);
    setFixedHeight(76);
}

void CustomBackgroundActionButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath tile;
    tile.addRoundedRect(QRectF(rect()), 12, 12);
    painter.fillPath(tile,
                     isDown() ? QColor::fromRgbF(0.24, 0.24, 0.24) : QColor::fromRgbF(0.16, 0.16, 0.16));
    // Icon and title centred together, 8 apart.
    constexpr int icon = 24, gap = 8, text = 16;
    const int top = (height() - icon - gap - text) / 2;
    const QIcon symbol = Assets::symbol(symbolName_, icon);
    if (!symbol.isNull())
        symbol.paint(&painter, QRect((width() - icon) / 2, top, icon, icon));
    QFont font = painter.font();
    font.setPixelSize(13);
    font.setWeight(QFont::Medium);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRect(0, top + icon + gap, width(), text), Qt::AlignCenter, title_);
}
