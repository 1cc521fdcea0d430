#include "collage/CheckerboardView.h"

#include <QPainter>

CheckerboardView::CheckerboardView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void CheckerboardView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), lightColor());
    // Whole tiles from the top left; the last column and row are cut by the edge.
    const int columns = (width() + tileSize - 1) / tileSize;
    const int rows = (height() + tileSize - 1) / tileSize;
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            if ((column + row) % 2 == 1)
                painter.fillRect(column * tileSize, row * tileSize, tileSize, tileSize, darkColor());
}
