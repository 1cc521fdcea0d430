#include "frames/FrameAreaView.h"

#include "frames/FrameCellItem.h"
#include "platform/Log.h"
#include "platform/Screen.h"

#include <QGestureEvent>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QPainter>
#include <QPinchGesture>
#include <QWheelEvent>
#include <cmath>

namespace {
// A press that moves less than this is a tap.
constexpr int kTapSlop = 4;
// One wheel notch zooms by this factor.
constexpr double kWheelZoomStep = 1.1;
} // namespace

FrameAreaView::FrameAreaView(QWidget* parent)
    : QGraphicsView(parent), scene_(new QGraphicsScene(this)), background_(Color::white(1.0 / 3.0)) {
    setScene(scene_);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    setTransformationAnchor(QGraphicsView::NoAnchor);
    viewport()->grabGesture(Qt::PinchGesture);
    for (int i = 0; i < FrameGeometry::maxCells; ++i) {
        cells_[std::size_t(i)] = new FrameCellItem(i);
        cells_[std::size_t(i)]->setVisible(false);
        scene_->addItem(cells_[std::size_t(i)]);
    }
    scene_->setSceneRect(QRectF(QPointF(0, 0), QSizeF(size())));
}

FrameAreaView::~FrameAreaView() = default;

FrameCellItem* FrameAreaView::cell(int index) const {
    return index >= 0 && index < FrameGeometry::maxCells ? cells_[std::size_t(index)] : nullptr;
}

void FrameAreaView::placeCells(int frame) {
    const int shown = FrameGeometry::cellCount(frame);
    for (int i = 0; i < FrameGeometry::maxCells; ++i)
        cells_[std::size_t(i)]->setVisible(i < shown);
    const QList<QRectF> rects = FrameGeometry::cellRects(frame, areaSize(), coordx, coordy);
    for (int i = 0; i < rects.size(); ++i)
        cells_[std::size_t(i)]->setFrame(rects[i]);
}

void FrameAreaView::layoutFrame(int frame) {
    placeCells(frame);
    laidOutFrame_ = FrameGeometry::cellCount(frame) > 0 ? frame : -1;
    for (int i = 0; i < FrameGeometry::cellCount(frame); ++i) {
        FrameCellItem* item = cells_[std::size_t(i)];
        if (!item->image())
            fatalError("A shown cell of frame " + std::to_string(frame) + " has no picture");
        item->layoutContent(FrameGeometry::zoomScale(frame, i));
    }
}

void FrameAreaView::relayoutFrame(int frame) {
    placeCells(frame);
}

void FrameAreaView::setSpacing(double value, int frame) {
    const std::optional<double> spacing = FrameGeometry::spacingFromSlider(value);
    if (!spacing)
        fatalError("The spacing is not a number");
    coordx = coordy = *spacing;
    if (FrameGeometry::cellCount(frame) > 0)
        relayoutFrame(frame);
}

void FrameAreaView::setCornerRadius(double radius) {
    for (FrameCellItem* item : cells_)
        item->setCornerRadius(radius);
}

void FrameAreaView::setBackgroundColor(const Color& color) {
    background_ = color;
    viewport()->update();
}

ImagePtr FrameAreaView::snapshot() const {
    const QSizeF points = areaSize();
    const double scale = Screen::main().scale();
    const QSize pixels(int(std::lround(points.width() * scale)), int(std::lround(points.height() * scale)));
    if (pixels.isEmpty())
        return nullptr;
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(scale, scale);
        painter.fillRect(QRectF(QPointF(0, 0), points), background_.toQColor());
        scene_->render(&painter, QRectF(QPointF(0, 0), points), QRectF(QPointF(0, 0), points));
    }
    return Image::make(std::move(image), scale);
}

void FrameAreaView::resizeEvent(QResizeEvent* event) {
    QGraphicsView::resizeEvent(event);
    scene_->setSceneRect(QRectF(QPointF(0, 0), QSizeF(size())));
    if (laidOutFrame_ >= 0)
        relayoutFrame(laidOutFrame_);
}

void FrameAreaView::drawBackground(QPainter* painter, const QRectF& rect) {
    painter->fillRect(rect, background_.toQColor());
}

FrameCellItem* FrameAreaView::cellAt(const QPoint& viewPosition) const {
    for (QGraphicsItem* item : items(viewPosition)) {
        auto* found = dynamic_cast<FrameCellItem*>(item);
        if (found && found->isVisible())
            return found;
    }
    return nullptr;
}

void FrameAreaView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    pressed_ = cellAt(event->position().toPoint());
    pressPosition_ = lastPosition_ = event->position().toPoint();
    dragged_ = false;
}

void FrameAreaView::mouseMoveEvent(QMouseEvent* event) {
    if (!pressed_)
        return;
    const QPoint position = event->position().toPoint();
    if ((position - pressPosition_).manhattanLength() > kTapSlop)
        dragged_ = true;
    if (dragged_)
        pressed_->panBy(QPointF(position - lastPosition_));
    lastPosition_ = position;
}

void FrameAreaView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressed_)
        return;
    FrameCellItem* tapped = dragged_ ? nullptr : pressed_;
    pressed_ = nullptr;
    if (tapped && onCellTapped)
        onCellTapped(tapped->tag());
}

void FrameAreaView::wheelEvent(QWheelEvent* event) {
    FrameCellItem* item = cellAt(event->position().toPoint());
    if (!item)
        return;
    const QPointF anchor = item->mapFromScene(mapToScene(event->position().toPoint()));
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) {
        const double notches = event->angleDelta().y() / 120.0;
        item->zoomBy(std::pow(kWheelZoomStep, notches), anchor);
    } else {
        item->panBy(QPointF(event->pixelDelta().isNull() ? event->angleDelta() / 4 : event->pixelDelta()));
    }
    event->accept();
}

bool FrameAreaView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Gesture) {
        auto* gestures = static_cast<QGestureEvent*>(event);
        if (auto* pinch = static_cast<QPinchGesture*>(gestures->gesture(Qt::PinchGesture))) {
            const QPoint centre = viewport()->mapFromGlobal(pinch->centerPoint().toPoint());
            if (FrameCellItem* item = cellAt(centre))
                item->zoomBy(pinch->scaleFactor(), item->mapFromScene(mapToScene(centre)));
            gestures->accept(pinch);
            return true;
        }
    }
    return QGraphicsView::viewportEvent(event);
}
