#include "frames/GridCell.h"

#include "platform/Assets.h"
#include "platform/ImageView.h"

GridCell::GridCell(const QString& assetName, QWidget* parent)
    : QAbstractButton(parent), imageView_(new ImageView(this)) {
    setObjectName(assetName);
    setCursor(Qt::PointingHandCursor);
    imageView_->setContentMode(ContentMode::scaleAspectFit);
    imageView_->setAttribute(Qt::WA_TransparentForMouseEvents);
    imageView_->setImage(Assets::image(assetName));
}

void GridCell::setSelected(bool selected) {
    selected_ = selected;
    placeImage();
}

void GridCell::resizeEvent(QResizeEvent* event) {
    QAbstractButton::resizeEvent(event);
    placeImage();
}

void GridCell::paintEvent(QPaintEvent*) {}

void GridCell::placeImage() {
    const QSizeF size = QSizeF(this->size()) * imageScale();
    const QPointF origin = QPointF(width() - size.width(), height() - size.height()) / 2.0;
    imageView_->setGeometry(QRectF(origin, size).toRect());
}
