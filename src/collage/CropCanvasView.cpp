#include "collage/CropCanvasView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace {

constexpr double cornerLength = 18.0;
constexpr double edgeLength = 24.0;
constexpr double handleThickness = 3.0;

} // namespace

CropCanvasView::CropCanvasView(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(160, 160);
}

void CropCanvasView::setPicture(const QImage& display, const QSize& pixelSize) {
    display_ = display;
    pixelSize_ = pixelSize;
    cropRect_ = QRectF(QPointF(0, 0), QSizeF(pixelSize));
    update();
}

void CropCanvasView::setCropRect(const QRectF& rect) {
    cropRect_ = rect.intersected(QRectF(QPointF(0, 0), QSizeF(pixelSize_)));
    update();
}

double CropCanvasView::displayScale() const {
    if (pixelSize_.isEmpty())
        return 1.0;
    const double availableW = std::max(1.0, width() - 2 * margin);
    const double availableH = std::max(1.0, height() - 2 * margin);
    return std::min(availableW / pixelSize_.width(), availableH / pixelSize_.height());
}

double CropCanvasView::minimumSide() const {
    const double smallest = std::min(pixelSize_.width(), pixelSize_.height());
    return std::min(smallest, minimumViewSide / displayScale());
}

QRectF CropCanvasView::pictureRectInView() const {
    const double scale = displayScale();
    const QSizeF size(pixelSize_.width() * scale, pixelSize_.height() * scale);
    return {(width() - size.width()) / 2, (height() - size.height()) / 2, size.width(), size.height()};
}

QPointF CropCanvasView::toView(const QPointF& picturePoint) const {
    return pictureRectInView().topLeft() + picturePoint * displayScale();
}

QPointF CropCanvasView::toPicture(const QPointF& viewPoint) const {
    return (viewPoint - pictureRectInView().topLeft()) / displayScale();
}

QRectF CropCanvasView::cropRectInView() const {
    return {toView(cropRect_.topLeft()), toView(cropRect_.bottomRight())};
}

CropHandle CropCanvasView::handleAt(const QPointF& p) const {
    if (pixelSize_.isEmpty())
        return CropHandle::none;
    const QRectF r = cropRectInView();
    const auto near = [](double a, double b) { return std::abs(a - b) <= handleReach; };
    const bool nearLeft = near(p.x(), r.left()), nearRight = near(p.x(), r.right());
    const bool nearTop = near(p.y(), r.top()), nearBottom = near(p.y(), r.bottom());
    const bool withinX = p.x() >= r.left() - handleReach && p.x() <= r.right() + handleReach;
    const bool withinY = p.y() >= r.top() - handleReach && p.y() <= r.bottom() + handleReach;
    if (!withinX || !withinY)
        return CropHandle::none;
    // On a small rectangle the reaches overlap: take the closer side.
    const bool left = nearLeft && (!nearRight || p.x() - r.left() < r.right() - p.x());
    const bool right = nearRight && !left;
    const bool top = nearTop && (!nearBottom || p.y() - r.top() < r.bottom() - p.y());
    const bool bottom = nearBottom && !top;
    if (top && left)
        return CropHandle::topLeft;
    if (top && right)
        return CropHandle::topRight;
    if (bottom && left)
        return CropHandle::bottomLeft;
    if (bottom && right)
        return CropHandle::bottomRight;
    if (left)
        return CropHandle::left;
    if (right)
        return CropHandle::right;
    if (top)
        return CropHandle::top;
    if (bottom)
        return CropHandle::bottom;
    return r.contains(p) ? CropHandle::inside : CropHandle::none;
}

void CropCanvasView::changeCropRect(const QRectF& rect) {
    if (rect == cropRect_)
        return;
    cropRect_ = rect;
    update();
    if (onCropRectChanged)
        onCropRectChanged();
}

void CropCanvasView::updateCursor(CropHandle handle) {
    switch (handle) {
    case CropHandle::topLeft:
    case CropHandle::bottomRight:
        setCursor(Qt::SizeFDiagCursor);
        break;
    case CropHandle::topRight:
    case CropHandle::bottomLeft:
        setCursor(Qt::SizeBDiagCursor);
        break;
    case CropHandle::left:
    case CropHandle::right:
        setCursor(Qt::SizeHorCursor);
        break;
    case CropHandle::top:
    case CropHandle::bottom:
        setCursor(Qt::SizeVerCursor);
        break;
    case CropHandle::inside:
        setCursor(isDragging() ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
        break;
    case CropHandle::none:
        unsetCursor();
        break;
    }
}

void CropCanvasView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    dragHandle_ = handleAt(event->position());
    dragStart_ = event->position();
    dragStartRect_ = cropRect_;
    updateCursor(dragHandle_);
    update();
}

void CropCanvasView::mouseMoveEvent(QMouseEvent* event) {
    if (!isDragging()) {
        updateCursor(handleAt(event->position()));
        return;
    }
    // Measured from where the drag began, so rounding never accumulates over a long drag.
    const QPointF delta = (event->position() - dragStart_) / displayScale();
    const QRectF bounds(QPointF(0, 0), QSizeF(pixelSize_));
    changeCropRect(CropGeometry::resized(dragStartRect_, dragHandle_, delta, bounds, aspect_, minimumSide()));
}

void CropCanvasView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    dragHandle_ = CropHandle::none;
    updateCursor(handleAt(event->position()));
    update();
}

void CropCanvasView::keyPressEvent(QKeyEvent* event) {
    QPointF step;
    switch (event->key()) {
    case Qt::Key_Left:
        step = {-1, 0};
        break;
    case Qt::Key_Right:
        step = {1, 0};
        break;
    case Qt::Key_Up:
        step = {0, -1};
        break;
    case Qt::Key_Down:
        step = {0, 1};
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    // One screen point per press, ten with Shift, whatever the picture's resolution.
    const double points = (event->modifiers() & Qt::ShiftModifier) ? 10.0 : 1.0;
    const QRectF bounds(QPointF(0, 0), QSizeF(pixelSize_));
    changeCropRect(CropGeometry::moved(cropRect_, step * points / displayScale(), bounds));
}

void CropCanvasView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (pixelSize_.isEmpty())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF picture = pictureRectInView();
    painter.drawImage(picture, display_);

    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF crop = cropRectInView();
    QPainterPath outside;
    outside.setFillRule(Qt::OddEvenFill);
    outside.addRect(picture);
    outside.addRect(crop);
    painter.fillPath(outside, QColor(0, 0, 0, 150));

    // Thirds help framing while the rectangle is being changed.
    if (isDragging()) {
        painter.setPen(QPen(QColor(255, 255, 255, 110), 1.0));
        for (int i = 1; i < 3; ++i) {
            const double x = crop.left() + crop.width() * i / 3;
            const double y = crop.top() + crop.height() * i / 3;
            painter.drawLine(QPointF(x, crop.top()), QPointF(x, crop.bottom()));
            painter.drawLine(QPointF(crop.left(), y), QPointF(crop.right(), y));
        }
    }
    painter.setPen(QPen(Qt::white, 1.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(crop);

    painter.setPen(QPen(Qt::white, handleThickness, Qt::SolidLine, Qt::SquareCap));
    const double o = handleThickness / 2;
    const double cl = std::min({cornerLength, crop.width() / 2, crop.height() / 2});
    const QRectF h = crop.adjusted(-o, -o, o, o);
    const QPointF corners[4] = {h.topLeft(), h.topRight(), h.bottomRight(), h.bottomLeft()};
    const double dx[4] = {1, -1, -1, 1};
    const double dy[4] = {1, 1, -1, -1};
    for (int i = 0; i < 4; ++i) {
        painter.drawLine(corners[i], corners[i] + QPointF(dx[i] * cl, 0));
        painter.drawLine(corners[i], corners[i] + QPointF(0, dy[i] * cl));
    }
    const double el = std::min(edgeLength, std::max(0.0, std::min(crop.width(), crop.height()) - 2 * cl - 8));
    if (el > 0) {
        const QPointF c = crop.center();
        painter.drawLine(QPointF(c.x() - el / 2, h.top()), QPointF(c.x() + el / 2, h.top()));
        painter.drawLine(QPointF(c.x() - el / 2, h.bottom()), QPointF(c.x() + el / 2, h.bottom()));
        painter.drawLine(QPointF(h.left(), c.y() - el / 2), QPointF(h.left(), c.y() + el / 2));
        painter.drawLine(QPointF(h.right(), c.y() - el / 2), QPointF(h.right(), c.y() + el / 2));
    }
}
