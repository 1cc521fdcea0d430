#include "mirror/MirrorPaneView.h"

#include "mirror/MirrorImageView.h"
#include "platform/Animations.h"

#include <QGraphicsSceneMouseEvent>
#include <QGraphicsSceneWheelEvent>
#include <QLineF>
#include <QVariantAnimation>
#include <algorithm>
#include <cmath>

namespace {
constexpr double scrollAnimationDuration = 0.3;
// Ctrl+wheel zooms by this much per notch.
constexpr double zoomPerNotch = 1.15;
} // namespace

MirrorPaneView::MirrorPaneView(double side, int tag, QGraphicsItem* parent)
    : QGraphicsObject(parent), tag_(tag) {
    setFlag(ItemClipsChildrenToShape);
    setAcceptedMouseButtons(Qt::LeftButton);
    imageView_ = new MirrorImageView(side, tag, this);
    state_.contentSize = QSizeF(side, side);
}

MirrorPaneView::~MirrorPaneView() = default;

void MirrorPaneView::setFrame(const QRectF& frame) {
    prepareGeometryChange();
    setPos(frame.topLeft());
    bounds_ = QRectF(QPointF(), frame.size());
    state_.bounds = frame.size();
}

void MirrorPaneView::setContentOffset(const QPointF& offset, bool animated) {
    if (offsetAnimation_)
        offsetAnimation_->stop();
    if (!animated) {
        setBoundsOrigin(offset);
        if (delegate)
            delegate->scrollViewDidScroll(this);
        return;
    }
    const QPointF from = state_.origin;
    offsetAnimation_ = Animations::animate(this, scrollAnimationDuration, [this, from, offset](double t) {
        setBoundsOrigin(QPointF(Animations::interpolate(from.x(), offset.x(), t),
                                Animations::interpolate(from.y(), offset.y(), t)));
        if (delegate)
            delegate->scrollViewDidScroll(this);
    });
}

void MirrorPaneView::setBoundsOrigin(const QPointF& origin) {
    state_.origin = origin;
    applyOrigin();
}

void MirrorPaneView::setContentSize(const QSizeF& size) {
    state_.contentSize = size;
}

void MirrorPaneView::setContentInset(const QMarginsF& inset) {
    state_.contentInset = inset;
}

void MirrorPaneView::setZoomScale(double zoom) {
    state_.zoomScale = std::clamp(zoom, minimumZoomScale, maximumZoomScale);
}

QPointF MirrorPaneView::maximumContentOffset() const {
    const QMarginsF& inset = state_.contentInset;
    return {std::max(-inset.left(), state_.contentSize.width() + inset.right() - bounds_.width()),
            std::max(-inset.top(), state_.contentSize.height() + inset.bottom() - bounds_.height())};
}

QPointF MirrorPaneView::clampedOffset(const QPointF& offset) const {
    const QPointF high = maximumContentOffset();
    const QMarginsF& inset = state_.contentInset;
    return {std::clamp(offset.x(), -inset.left(), high.x()), std::clamp(offset.y(), -inset.top(), high.y())};
}

void MirrorPaneView::applyOrigin() {
    imageView_->setPos(-state_.origin);
}

QRectF MirrorPaneView::boundingRect() const {
    return bounds_;
}

QPainterPath MirrorPaneView::shape() const {
    QPainterPath path;
    path.addRect(bounds_);
    return path;
}

void MirrorPaneView::paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*) {}

void MirrorPaneView::mousePressEvent(QGraphicsSceneMouseEvent* event) {
    if (offsetAnimation_)
        offsetAnimation_->stop();
    pressPoint_ = event->scenePos();
    pressOffset_ = state_.origin;
    dragging_ = false;
    event->accept();
}

void MirrorPaneView::mouseMoveEvent(QGraphicsSceneMouseEvent* event) {
    const QPointF moved = event->scenePos() - pressPoint_;
    if (!dragging_ && QLineF(QPointF(), moved).length() < tapSlop)
        return;
    dragging_ = true;
    // The picture follows the pointer, so the offset goes the other way.
    const QPointF target = clampedOffset(pressOffset_ - moved);
    if (target != state_.origin)
        setContentOffset(target);
}

void MirrorPaneView::mouseReleaseEvent(QGraphicsSceneMouseEvent* event) {
    if (!dragging_) {
        if (delegate)
            delegate->imageTapped(imageView_);
    } else {
        mouseMoveEvent(event);
    }
    dragging_ = false;
}

void MirrorPaneView::wheelEvent(QGraphicsSceneWheelEvent* event) {
    const double notches = event->delta() / 120.0;
    if (event->modifiers() & Qt::ControlModifier) {
        if (delegate)
            delegate->scrollViewDidZoom(this, state_.zoomScale * std::pow(zoomPerNotch, notches),
                                        event->pos());
        event->accept();
        return;
    }
    // A column pane at zoom 1 scrolls only sideways, so the ordinary wheel turns it sideways there.
    const bool sideways = event->orientation() == Qt::Horizontal ||
                          (event->modifiers() & Qt::ShiftModifier) ||
                          maximumContentOffset().y() <= -state_.contentInset.top();
    const QPointF step = sideways ? QPointF(-notches * wheelStep, 0) : QPointF(0, -notches * wheelStep);
    const QPointF target = clampedOffset(state_.origin + step);
    if (target != state_.origin)
        setContentOffset(target);
    event->accept();
}
