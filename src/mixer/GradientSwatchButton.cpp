#include "mixer/GradientSwatchButton.h"

#include <QPainter>
#include <QPainterPath>

GradientSwatchButton::GradientSwatchButton(const QString& label, QWidget* parent)
    : QPushButton(parent), label_(label) {
    setObjectName(label);
    setFixedHeight(56);
    setCursor(Qt::PointingHandCursor);
}

void GradientSwatchButton::setSwatchColor(const Color& color) {
    color_ = color;
    update();
}

void GradientSwatchButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath tile;
    tile.addRoundedRect(QRectF(rect()), 12, 12);
    painter.fillPath(tile, QColor::fromRgbF(0.16, 0.16, 0.16));
    const QRectF swatch(12, (height() - 32) / 2.0, 32, 32);
    painter.setBrush(color_.toQColor());
    painter.setPen(QPen(QColor(255, 255, 255, 90), 1));
    painter.drawEllipse(swatch);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(15);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    painter.drawText(QRectF(swatch.right() + 12, 0, width() - swatch.right() - 24, height()),
                     Qt::AlignLeft | Qt::AlignVCenter, label_);
}
