#include "collage/TransformActionCell.h"

#include "collage/CollageCellStyle.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QRadialGradient>

using namespace CollageCellStyle;

namespace {
constexpr double kTopInset = 8.0;
constexpr double kTitleGap = 6.0;
constexpr double kTitleHeight = 18.0;
constexpr double kDotSide = 5.0;
constexpr double kRingGap = 3.0;
constexpr double kGlowOpacity = 0.45;
} // namespace

TransformActionCell::TransformActionCell(QWidget* parent) : CollageCell(parent) {
    resize(sizeHint());
}

void TransformActionCell::configure(CollageTransformAction action, bool isSelected,
                                    bool showsLeadingDivider) {
    title_ = ::title(action);
    symbolName_ = ::symbolName(action);
    showsLeadingDivider_ = showsLeadingDivider;
    setAccessibleName(title_);
    setSelected(isSelected);
    update();
}

QRectF TransformActionCell::iconBackgroundRect() const {
    return {(width() - iconBackgroundSide) / 2.0, kTopInset, iconBackgroundSide, iconBackgroundSide};
}

QRectF TransformActionCell::titleRect() const {
    return {0.0, iconBackgroundRect().bottom() + kTitleGap, double(width()), kTitleHeight};
}

QRectF TransformActionCell::selectionDotRect() const {
    QRectF dot(0, 0, kDotSide, kDotSide);
    dot.moveCenter(QPointF(width() / 2.0, (titleRect().bottom() + height()) / 2.0));
    return dot;
}

// A hairline beside the plate, not the full height, so the row reads as separate actions.
QRectF TransformActionCell::leadingDividerRect() const {
    const QRectF plate = iconBackgroundRect();
    return {0.0, plate.top() + 6.0, 1.0, plate.height() - 12.0};
}

void TransformActionCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(contentOpacity());
    painter.setRenderHint(QPainter::Antialiasing);
    if (showsLeadingDivider_)
        painter.fillRect(leadingDividerRect(), white(0.12));

    const QRectF plate = iconBackgroundRect();
    painter.setPen(QPen(white(0.08), 1.0));
    painter.setBrush(QColor::fromRgbF(0.14f, 0.14f, 0.14f));
    painter.drawEllipse(plate.adjusted(0.5, 0.5, -0.5, -0.5));
    if (isSelectionRingVisible()) {
        painter.setPen(QPen(systemBlue(), 2.0));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(plate.adjusted(-kRingGap, -kRingGap, kRingGap, kRingGap));
    }
    QRectF icon(0, 0, iconSide, iconSide);
    icon.moveCenter(plate.center());
    drawSymbol(painter, symbolName_, icon, Qt::white, SymbolFallback::outline);

    QFont font = this->font();
    font.setPixelSize(titleFontSize);
    painter.setFont(font);
    painter.setPen(Qt::white);
    const QRectF textRect = titleRect();
    painter.drawText(textRect, Qt::AlignCenter,
                     QFontMetricsF(font).elidedText(title_, Qt::ElideRight, textRect.width()));

    if (isSelectionDotVisible()) {
        const QRectF dot = selectionDotRect();
        QColor glow = systemBlue();
        glow.setAlphaF(static_cast<float>(kGlowOpacity));
        QRadialGradient halo(dot.center(), dot.width() * 1.6);
        halo.setColorAt(0.0, glow);
        halo.setColorAt(1.0, Qt::transparent);
        painter.setPen(Qt::NoPen);
        painter.setBrush(halo);
        painter.drawEllipse(dot.center(), dot.width() * 1.6, dot.width() * 1.6);
        painter.setBrush(systemBlue());
        painter.drawEllipse(dot);
    }
}
