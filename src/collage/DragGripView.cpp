#include "collage/DragGripView.h"

#include <QPainter>

DragGripView::DragGripView(QWidget* parent) : QWidget(parent) {
    // The row handles the drag; the grip only shows where to take hold.
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

QList<QPointF> DragGripView::dotCentres(const QSizeF& size) {
    QList<QPointF> centres;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 2; ++column)
            centres.append({size.width() * (1 + 2 * column) / 4.0, size.height() * (1 + 2 * row) / 6.0});
    return centres;
}

void DragGripView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(dotColor());
    const double radius = dotDiameter / 2;
    for (const QPointF& centre : dotCentres(QSizeF(size())))
        painter.drawEllipse(centre, radius, radius);
}
