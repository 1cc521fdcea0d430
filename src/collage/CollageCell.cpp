#include "collage/CollageCell.h"

#include <QMouseEvent>

CollageCell::CollageCell(QWidget* parent) : QWidget(parent) {
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
}

void CollageCell::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    pressed_ = true;
    update();
}

void CollageCell::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressed_)
        return QWidget::mouseReleaseEvent(event);
    pressed_ = false;
    update();
    // Letting go outside the cell cancels the tap.
    if (rect().contains(event->position().toPoint()) && onTap)
        onTap();
}
