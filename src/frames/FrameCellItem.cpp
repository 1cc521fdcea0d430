#include "frames/FrameCellItem.h"

#include "frames/FrameGeometry.h"
#include "platform/ImageView.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

// The teal of an uncovered cell.
const QColor FrameCellItem::emptyColor = QColor::fromRgbF(0.188f, 0.690f, 0.780f);

FrameCellItem::FrameCellItem(int tag, QGraphicsItem* parent) : QGraphicsObject(parent), tag_(tag) {}

void FrameCellItem::setFrame(const QRectF& frame) {
    if (frame.size() != size_)
        prepareGeometryChange();
    setPos(frame.topLeft());
    size_ = frame.size().expandedTo(QSizeF(0, 0));
    clampOffset();
    update();
}

void FrameCellItem::setImage(ImagePtr image) {
    image_ = std::move(image);
    upright_ = image_ ? image_->uprightBitmap() : QImage();
    update();
}

void FrameCellItem::layoutContent(double zoomScale) {
    zoomScale_ = std::clamp(zoomScale, FrameGeometry::minimumZoomScale, FrameGeometry::maximumZoomScale);
    contentSize_ = size_;
    pictureSize_ = size_;
    if (image_ && !image_->size().isEmpty() && !size_.isEmpty()) {
        const FrameGeometry::PictureFit fit = FrameGeometry::pictureFit(image_->size(), size_);
        pictureSize_ = fit.pictureSize;
        contentSize_ = fit.contentSize;
    }
    // Shown from the picture's middle, as far as the content allows.
    contentOffset_ = QPointF(pictureSize_.width() * zoomScale_ - size_.width(),
                             pictureSize_.height() * zoomScale_ - size_.height()) /
                     2.0;
    clampOffset();
    update();
}

void FrameCellItem::panBy(const QPointF& delta) {
    contentOffset_ -= delta;
    clampOffset();
    update();
}

void FrameCellItem::zoomBy(double factor, const QPointF& anchor) {
    const double zoom =
        std::clamp(zoomScale_ * factor, FrameGeometry::minimumZoomScale, FrameGeometry::maximumZoomScale);
    // The content point under the anchor stays under it.
    const QPointF content = (contentOffset_ + anchor) / zoomScale_;
    zoomScale_ = zoom;
    contentOffset_ = content * zoomScale_ - anchor;
    clampOffset();
    update();
}

void FrameCellItem::setCornerRadius(double radius) {
    cornerRadius_ = std::max(0.0, radius);
    update();
}

void FrameCellItem::clampOffset() {
    const double maxX = std::max(0.0, contentSize_.width() * zoomScale_ - size_.width());
    const double maxY = std::max(0.0, contentSize_.height() * zoomScale_ - size_.height());
    contentOffset_.setX(std::clamp(contentOffset_.x(), 0.0, maxX));
    contentOffset_.setY(std::clamp(contentOffset_.y(), 0.0, maxY));
}

QRectF FrameCellItem::pictureRect() const {
    return QRectF(-contentOffset_, pictureSize_ * zoomScale_);
}

QRectF FrameCellItem::boundingRect() const {
    return QRectF(QPointF(0, 0), size_);
}

QPainterPath FrameCellItem::shape() const {
    QPainterPath path;
    path.addRoundedRect(boundingRect(), cornerRadius_, cornerRadius_);
    return path;
}

void FrameCellItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) {
    if (size_.isEmpty())
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    const QPainterPath clip = shape();
    painter->setClipPath(clip);
    painter->fillPath(clip, emptyColor);
    // Fitted inside the picture's place: after a layout pass the two agree, and a picture given without
    // one (a replacement) keeps its own proportions inside the place of the one before.
    if (!upright_.isNull())
        painter->drawImage(ImageView::targetRect(upright_.size(), pictureRect(), ContentMode::scaleAspectFit),
                           upright_);
    painter->restore();
}
