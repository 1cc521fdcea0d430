#include "overlay/StickerView.h"

#include "platform/Animations.h"
#include "platform/ImageView.h"

#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsSceneWheelEvent>
#include <QPainter>
#include <QPen>
#include <QPointer>
#include <QTouchEvent>
#include <QVariantAnimation>
#include <algorithm>
#include <cmath>

namespace {

// The phone's brown.
constexpr Color brown{0.6, 0.4, 0.2, 1.0};
constexpr double flipDuration = 0.3;
// Ctrl+wheel scales by this much per notch; Alt+wheel turns by this many degrees.
constexpr double wheelScalePerNotch = 1.1;
constexpr double wheelDegreesPerNotch = 15.0;

double distance(QPointF a, QPointF b) {
    const double dx = b.x() - a.x();
    const double dy = b.y() - a.y();
    return std::sqrt(dx * dx + dy * dy);
}

} // namespace

// ---- StickerHandleView ----

StickerHandleView::StickerHandleView(QGraphicsItem* parent) : QGraphicsObject(parent) {
    // Presses go to the overlay, which tells its handles apart by where they lie.
    setAcceptedMouseButtons(Qt::NoButton);
}

void StickerHandleView::setImage(ImagePtr image) {
    image_ = std::move(image);
    upright_ = image_ ? image_->uprightBitmap() : QImage();
    update();
}

void StickerHandleView::setSide(double side) {
    prepareGeometryChange();
    side_ = side;
}

QRectF StickerHandleView::boundingRect() const {
    return {-side_ / 2, -side_ / 2, side_, side_};
}

void StickerHandleView::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) {
    if (upright_.isNull())
        return;
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(ImageView::targetRect(image_->size(), boundingRect(), ContentMode::scaleAspectFit),
                       upright_);
}

// ---- StickerPictureView ----

StickerPictureView::StickerPictureView(ImagePtr image, const QSizeF& size, QGraphicsItem* parent)
    : QGraphicsWidget(parent), image_(std::move(image)) {
    if (image_)
        upright_ = image_->uprightBitmap();
    resize(size);
}

void StickerPictureView::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) {
    if (upright_.isNull())
        return;
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(
        ImageView::targetRect(image_->size(), QRectF(QPointF(), size()), ContentMode::scaleAspectFit),
        upright_);
}

// ---- StickerView ----

StickerView::StickerView(QGraphicsWidget* contentView, QGraphicsItem* parent)
    : QGraphicsObject(parent), contentView_(contentView) {
    setAcceptTouchEvents(true);
    setAcceptedMouseButtons(Qt::LeftButton);
    const QSizeF contentSize = contentView_ ? contentView_->size() : QSizeF();
    bounds_ = QRectF(0, 0, contentSize.width() + 2 * defaultInset_, contentSize.height() + 2 * defaultInset_);
    if (contentView_) {
        contentView_->setParentItem(this);
        // The content is carried, never touched: every press belongs to the overlay.
        contentView_->setAcceptedMouseButtons(Qt::NoButton);
        contentView_->setAcceptTouchEvents(false);
        contentView_->setAcceptHoverEvents(false);
        contentView_->setZValue(0);
    }
    outline_ = new QGraphicsRectItem(this);
    outline_->setAcceptedMouseButtons(Qt::NoButton);
    outline_->setBrush(Qt::NoBrush);
    outline_->setZValue(1);
    makeHandle(closeImageView_, topLeft);
    makeHandle(rotateImageView_, bottomRight);
    makeHandle(flipImageView_, bottomLeft);
    minimumSize_ = defaultMinimumSize_;
    outlineBorderColor_ = brown;
    layoutContent();
}

StickerView::~StickerView() = default;

StickerHandleView* StickerView::makeHandle(StickerHandleView*& slot, int corner) {
    if (!slot) {
        slot = new StickerHandleView(this);
        slot->setSide(2 * defaultInset_);
        slot->setData(0, corner); // the handle's tag: its corner
        slot->setZValue(2);
        placeHandle(slot);
    }
    return slot;
}

StickerHandleView* StickerView::closeImageView() {
    return makeHandle(closeImageView_, topLeft);
}

StickerHandleView* StickerView::rotateImageView() {
    return makeHandle(rotateImageView_, bottomRight);
}

StickerHandleView* StickerView::flipImageView() {
    return makeHandle(flipImageView_, bottomLeft);
}

QRectF StickerView::boundingRect() const {
    return {-bounds_.width() / 2, -bounds_.height() / 2, bounds_.width(), bounds_.height()};
}

QRectF StickerView::contentFrame() const {
    return boundingRect().adjusted(defaultInset_, defaultInset_, -defaultInset_, -defaultInset_);
}

QPointF StickerView::cornerPoint(int corner) const {
    const QRectF c = contentFrame();
    switch (corner) {
    case topLeft:
        return c.topLeft();
    case topRight:
        return c.topRight();
    case bottomLeft:
        return c.bottomLeft();
    case bottomRight:
        return c.bottomRight();
    default:
        return {};
    }
}

void StickerView::placeHandle(StickerHandleView* handle) {
    const int corner = handle->data(0).toInt();
    if (corner < 0 || corner > 3)
        return;
    handle->setPos(cornerPoint(corner));
}

void StickerView::paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*) {
    // The body is clear: the content, the outline and the handles draw themselves.
}

void StickerView::setOutlineBorderColor(const Color& color) {
    outlineBorderColor_ = color;
    refreshOutline();
}

void StickerView::layoutContent() {
    if (contentView_) {
        const QRectF frame = contentFrame();
        contentView_->setGeometry(QRectF(frame.topLeft(), frame.size().expandedTo(QSizeF(0, 0))));
        applyContentTransform();
    }
    for (StickerHandleView* handle : {closeImageView_, rotateImageView_, flipImageView_})
        if (handle)
            placeHandle(handle);
    refreshOutline();
}

void StickerView::refreshOutline() {
    // The content's border, drawn inside its frame and over it, as a layer's border is.
    const double half = borderWidth_ / 2;
    outline_->setRect(contentFrame().adjusted(half, half, -half, -half));
    outline_->setPen(borderWidth_ > 0 ? QPen(outlineBorderColor_.toQColor(), borderWidth_) : QPen(Qt::NoPen));
}

void StickerView::applyContentTransform() {
    if (!contentView_)
        return;
    const double cx = contentView_->size().width() / 2;
    contentView_->setTransform(QTransform().translate(cx, 0).scale(contentScaleX_, 1).translate(-cx, 0));
}

void StickerView::setBounds(const QRectF& bounds) {
    prepareGeometryChange();
    bounds_ = bounds;
    layoutContent();
}

double StickerView::rotationAngle() const {
    const QTransform t = transform();
    return std::atan2(t.m12(), t.m11());
}

void StickerView::updateHandlers() {
    struct Entry {
        StickerHandleView* handle;
        bool enabled;
    };
    for (const Entry& e : {Entry{closeImageView(), enableClose}, Entry{rotateImageView(), enableRotate},
                           Entry{flipImageView(), enableFlip}}) {
        const bool on = showEditingHandlers && e.enabled;
        e.handle->setVisible(on);
        e.handle->setUserInteractionEnabled(on);
    }
    borderWidth_ = showEditingHandlers ? 1.0 : 0.0;
    refreshOutline();
}

void StickerView::setHandlerSize(int size) {
    if (size < 1 || !contentView_)
        return;
    defaultInset_ = static_cast<int>(std::lroundf(static_cast<float>(size) / 2.0f));
    defaultMinimumSize_ = 4 * defaultInset_;
    minimumSize_ = std::max(defaultMinimumSize_, minimumSize_);

    const QPointF keptCenter = center();
    const QTransform keptTransform = transform();
    setTransform(QTransform());
    const QSizeF content = contentView_->size();
    prepareGeometryChange();
    bounds_ = QRectF(0, 0, content.width() + 2 * defaultInset_, content.height() + 2 * defaultInset_);
    for (StickerHandleView* handle : {closeImageView_, rotateImageView_, flipImageView_})
        if (handle)
            handle->setSide(2 * defaultInset_);
    layoutContent();
    setCenter(keptCenter);
    setTransform(keptTransform);
}

// ---- gestures ----

void StickerView::handleMoveGesture(GestureState state, const QPointF& p) {
    if (!scene())
        return; // no superview
    switch (state) {
    case GestureState::began:
        beginningPoint_ = p;
        beginningCenter_ = center();
        if (delegate)
            delegate->stickerViewDidBeginMoving(this);
        break;
    case GestureState::changed:
        setCenter(beginningCenter_ + (p - beginningPoint_));
        if (delegate)
            delegate->stickerViewDidChangeMoving(this);
        break;
    case GestureState::ended:
        setCenter(beginningCenter_ + (p - beginningPoint_));
        if (delegate)
            delegate->stickerViewDidEndMoving(this);
        break;
    case GestureState::cancelled:
        break;
    }
}

void StickerView::handleRotateGesture(GestureState state, const QPointF& p) {
    if (!scene())
        return;
    const QPointF c = center();
    const double dx = p.x() - c.x();
    const double dy = p.y() - c.y();
    const float angle = std::atan2(static_cast<float>(dy), static_cast<float>(dx));
    switch (state) {
    case GestureState::began:
        deltaAngle_ = angle - std::atan2(transform().m12(), transform().m11());
        initialBounds_ = bounds_;
        initialDistance_ = std::sqrt(dx * dx + dy * dy);
        if (delegate)
            delegate->stickerViewDidBeginRotating(this);
        break;
    case GestureState::changed: {
        const float turn = -(static_cast<float>(deltaAngle_) - angle);
        setTransform(QTransform().rotateRadians(turn));
        double scale = std::sqrt(dx * dx + dy * dy) / initialDistance_;
        const double limit = minimumSize_ / std::min(initialBounds_.width(), initialBounds_.height());
        if (!(scale > limit))
            scale = limit;
        setBounds(QRectF(initialBounds_.x(), initialBounds_.y(), initialBounds_.width() * scale,
                         initialBounds_.height() * scale));
        if (delegate)
            delegate->stickerViewDidChangeRotating(this);
        break;
    }
    case GestureState::ended:
        if (delegate)
            delegate->stickerViewDidEndRotating(this);
        break;
    case GestureState::cancelled:
        break;
    }
}

void StickerView::handleCloseGesture() {
    if (delegate)
        delegate->stickerViewDidClose(this);
    removeFromSuperview();
}

void StickerView::removeFromSuperview() {
    if (flipAnimation_)
        flipAnimation_->stop();
    if (scene())
        scene()->removeItem(this);
    setParentItem(nullptr);
    deleteLater();
}

void StickerView::handleFlipGesture() {
    // Each flip mirrors the content once more from where the last one leads, so two quick flips come
    // back to the start even while the first is still moving.
    const double from = contentScaleX_;
    const double target = (flipAnimation_ ? flipAnimation_->property("target").toDouble() : from) * -1.0;
    if (flipAnimation_)
        flipAnimation_->stop();
    QPointer<StickerView> self(this);
    flipAnimation_ = Animations::animate(
        this, flipDuration,
        [self, from, target](double t) {
            if (!self)
                return;
            self->contentScaleX_ = Animations::interpolate(from, target, t);
            self->applyContentTransform();
        },
        {}, AnimationCurve::easeInOut);
    if (flipAnimation_)
        flipAnimation_->setProperty("target", target);
}

void StickerView::handleTapGesture() {
    if (delegate)
        delegate->stickerViewDidTap(this);
}

// ---- input ----

QPointF StickerView::locationInParent(const QPointF& scenePoint) const {
    return parentItem() ? parentItem()->mapFromScene(scenePoint) : scenePoint;
}

void StickerView::press(Drag drag, const QPointF& scenePoint) {
    drag_ = drag;
    pressScenePoint_ = scenePoint;
    dragging_ = false;
}

void StickerView::move(const QPointF& scenePoint) {
    if (drag_ != Drag::body && drag_ != Drag::rotate)
        return;
    const QPointF p = locationInParent(scenePoint);
    if (!dragging_) {
        if (distance(scenePoint, pressScenePoint_) < tapSlop)
            return;
        dragging_ = true;
        // The drag began where the finger went down.
        const QPointF start = locationInParent(pressScenePoint_);
        if (drag_ == Drag::body)
            handleMoveGesture(GestureState::began, start);
        else
            handleRotateGesture(GestureState::began, start);
    }
    if (drag_ == Drag::body)
        handleMoveGesture(GestureState::changed, p);
    else
        handleRotateGesture(GestureState::changed, p);
}

void StickerView::release(const QPointF& scenePoint) {
    const Drag drag = drag_;
    drag_ = Drag::none;
    if (dragging_) {
        dragging_ = false;
        const QPointF p = locationInParent(scenePoint);
        if (drag == Drag::body)
            handleMoveGesture(GestureState::ended, p);
        else if (drag == Drag::rotate)
            handleRotateGesture(GestureState::ended, p);
        return;
    }
    if (distance(scenePoint, pressScenePoint_) >= tapSlop)
        return;
    switch (drag) {
    case Drag::close:
        handleCloseGesture(); // may delete this overlay later: nothing follows
        break;
    case Drag::flip:
        handleFlipGesture();
        break;
    case Drag::body:
        handleTapGesture();
        break;
    case Drag::rotate:
    case Drag::none:
        break;
    }
}

void StickerView::mousePressEvent(QGraphicsSceneMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const QPointF local = event->pos();
    Drag drag = Drag::body;
    auto hits = [&](StickerHandleView* handle) {
        return handle && handle->isVisible() && handle->isUserInteractionEnabled() &&
               handle->mapRectToParent(handle->boundingRect()).contains(local);
    };
    if (hits(closeImageView_))
        drag = Drag::close;
    else if (hits(rotateImageView_))
        drag = Drag::rotate;
    else if (hits(flipImageView_))
        drag = Drag::flip;
    press(drag, event->scenePos());
    event->accept();
}

void StickerView::mouseMoveEvent(QGraphicsSceneMouseEvent* event) {
    move(event->scenePos());
}

void StickerView::mouseReleaseEvent(QGraphicsSceneMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        release(event->scenePos());
}

void StickerView::wheelEvent(QGraphicsSceneWheelEvent* event) {
    const bool scaling = event->modifiers() & Qt::ControlModifier;
    const bool turning = event->modifiers() & Qt::AltModifier;
    if ((!scaling && !turning) || event->delta() == 0) {
        event->ignore(); // plain wheel turns scroll whatever holds the canvas
        return;
    }
    const double notches = event->delta() / 120.0;
    if (delegate)
        delegate->stickerViewDidBeginRotating(this);
    if (scaling) {
        const double limit = minimumSize_ / std::min(bounds_.width(), bounds_.height());
        const double scale = std::max(limit, std::pow(wheelScalePerNotch, notches));
        setBounds(QRectF(bounds_.x(), bounds_.y(), bounds_.width() * scale, bounds_.height() * scale));
    } else {
        const double turn = rotationAngle() + notches * wheelDegreesPerNotch * M_PI / 180.0;
        setTransform(QTransform().rotateRadians(turn));
    }
    if (delegate) {
        delegate->stickerViewDidChangeRotating(this);
        delegate->stickerViewDidEndRotating(this);
    }
    event->accept();
}

bool StickerView::sceneEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        return handleTouch(event);
    default:
        return QGraphicsObject::sceneEvent(event);
    }
}

bool StickerView::handleTouch(QEvent* event) {
    auto* touch = static_cast<QTouchEvent*>(event);
    QList<QEventPoint> points;
    for (const QEventPoint& point : touch->points())
        if (point.state() != QEventPoint::Released || event->type() == QEvent::TouchEnd)
            points.append(point);
    const bool ending = event->type() == QEvent::TouchEnd || event->type() == QEvent::TouchCancel;

    if (points.size() >= 2 && !ending) {
        const QPointF a = locationInParent(points[0].scenePosition());
        const QPointF b = locationInParent(points[1].scenePosition());
        const double angle = std::atan2(b.y() - a.y(), b.x() - a.x());
        const double span = distance(a, b);
        if (!pinching_) {
            // A second finger turns a drag into a pinch: the drag ends where it is.
            if (dragging_ && drag_ == Drag::body)
                handleMoveGesture(GestureState::ended, locationInParent(points[0].scenePosition()));
            drag_ = Drag::none;
            dragging_ = false;
            pinching_ = true;
            pinchStartAngle_ = angle;
            pinchStartDistance_ = std::max(span, 1.0);
            pinchStartRotation_ = rotationAngle();
            pinchStartBounds_ = bounds_;
            if (delegate)
                delegate->stickerViewDidBeginRotating(this);
        } else {
            setTransform(QTransform().rotateRadians(pinchStartRotation_ + angle - pinchStartAngle_));
            const double limit =
                minimumSize_ / std::min(pinchStartBounds_.width(), pinchStartBounds_.height());
            const double scale = std::max(limit, span / pinchStartDistance_);
            setBounds(QRectF(pinchStartBounds_.topLeft(), pinchStartBounds_.size() * scale));
            if (delegate)
                delegate->stickerViewDidChangeRotating(this);
        }
        event->accept();
        return true;
    }

    if (pinching_) {
        if (ending || points.size() < 2) {
            pinching_ = false;
            if (delegate)
                delegate->stickerViewDidEndRotating(this);
        }
        event->accept();
        return true;
    }

    if (touch->points().isEmpty())
        return true;
    const QEventPoint& point = touch->points().constFirst();
    const QPointF scenePoint = point.scenePosition();
    if (event->type() == QEvent::TouchBegin) {
        // The same choice of handle as a mouse press.
        QGraphicsSceneMouseEvent press(QEvent::GraphicsSceneMousePress);
        press.setButton(Qt::LeftButton);
        press.setPos(mapFromScene(scenePoint));
        press.setScenePos(scenePoint);
        mousePressEvent(&press);
    } else if (event->type() == QEvent::TouchUpdate) {
        move(scenePoint);
    } else if (event->type() == QEvent::TouchEnd) {
        release(scenePoint);
        return true; // the overlay may be on its way out: touch nothing more
    } else {
        if (dragging_ && drag_ == Drag::body)
            handleMoveGesture(GestureState::cancelled, locationInParent(scenePoint));
        drag_ = Drag::none;
        dragging_ = false;
    }
    event->accept();
    return true;
}
