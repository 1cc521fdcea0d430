#include "collage/TickMarksView.h"

#include "collage/CollageCellStyle.h"

#include <QPainter>

TickMarksView::TickMarksView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFixedHeight(preferredHeight);
}

void TickMarksView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(CollageCellStyle::white(0.14), lineWidth));
    const double w = width();
    for (int i = 0; i < tickCount; ++i) {
        const double x = tickX(i, w);
        painter.drawLine(QPointF(x, 0), QPointF(x, height()));
    }
}
