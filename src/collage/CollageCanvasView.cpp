#include "collage/CollageCanvasView.h"

#include "collage/CollageBackdropPaneView.h"
#include "collage/MaskedLayer.h"
#include "platform/Animations.h"
#include "platform/ImageView.h"
#include "platform/Screen.h"

#include <QApplication>
#include <QGestureEvent>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QPinchGesture>
#include <QWheelEvent>
#include <cmath>

// The picture that replaces the backdrops when a custom background is chosen.
class CustomBackgroundItem : public QGraphicsItem {
public:
    void setImage(ImagePtr image) {
        image_ = std::move(image);
        upright_ = image_ ? image_->uprightBitmap() : QImage();
        update();
    }
    const ImagePtr& image() const { return image_; }
    void setSize(const QSizeF& size) {
        prepareGeometryChange();
        size_ = size;
    }
    QRectF boundingRect() const override { return QRectF(QPointF(0, 0), size_); }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) override {
        if (upright_.isNull())
            return;
        painter->save();
        painter->setClipRect(boundingRect());
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(
            ImageView::targetRect(upright_.size(), boundingRect(), ContentMode::scaleAspectFill), upright_);
        painter->restore();
    }

private:
    ImagePtr image_;
    QImage upright_;
    QSizeF size_;
};

namespace {
constexpr double kBackdropZ = -1.0;
constexpr double kCustomBackgroundZ = -10.0;
constexpr double kPaneBaseZ = 1.0;
} // namespace

CollageCanvasView::CollageCanvasView(QWidget* parent) : QGraphicsView(parent) {
    scene_ = new QGraphicsScene(this);
    scene_->setBackgroundBrush(Qt::white);
    scene_->setItemIndexMethod(QGraphicsScene::NoIndex);
    setScene(scene_);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
    setBackgroundBrush(Qt::white);
    viewport()->grabGesture(Qt::PinchGesture);
    viewport()->setAttribute(Qt::WA_AcceptTouchEvents);
    customBackgroundImageView_ = new CustomBackgroundItem;
    customBackgroundImageView_->setZValue(kCustomBackgroundZ);
    customBackgroundImageView_->setVisible(false);
    scene_->addItem(customBackgroundImageView_);
    scene_->setSceneRect(QRectF(QPointF(0, 0), canvasSize()));
}

CollageCanvasView::~CollageCanvasView() {
    clearPanes();
}

QSizeF CollageCanvasView::canvasSize() const {
    return QSizeF(size());
}

void CollageCanvasView::syncCanvasSize() {
    // A hidden canvas gets no resize events, yet it may be sized, built and flattened offscreen.
    const QRectF canvas(QPointF(0, 0), canvasSize());
    if (scene_->sceneRect() == canvas)
        return;
    scene_->setSceneRect(canvas);
    layoutPanes();
}

QRectF CollageCanvasView::paneFrame(const QRectF& rect, const QSizeF& size, double inset, double gap) {
    const double x = (rect.left() <= 0.0 ? 0.0 : size.width() * rect.left()) - kOverhang + inset;
    const double y = (rect.top() <= 0.0 ? 0.0 : size.height() * rect.top()) - kOverhang + inset;
    return QRectF(x, y, size.width() * rect.width() + 2 * kOverhang - gap,
                  size.height() * rect.height() + 2 * kOverhang - gap);
}

void CollageCanvasView::clearPanes() {
    for (CollagePaneView* pane : paneViews_)
        delete pane;
    for (CollageBackdropPaneView* backdrop : backdropViews_)
        delete backdrop;
    paneViews_.clear();
    backdropViews_.clear();
    paneRects_.clear();
}

void CollageCanvasView::configure(const std::vector<ImagePtr>& images,
                                  std::optional<CollageLayoutOption> layout) {
    clearPanes();
    selectedIndex_.reset();
    zOrder_.clear();
    if (images.empty()) {
        if (onLayersChanged)
            onLayersChanged();
        return;
    }
    const int n = static_cast<int>(images.size());
    if (layout && paneCount(*layout) == n) {
        paneRects_ = paneRects(*layout);
    } else {
        for (int i = 0; i < n; ++i)
            paneRects_.emplace_back(static_cast<double>(i) / n, 0.0, 1.0 / n, 1.0);
    }
    const bool gapLayout =
        layout && *layout == CollageLayoutOption::twoColumnsEqualGap && paneCount(*layout) == n;
    gap_ = gapLayout ? 6.0 : 0.0;
    inset_ = gapLayout ? 3.0 : 0.0;

    for (int i = 0; i < n; ++i) {
        auto* backdrop = new CollageBackdropPaneView;
        backdrop->setImage(images[i]);
        backdrop->blurIntensity = blurIntensity;
        backdrop->rebuildBlurAnimator();
        backdrop->setZValue(kBackdropZ);
        backdrop->setVisible(!isCustomBackgroundActive_);
        backdropViews_.push_back(backdrop);
    }
    for (int i = 0; i < n; ++i) {
        auto* pane = new CollagePaneView;
        pane->setImage(images[i]);
        pane->delegate = this;
        paneViews_.push_back(pane);
    }
    for (auto* backdrop : backdropViews_)
        scene_->addItem(backdrop);
    for (auto* pane : paneViews_)
        scene_->addItem(pane);
    for (int i = n - 1; i >= 0; --i)
        zOrder_.push_back(i);
    applyZOrder();
    layoutPanes();

    // Everything grows in from 80 %.
    std::vector<QPointer<CollagePaneView>> panes(paneViews_.begin(), paneViews_.end());
    std::vector<QPointer<CollageBackdropPaneView>> backdrops(backdropViews_.begin(), backdropViews_.end());
    auto appear = [panes, backdrops](double p) {
        const double s = Animations::interpolate(0.8, 1.0, p);
        for (const auto& pane : panes) {
            if (pane)
                pane->setAppearScale(s);
        }
        for (const auto& backdrop : backdrops) {
            if (!backdrop)
                continue;
            const QPointF c = backdrop->boundingRect().center();
            backdrop->setTransform(
                QTransform().translate(c.x(), c.y()).scale(s, s).translate(-c.x(), -c.y()));
        }
    };
    appear(0.0);
    Animations::spring(this, 1.0, 0.7, 0.5, appear);

    selectedIndex_ = 0;
    CollagePaneView* first = paneViews_.front();
    first->setIsSelected(true);
    first->cancelCheckmarkHide();
    first->showCheckmark(false);
    if (onSelectionChanged)
        onSelectionChanged();
    if (onLayersChanged)
        onLayersChanged();
}

void CollageCanvasView::layoutPanes() {
    const QSizeF size = canvasSize();
    customBackgroundImageView_->setSize(size);
    for (size_t i = 0; i < paneViews_.size() && i < paneRects_.size(); ++i) {
        const QRectF frame = paneFrame(paneRects_[i], size, inset_, gap_);
        paneViews_[i]->setFrame(frame);
        backdropViews_[i]->setFrame(frame);
    }
}

void CollageCanvasView::resizeEvent(QResizeEvent* event) {
    QGraphicsView::resizeEvent(event);
    // A new canvas size (a new ratio) moves the panes; it does not rebuild them.
    syncCanvasSize();
}

CollagePaneView* CollageCanvasView::selectedPane() const {
    if (!selectedIndex_ || *selectedIndex_ < 0 || *selectedIndex_ >= static_cast<int>(paneViews_.size()))
        return nullptr;
    return paneViews_[*selectedIndex_];
}

void CollageCanvasView::selectPane(int index) {
    if (index < 0 || index >= static_cast<int>(paneViews_.size()))
        return;
    if (!selectedIndex_ || *selectedIndex_ != index) {
        if (CollagePaneView* previous = selectedPane()) {
            previous->setIsSelected(false);
            previous->cancelCheckmarkHide();
            previous->fadeOutCheckmark();
        }
        selectedIndex_ = index;
    }
    CollagePaneView* pane = paneViews_[index];
    pane->setIsSelected(true);
    pane->cancelCheckmarkHide();
    pane->showCheckmark(true);
    if (onSelectionChanged)
        onSelectionChanged();
}

void CollageCanvasView::collagePaneViewDidTap(CollagePaneView* pane) {
    const auto it = std::find(paneViews_.begin(), paneViews_.end(), pane);
    if (it != paneViews_.end())
        selectPane(static_cast<int>(it - paneViews_.begin()));
}

std::optional<std::pair<double, double>> CollageCanvasView::selectedPaneFeather() const {
    if (CollagePaneView* pane = selectedPane())
        return std::make_pair(pane->horizontalFeather(), pane->verticalFeather());
    return std::nullopt;
}

void CollageCanvasView::setSelectedPaneFeather(double horizontal, double vertical) {
    CollagePaneView* pane = selectedPane();
    if (!pane)
        return;
    pane->setFeathers(horizontal, vertical);
    backdropViews_[*selectedIndex_]->setFeathers(horizontal, vertical);
}

void CollageCanvasView::rotateSelectedPane() {
    if (CollagePaneView* pane = selectedPane())
        pane->rotateQuarterTurn();
}

void CollageCanvasView::flipSelectedPane() {
    if (CollagePaneView* pane = selectedPane())
        pane->toggleFlip();
}

void CollageCanvasView::resetSelectedPane() {
    CollagePaneView* pane = selectedPane();
    if (!pane)
        return;
    pane->resetTransform();
    backdropViews_[*selectedIndex_]->setFeathers(25.0, 25.0);
    if (onSelectionChanged)
        onSelectionChanged();
}

ImagePtr CollageCanvasView::layerThumbnail(int row) const {
    if (row < 0 || row >= static_cast<int>(zOrder_.size()))
        return nullptr;
    const int index = zOrder_[row];
    if (index < 0 || index >= static_cast<int>(paneViews_.size()))
        return nullptr;
    return paneViews_[index]->currentImage();
}

void CollageCanvasView::moveLayer(int from, int to) {
    const int count = static_cast<int>(zOrder_.size());
    if (from < 0 || to < 0 || from >= count || to >= count || from == to)
        return;
    const int moved = zOrder_[from];
    zOrder_.erase(zOrder_.begin() + from);
    zOrder_.insert(zOrder_.begin() + to, moved);
    applyZOrder();
}

void CollageCanvasView::applyZOrder() {
    // zOrder[0] is the front pane.
    const int count = static_cast<int>(zOrder_.size());
    for (int position = count - 1; position >= 0; --position) {
        const int index = zOrder_[position];
        if (index >= 0 && index < static_cast<int>(paneViews_.size()))
            paneViews_[index]->setZValue(kPaneBaseZ + (count - position));
    }
}

void CollageCanvasView::setCustomBackground(ImagePtr image) {
    customBackgroundImageView_->setImage(std::move(image));
    customBackgroundImageView_->setVisible(true);
    isCustomBackgroundActive_ = true;
    for (auto* backdrop : backdropViews_)
        backdrop->setVisible(false);
}

void CollageCanvasView::clearCustomBackground() {
    customBackgroundImageView_->setImage(nullptr);
    customBackgroundImageView_->setVisible(false);
    isCustomBackgroundActive_ = false;
    for (auto* backdrop : backdropViews_) {
        if (!backdrop->scene())
            scene_->addItem(backdrop);
        backdrop->setZValue(kBackdropZ);
        backdrop->setVisible(true);
        backdrop->rebuildBlurAnimator();
    }
    layoutPanes();
}

void CollageCanvasView::beginGesture() {
    CollagePaneView* pane = selectedPane();
    if (!pane)
        return;
    pane->takeOverSpringBack();
    if (pane->isSelected())
        pane->showCheckmark(true);
}

void CollageCanvasView::endGesture() {
    CollagePaneView* pane = selectedPane();
    if (!pane || !pane->isSelected())
        return;
    // The pane keeps the clamped place at once and only its drawing springs there, so that a gesture
    // on another pane, or anything else that cuts the spring short, cannot leave it off the canvas.
    const QPointF before = pane->translation();
    pane->clampTranslation(false);
    pane->springBack(before);
}

void CollageCanvasView::handleGesture(GestureState state,
                                      const std::function<void(CollagePaneView*)>& change) {
    CollagePaneView* pane = selectedPane();
    if (!pane)
        return;
    switch (state) {
    case GestureState::began:
        beginGesture();
        [[fallthrough]];
    case GestureState::changed:
        change(pane);
        break;
    case GestureState::ended:
    case GestureState::cancelled:
    case GestureState::failed:
        endGesture();
        break;
    }
}

void CollageCanvasView::handleCanvasPan(GestureState state, const QPointF& translation) {
    handleGesture(
        state, [translation](CollagePaneView* pane) { pane->translate(translation.x(), translation.y()); });
}

void CollageCanvasView::handleCanvasPinch(GestureState state, double scale, const QPointF& translation) {
    handleGesture(state, [scale, translation](CollagePaneView* pane) {
        pane->zoom(scale);
        if (!translation.isNull())
            pane->translate(translation.x(), translation.y());
    });
}

void CollageCanvasView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QGraphicsView::mousePressEvent(event);
        return;
    }
    mousePressed_ = true;
    dragging_ = false;
    pressPosition_ = event->position();
    lastDragPosition_ = pressPosition_;
}

void CollageCanvasView::mouseMoveEvent(QMouseEvent* event) {
    // While two fingers pinch, the mouse made from the first finger would move the pane a second time.
    if (!mousePressed_ || pinching_)
        return;
    const QPointF position = event->position();
    if (!dragging_) {
        if ((position - pressPosition_).manhattanLength() < QApplication::startDragDistance())
            return;
        dragging_ = true;
        handleCanvasPan(GestureState::began, position - lastDragPosition_);
    } else {
        handleCanvasPan(GestureState::changed, position - lastDragPosition_);
    }
    lastDragPosition_ = position;
}

void CollageCanvasView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !mousePressed_)
        return;
    mousePressed_ = false;
    if (dragging_) {
        dragging_ = false;
        handleCanvasPan(GestureState::ended);
        return;
    }
    // A click is a tap on the pane on top at that point.
    const QPointF scenePoint = mapToScene(event->position().toPoint());
    for (QGraphicsItem* item : scene_->items(scenePoint, Qt::IntersectsItemShape, Qt::DescendingOrder)) {
        for (QGraphicsItem* candidate = item; candidate; candidate = candidate->parentItem()) {
            if (auto* pane = dynamic_cast<CollagePaneView*>(candidate)) {
                pane->handleTap();
                return;
            }
        }
    }
}

void CollageCanvasView::wheelEvent(QWheelEvent* event) {
    // Ctrl+wheel (and a trackpad pinch reported as one) zooms the selected pane.
    if (!(event->modifiers() & Qt::ControlModifier)) {
        event->ignore();
        return;
    }
    const double factor = std::pow(1.0015, event->angleDelta().y());
    handleCanvasPinch(GestureState::began, factor);
    handleCanvasPinch(GestureState::ended);
    event->accept();
}

bool CollageCanvasView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Gesture) {
        auto* gestureEvent = static_cast<QGestureEvent*>(event);
        if (auto* pinch = static_cast<QPinchGesture*>(gestureEvent->gesture(Qt::PinchGesture))) {
            switch (pinch->state()) {
            // The fingers' centre carries the pane along, so a two-finger drag pans as it zooms.
            case Qt::GestureStarted:
                pinching_ = true;
                handleCanvasPinch(GestureState::began, pinch->scaleFactor(),
                                  pinch->centerPoint() - pinch->lastCenterPoint());
                break;
            case Qt::GestureUpdated:
                handleCanvasPinch(GestureState::changed, pinch->scaleFactor(),
                                  pinch->centerPoint() - pinch->lastCenterPoint());
                break;
            case Qt::GestureFinished:
                pinching_ = false;
                handleCanvasPinch(GestureState::ended);
                break;
            case Qt::GestureCanceled:
                pinching_ = false;
                handleCanvasPinch(GestureState::cancelled);
                break;
            default:
                break;
            }
            gestureEvent->accept(pinch);
            return true;
        }
    }
    if (event->type() == QEvent::NativeGesture) {
        auto* native = static_cast<QNativeGestureEvent*>(event);
        switch (native->gestureType()) {
        case Qt::BeginNativeGesture:
            handleCanvasPinch(GestureState::began, 1.0);
            return true;
        case Qt::ZoomNativeGesture:
            handleCanvasPinch(GestureState::changed, 1.0 + native->value());
            return true;
        case Qt::EndNativeGesture:
            handleCanvasPinch(GestureState::ended);
            return true;
        default:
            break;
        }
    }
    return QGraphicsView::viewportEvent(event);
}

bool CollageCanvasView::hasPendingWork() const {
    for (auto* pane : paneViews_) {
        if (pane->hasPendingWork())
            return true;
    }
    for (auto* backdrop : backdropViews_) {
        if (backdrop->isVisible() && backdrop->hasPendingWork())
            return true;
    }
    return false;
}

ImagePtr CollageCanvasView::snapshot() {
    syncCanvasSize();
    const QSizeF size = canvasSize();
    const double scale = Screen::main().scale();
    const QSize pixels(std::max(1, static_cast<int>(std::lround(size.width() * scale))),
                       std::max(1, static_cast<int>(std::lround(size.height() * scale))));
    for (auto* pane : paneViews_)
        pane->ensureFeatherMask();
    for (auto* backdrop : backdropViews_) {
        if (backdrop->isVisible()) {
            backdrop->ensureFeatherMask();
            backdrop->ensureBlur();
        }
    }
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        MaskedLayer::setRenderingSnapshot(true);
        scene_->render(&painter, QRectF(QPointF(0, 0), QSizeF(pixels)), scene_->sceneRect(),
                       Qt::IgnoreAspectRatio);
        MaskedLayer::setRenderingSnapshot(false);
    }
    return Image::make(image.convertToFormat(QImage::Format_RGB32), scale);
}

ImagePtr CollageCanvasView::flattenedImage() {
    for (auto* pane : paneViews_) {
        pane->checkmarkAlphaBeforeSnapshot = pane->checkmarkAlpha();
        pane->setCheckmarkAlpha(0.0);
    }
    ImagePtr result = snapshot();
    for (auto* pane : paneViews_) {
        if (pane->checkmarkAlphaBeforeSnapshot)
            pane->setCheckmarkAlpha(*pane->checkmarkAlphaBeforeSnapshot);
        pane->checkmarkAlphaBeforeSnapshot.reset();
    }
    return result;
}
