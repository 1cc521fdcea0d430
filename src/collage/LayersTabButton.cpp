#include "collage/LayersTabButton.h"

#include "collage/CollageCellStyle.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

using namespace CollageCellStyle;

namespace {

constexpr int iconSpacing = 6;

} // namespace

LayersTabButton::LayersTabButton(QWidget* parent) : QAbstractButton(parent) {
    setText(tr("Layers"));
    QFont titleFont = font();
    titleFont.setPixelSize(15);
    titleFont.setWeight(QFont::DemiBold);
    setFont(titleFont);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSizeF LayersTabButton::iconSize() const {
    return {20, 16};
}

QSize LayersTabButton::sizeHint() const {
    const QFontMetrics metrics(font());
    const int width = padding + static_cast<int>(iconSize().width()) + iconSpacing +
                      metrics.horizontalAdvance(text()) + padding + 4;
    const int height = std::max(minimumHeight, metrics.height() + 2 * padding);
    return {width, height};
}

void LayersTabButton::drawLayersSymbol(QPainter& painter, const QRectF& rect, const QColor& tint) {
    if (drawSymbol(painter, symbolName(), rect, tint))
        return;
    // Three flat sheets seen from above at an angle, front one filled.
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double sheetHeight = rect.height() * 0.5;
    const double step = (rect.height() - sheetHeight) / 2;
    for (int i = 2; i >= 0; --i) {
        const double top = rect.top() + i * step;
        QPainterPath sheet;
        sheet.moveTo(rect.center().x(), top);
        sheet.lineTo(rect.right(), top + sheetHeight / 2);
        sheet.lineTo(rect.center().x(), top + sheetHeight);
        sheet.lineTo(rect.left(), top + sheetHeight / 2);
        sheet.closeSubpath();
        QColor fill = tint;
        fill.setAlphaF(i == 0 ? tint.alphaF() : tint.alphaF() * 0.35f);
        painter.setPen(QPen(tint, 1.2));
        painter.setBrush(fill);
        painter.drawPath(sheet);
    }
    painter.restore();
}

void LayersTabButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bounds = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QColor fill = white(isDown() ? 0.2 : 0.12);
    painter.setPen(QPen(white(0.14), 1.0));
    painter.setBrush(fill);
    painter.drawRoundedRect(bounds, cornerRadius, cornerRadius);
    if (hasFocus()) {
        painter.setPen(QPen(systemBlue(), 2.0));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(bounds.adjusted(1, 1, -1, -1), cornerRadius - 1, cornerRadius - 1);
    }

    // Icon and title centred together.
    const QFontMetrics metrics(font());
    const QSizeF icon = iconSize();
    const double contentWidth = icon.width() + iconSpacing + metrics.horizontalAdvance(text());
    const double left = std::max<double>(padding, (width() - contentWidth) / 2);
    const QRectF iconRect(left, (height() - icon.height()) / 2, icon.width(), icon.height());
    drawLayersSymbol(painter, iconRect, Qt::white);
    const QRectF textRect(iconRect.right() + iconSpacing, 0,
                          width() - iconRect.right() - iconSpacing - padding, height());
    painter.setPen(Qt::white);
    painter.setFont(font());
    painter.drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     metrics.elidedText(text(), Qt::ElideRight, static_cast<int>(textRect.width())));
}
