#include "collage/LayoutOptionCell.h"

#include "collage/CollageCellStyle.h"
#include "collage/LayoutThumbnailView.h"

#include <QPainter>

using namespace CollageCellStyle;

LayoutOptionCell::LayoutOptionCell(QWidget* parent)
    : CollageCell(parent), thumbnailView_(new LayoutThumbnailView(this)) {
    thumbnailView_->setObjectName(QStringLiteral("thumbnailView"));
    placeThumbnail();
}

void LayoutOptionCell::configure(CollageLayoutOption option, bool isSelected) {
    // A cell sized while hidden gets its resize event only when shown.
    placeThumbnail();
    thumbnailView_->setOption(option);
    setAccessibleName(layoutOptionName(option));
    setSelected(isSelected);
    update();
}

double LayoutOptionCell::borderWidth() const {
    return isSelected() ? 2.0 : 1.0;
}

QColor LayoutOptionCell::borderColor() const {
    return isSelected() ? systemBlue() : white(0.08);
}

void LayoutOptionCell::resizeEvent(QResizeEvent* event) {
    CollageCell::resizeEvent(event);
    placeThumbnail();
}

void LayoutOptionCell::placeThumbnail() {
    thumbnailView_->setGeometry(
        rect().adjusted(thumbnailMargin, thumbnailMargin, -thumbnailMargin, -thumbnailMargin));
}

void LayoutOptionCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(contentOpacity());
    paintCard(painter, QRectF(rect()), white(0.05), borderWidth(), borderColor());
}
