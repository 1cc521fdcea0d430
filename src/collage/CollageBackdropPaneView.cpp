#include "collage/CollageBackdropPaneView.h"

#include "collage/BackdropBlur.h"
#include "collage/MaskedLayer.h"
#include "platform/Dispatch.h"
#include "platform/Screen.h"

#include <QPainter>
#include <QPointer>
#include <algorithm>

CollageBackdropPaneView::CollageBackdropPaneView(QGraphicsItem* parent) : QGraphicsObject(parent) {
    setAcceptedMouseButtons(Qt::NoButton);
    setAcceptHoverEvents(false);
}

CollageBackdropPaneView::~CollageBackdropPaneView() {
    maskLoader_.cancel();
    if (blurWorkItem_)
        blurWorkItem_->cancel();
}

QRectF CollageBackdropPaneView::boundingRect() const {
    return QRectF(QPointF(0, 0), frame_.size());
}

void CollageBackdropPaneView::setFrame(const QRectF& frame) {
    const bool resized = frame.size() != frame_.size();
    if (resized)
        prepareGeometryChange();
    frame_ = frame;
    setPos(frame.topLeft());
    if (resized) {
        updateFeatherMask();
        updateBlur();
    }
}

void CollageBackdropPaneView::setImage(ImagePtr image) {
    image_ = std::move(image);
    updateBlur();
}

void CollageBackdropPaneView::rebuildBlurAnimator() {
    blurFraction_ = std::clamp(blurIntensity, 0.0, 1.0);
    updateBlur();
}

CollageBackdropPaneView::BlurKey CollageBackdropPaneView::currentBlurKey() const {
    return BlurKey{image_.get(), frame_.size(), blurFraction_};
}

void CollageBackdropPaneView::updateBlur() {
    const BlurKey key = currentBlurKey();
    if (key == blurredKey_ && !blurred_.isNull())
        return;
    if (blurPending_ && key == pendingBlurKey_)
        return;
    // The canvas lays the panes out at a provisional size before its final one: a blur queued for
    // that size and not started yet is dropped instead of being made for nothing.
    if (blurWorkItem_)
        blurWorkItem_->cancel();
    blurWorkItem_.reset();
    const int generation = ++blurGeneration_;
    blurPending_ = false;
    if (!image_ || frame_.isEmpty())
        return;
    blurPending_ = true;
    pendingBlurKey_ = key;
    QPointer<CollageBackdropPaneView> self(this);
    ImagePtr image = image_;
    const QSizeF size = frame_.size();
    const double fraction = blurFraction_;
    const double scale = Screen::main().scale();
    // The blur is made once per photo, size and strength, away from the main thread.
    WorkItem item([self, image, size, fraction, scale, key, generation]() {
        QImage blurred = BackdropBlur::make(*image, size, scale, fraction);
        Dispatch::main().async([self, blurred = std::move(blurred), key, generation]() {
            if (!self || generation != self->blurGeneration_)
                return;
            self->blurPending_ = false;
            self->blurWorkItem_.reset();
            if (!(self->currentBlurKey() == key))
                return;
            self->blurred_ = blurred;
            self->blurredKey_ = key;
            self->update();
        });
    });
    blurWorkItem_ = item;
    Dispatch::global(QualityOfService::userInitiated).async(item);
}

void CollageBackdropPaneView::ensureBlur() {
    const BlurKey key = currentBlurKey();
    if ((key == blurredKey_ && !blurred_.isNull()) || !image_ || frame_.isEmpty())
        return;
    if (blurWorkItem_)
        blurWorkItem_->cancel();
    blurWorkItem_.reset();
    ++blurGeneration_;
    blurPending_ = false;
    blurred_ = BackdropBlur::make(*image_, frame_.size(), Screen::main().scale(), blurFraction_);
    blurredKey_ = key;
    update();
}

void CollageBackdropPaneView::setFeathers(double horizontal, double vertical) {
    horizontalFeather_ = horizontal;
    verticalFeather_ = vertical;
    updateFeatherMask();
}

FeatherMaskLoader::Request CollageBackdropPaneView::maskRequest() const {
    return FeatherMaskLoader::Request{frame_.size(), horizontalFeather_, verticalFeather_};
}

void CollageBackdropPaneView::updateFeatherMask() {
    QPointer<CollageBackdropPaneView> self(this);
    maskLoader_.update(
        this, maskRequest(), [self]() { return self ? self->maskRequest() : FeatherMaskLoader::Request{}; },
        [self]() {
            if (self)
                self->update();
        });
}

void CollageBackdropPaneView::ensureFeatherMask() {
    if (maskLoader_.ensure(maskRequest()))
        update();
}

bool CollageBackdropPaneView::hasPendingWork() const {
    return maskLoader_.isBuilding() || blurPending_;
}

void CollageBackdropPaneView::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) {
    if (frame_.isEmpty() || blurred_.isNull())
        return;
    const double pixelScale =
        MaskedLayer::pixelScaleFor(*painter, MaskedLayer::isRenderingSnapshot(), Screen::main().scale());
    const LayerKey key{blurred_.constBits(), maskLoader_.mask().get(), frame_.size(), pixelScale};
    if (layer_.isNull() || !(key == layerKey_)) {
        const QRectF bounds = boundingRect();
        const QImage& blurred = blurred_;
        layer_ = MaskedLayer::compose(
            frame_.size(), pixelScale, [&](QPainter& p) { p.drawImage(bounds, blurred); },
            maskLoader_.mask() ? maskLoader_.mask()->bitmap() : QImage());
        layerKey_ = key;
    }
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(boundingRect(), layer_);
}
