#include "collage/CollagePaneView.h"

#include "collage/MaskedLayer.h"
#include "collage/SubjectDetection.h"
#include "platform/Animations.h"
#include "platform/Assets.h"
#include "platform/ImageView.h"
#include "platform/Screen.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QPointer>
#include <QVariantAnimation>
#include <algorithm>
#include <cmath>

bool CollagePaneView::hasPlayedEntrance = false;

namespace {

constexpr double kCheckmarkSize = 22.0;
constexpr double kRubberBandCoefficient = 0.55;
constexpr double kMinimumVisible = 32.0;

} // namespace

// The selection mark in the middle of a pane; it keeps its size whatever the pane's zoom.
class CheckmarkItem : public QGraphicsItem {
public:
    explicit CheckmarkItem(QGraphicsItem* parent) : QGraphicsItem(parent) {
        symbol_ = Assets::image(QStringLiteral("checkmark.circle.fill"));
    }

    QRectF boundingRect() const override {
        // Room for the shadow around the symbol.
        const double r = kCheckmarkSize / 2.0 + 4.0;
        return QRectF(-r, -r, 2 * r, 2 * r);
    }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) override {
        painter->setRenderHint(QPainter::Antialiasing);
        const double r = kCheckmarkSize / 2.0;
        const QRectF box(-r, -r, kCheckmarkSize, kCheckmarkSize);
        for (int i = 3; i >= 1; --i) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(QColor(0, 0, 0, static_cast<int>(0.4 * 255 / 3)));
            painter->drawEllipse(box.adjusted(-i, -i, i, i));
        }
        if (symbol_) {
            painter->drawImage(box, symbol_->uprightBitmap());
            return;
        }
        painter->setBrush(Qt::white);
        painter->drawEllipse(box);
        QPen pen(QColor(10, 132, 255), 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        painter->setPen(pen);
        painter->setBrush(Qt::NoBrush);
        const QPointF points[] = {{-5.0, 0.5}, {-1.5, 4.0}, {5.5, -3.5}};
        painter->drawPolyline(points, 3);
    }

private:
    ImagePtr symbol_;
};

CollagePaneView::CollagePaneView(QGraphicsItem* parent) : QGraphicsObject(parent) {
    setFlag(QGraphicsItem::ItemClipsChildrenToShape, true);
    checkmarkView_ = new CheckmarkItem(this);
    checkmarkView_->setOpacity(0.0);
    checkmarkView_->setVisible(false);
    checkmarkView_->setZValue(1.0);
}

CollagePaneView::~CollagePaneView() {
    maskLoader_.cancel();
    for (auto* item : {&detectionWorkItem_, &entranceAnimationWorkItem_, &checkmarkHideWorkItem_}) {
        if (*item)
            (*item)->cancel();
    }
}

QRectF CollagePaneView::boundingRect() const {
    return QRectF(QPointF(0, 0), frame_.size());
}

void CollagePaneView::setFrame(const QRectF& frame) {
    const bool resized = frame.size() != frame_.size();
    if (resized)
        prepareGeometryChange();
    frame_ = frame;
    setPos(frame.topLeft());
    checkmarkView_->setPos(frame.width() / 2.0, frame.height() / 2.0);
    applyTransform();
    if (resized)
        layoutSubviews();
}

void CollagePaneView::layoutSubviews() {
    updateFeatherMask();
    applySubjectCrop();
    if (needsEntranceAnimation_ && frame_.height() > 0.0) {
        needsEntranceAnimation_ = false;
        if (entranceAnimationWorkItem_)
            entranceAnimationWorkItem_->cancel();
        if (hasPlayedEntrance) {
            playEntrance();
        } else {
            QPointer<CollagePaneView> self(this);
            WorkItem item([self]() {
                hasPlayedEntrance = true;
                if (self)
                    self->playEntrance();
            });
            entranceAnimationWorkItem_ = item;
            Dispatch::main().asyncAfter(0.5, item);
        }
    }
    update();
}

void CollagePaneView::playEntrance() {
    const double h = frame_.height();
    if (h <= 0.0)
        return;
    QPointer<CollagePaneView> self(this);
    containerOffsetY_ = h / 3.0;
    containerScale_ = 0.8;
    Animations::spring(this, 1.0, 0.7, 0.5, [self, h](double p) {
        if (!self)
            return;
        self->containerOffsetY_ = Animations::interpolate(h / 3.0, 0.0, p);
        self->containerScale_ = Animations::interpolate(0.8, 1.0, p);
        self->update();
    });
}

void CollagePaneView::setImage(ImagePtr image) {
    currentImage_ = std::move(image);
    subjectBoundingBox_.reset();
    if (detectionWorkItem_)
        detectionWorkItem_->cancel();
    if (entranceAnimationWorkItem_)
        entranceAnimationWorkItem_->cancel();
    upright_ = currentImage_ ? currentImage_->uprightBitmap() : QImage();
    reducedSource_ = QImage();
    reducedFactor_ = 1.0;
    contentsRect_ = QRectF(0, 0, 1, 1);
    stopSpringBack();
    scale_ = 1.0;
    translation_ = QPointF();
    imageRotationQuarterTurns_ = 0;
    isImageFlipped_ = false;
    drawnAngle_ = 0.0;
    drawnFlip_ = 1.0;
    containerOffsetY_ = 0.0;
    containerScale_ = 1.0;
    applyTransform();
    invalidateLayer();
    needsEntranceAnimation_ = true;
    layoutSubviews();
    startSubjectDetection();
}

void CollagePaneView::startSubjectDetection() {
    const int generation = ++detectionGeneration_;
    detectionPending_ = false;
    if (!currentImage_ || currentImage_->bitmap().isNull())
        return;
    detectionPending_ = true;
    QPointer<CollagePaneView> self(this);
    ImagePtr image = currentImage_;
    auto detect = subjectDetector ? subjectDetector : &SubjectDetection::detectSubject;
    WorkItem item([self, image, generation, detect]() {
        const std::optional<QRectF> subject = detect(*image);
        Dispatch::main().async([self, image, generation, subject]() {
            if (!self)
                return;
            if (generation == self->detectionGeneration_)
                self->detectionPending_ = false;
            // A photo replaced while its detection ran keeps nothing of the old result.
            if (!subject || self->currentImage_.get() != image.get())
                return;
            self->subjectBoundingBox_ = subject;
            self->applySubjectCrop();
        });
    });
    detectionWorkItem_ = item;
    Dispatch::global(QualityOfService::userInitiated).async(item);
}

QRectF CollagePaneView::subjectContentsRect(const std::optional<QRectF>& subject, const QSizeF& paneSize,
                                            const QSizeF& imageSize) {
    if (!subject || paneSize.isEmpty() || imageSize.isEmpty())
        return QRectF(0, 0, 1, 1);
    const double a = paneSize.width() / paneSize.height();
    const double b = imageSize.width() / imageSize.height();
    double cw = 1.0;
    double ch = 1.0;
    if (b < a)
        ch = b / a;
    else
        cw = a / b;
    const double x = std::clamp(subject->center().x() - cw / 2.0, 0.0, 1.0 - cw);
    const double y = std::clamp((1.0 - subject->center().y()) - ch / 2.0, 0.0, 1.0 - ch);
    return QRectF(x, y, cw, ch);
}

void CollagePaneView::applySubjectCrop() {
    if (!currentImage_ || currentImage_->size().isEmpty() || frame_.width() <= 0.0 || frame_.height() <= 0.0)
        return;
    const QRectF next = subjectContentsRect(subjectBoundingBox_, frame_.size(), currentImage_->size());
    if (next != contentsRect_) {
        contentsRect_ = next;
        update();
    }
}

void CollagePaneView::applyTransform() {
    const QPointF c(frame_.width() / 2.0, frame_.height() / 2.0);
    const double s = scale_ * appearScale_;
    const QPointF t = drawnTranslation_.value_or(translation_);
    setTransform(QTransform().translate(c.x() + t.x(), c.y() + t.y()).scale(s, s).translate(-c.x(), -c.y()));
    checkmarkView_->setScale(scale_ > 0.0 ? 1.0 / scale_ : 1.0);
}

void CollagePaneView::setAppearScale(double scale) {
    appearScale_ = scale;
    applyTransform();
}

CollagePaneView::TranslationLimits CollagePaneView::translationLimits(const QRectF& canvas,
                                                                      const QRectF& frame, double scale) {
    const QPointF c = frame.center();
    const double pw = frame.width() * scale * 0.5;
    const double ph = frame.height() * scale * 0.5;
    return {canvas.left() - pw + kMinimumVisible - c.x(), canvas.right() + pw - kMinimumVisible - c.x(),
            canvas.top() - ph + kMinimumVisible - c.y(), canvas.bottom() + ph - kMinimumVisible - c.y()};
}

double CollagePaneView::rubberBand(double value, double min, double max, double dimension) {
    if (dimension <= 0.0)
        return std::clamp(value, min, std::max(min, max));
    if (value > max) {
        const double o = value - max;
        return max + (o * dimension * kRubberBandCoefficient) / (dimension + o * kRubberBandCoefficient);
    }
    if (value < min) {
        const double o = min - value;
        return min - (o * dimension * kRubberBandCoefficient) / (dimension + o * kRubberBandCoefficient);
    }
    return value;
}

void CollagePaneView::clampTranslation(bool rubberBanding) {
    if (!scene())
        return;
    const QRectF canvas = scene()->sceneRect();
    const TranslationLimits l = translationLimits(canvas, frame_, scale_);
    if (rubberBanding) {
        translation_ = QPointF(rubberBand(translation_.x(), l.minX, l.maxX, canvas.width()),
                               rubberBand(translation_.y(), l.minY, l.maxY, canvas.height()));
    } else {
        translation_ = QPointF(std::clamp(translation_.x(), l.minX, std::max(l.minX, l.maxX)),
                               std::clamp(translation_.y(), l.minY, std::max(l.minY, l.maxY)));
    }
}

void CollagePaneView::translate(double dx, double dy) {
    if (!selected_)
        return;
    translation_ += QPointF(dx, dy);
    clampTranslation(true);
    applyTransform();
}

void CollagePaneView::zoom(double factor) {
    if (!selected_)
        return;
    scale_ = std::clamp(scale_ * factor, minScale, maxScale);
    clampTranslation(true);
    applyTransform();
}

void CollagePaneView::animateImageTransform() {
    const double target = imageRotationQuarterTurns_ * 90.0;
    double delta = std::fmod(target - drawnAngle_, 360.0);
    if (delta < 0.0)
        delta += 360.0;
    if (delta > 180.0)
        delta -= 360.0;
    const double fromAngle = drawnAngle_;
    const double toAngle = drawnAngle_ + delta;
    const double fromFlip = drawnFlip_;
    const double toFlip = isImageFlipped_ ? -1.0 : 1.0;
    QPointer<CollagePaneView> self(this);
    Animations::animate(
        this, 0.2,
        [=](double p) {
            if (!self)
                return;
            self->drawnAngle_ = Animations::interpolate(fromAngle, toAngle, p);
            self->drawnFlip_ = Animations::interpolate(fromFlip, toFlip, p);
            self->update();
        },
        [self](bool) {
            if (self)
                self->drawnAngle_ = std::fmod(self->drawnAngle_ + 360.0, 360.0);
        });
}

void CollagePaneView::rotateQuarterTurn() {
    if (!selected_)
        return;
    imageRotationQuarterTurns_ = (imageRotationQuarterTurns_ + 1) % 4;
    animateImageTransform();
}

void CollagePaneView::toggleFlip() {
    if (!selected_)
        return;
    isImageFlipped_ = !isImageFlipped_;
    animateImageTransform();
}

void CollagePaneView::springBack(const QPointF& from) {
    const QPointF to = translation_;
    if (from == to)
        return; // nothing to travel, and a spring already under way goes on
    stopSpringBack();
    drawnTranslation_ = from;
    applyTransform();
    QPointer<CollagePaneView> self(this);
    springBack_ = Animations::spring(
        this, 0.3, 0.8, 0.0,
        [self, from, to](double p) {
            if (!self)
                return;
            self->drawnTranslation_ = from + (to - from) * p;
            self->applyTransform();
        },
        [self](bool) {
            if (!self)
                return;
            self->drawnTranslation_.reset();
            self->applyTransform();
        });
}

void CollagePaneView::takeOverSpringBack() {
    if (drawnTranslation_)
        translation_ = *drawnTranslation_;
    stopSpringBack();
}

void CollagePaneView::stopSpringBack() {
    if (springBack_)
        springBack_->stop();
    springBack_ = nullptr;
    if (drawnTranslation_) {
        drawnTranslation_.reset();
        applyTransform();
    }
}

void CollagePaneView::resetTransform() {
    if (!selected_)
        return;
    stopSpringBack();
    const double fromScale = scale_;
    const QPointF fromTranslation = translation_;
    scale_ = 1.0;
    translation_ = QPointF();
    QPointer<CollagePaneView> self(this);
    Animations::animate(this, 0.2, [=](double p) {
        if (!self)
            return;
        // The stored values are already the final ones; only what is drawn travels.
        const double s = Animations::interpolate(fromScale, 1.0, p);
        const QPointF t = fromTranslation * (1.0 - p);
        const QPointF c(self->frame_.width() / 2.0, self->frame_.height() / 2.0);
        self->setTransform(QTransform()
                               .translate(c.x() + t.x(), c.y() + t.y())
                               .scale(s * self->appearScale_, s * self->appearScale_)
                               .translate(-c.x(), -c.y()));
        self->checkmarkView_->setScale(1.0 / s);
    });
    imageRotationQuarterTurns_ = 0;
    isImageFlipped_ = false;
    animateImageTransform();
    setFeathers(25.0, 25.0);
}

void CollagePaneView::setFeathers(double horizontal, double vertical) {
    horizontalFeather_ = horizontal;
    verticalFeather_ = vertical;
    updateFeatherMask();
}

FeatherMaskLoader::Request CollagePaneView::maskRequest() const {
    return FeatherMaskLoader::Request{frame_.size(), horizontalFeather_, verticalFeather_};
}

void CollagePaneView::updateFeatherMask() {
    QPointer<CollagePaneView> self(this);
    maskLoader_.update(
        this, maskRequest(), [self]() { return self ? self->maskRequest() : FeatherMaskLoader::Request{}; },
        [self]() {
            if (self)
                self->update();
        });
}

void CollagePaneView::ensureFeatherMask() {
    if (maskLoader_.ensure(maskRequest()))
        update();
}

bool CollagePaneView::hasPendingWork() const {
    return maskLoader_.isBuilding() || detectionPending_;
}

void CollagePaneView::showCheckmark(bool animated) {
    cancelCheckmarkHide();
    checkmarkView_->setVisible(true);
    if (animated) {
        fadeCheckmark(1.0, 0.15, false);
    } else {
        if (checkmarkFade_)
            checkmarkFade_->stop();
        checkmarkView_->setOpacity(1.0);
    }
    QPointer<CollagePaneView> self(this);
    WorkItem hide([self]() {
        // A pane that lost the selection meanwhile has had its mark taken away by the canvas.
        if (self && self->selected_)
            self->fadeOutCheckmark();
    });
    checkmarkHideWorkItem_ = hide;
    Dispatch::main().asyncAfter(5.0, hide);
}

void CollagePaneView::cancelCheckmarkHide() {
    if (checkmarkHideWorkItem_)
        checkmarkHideWorkItem_->cancel();
    checkmarkHideWorkItem_.reset();
}

void CollagePaneView::fadeOutCheckmark() {
    fadeCheckmark(0.0, 0.2, true);
}

void CollagePaneView::fadeCheckmark(double to, double duration, bool hideAtZero) {
    if (checkmarkFade_)
        checkmarkFade_->stop();
    const double from = checkmarkView_->opacity();
    QPointer<CollagePaneView> self(this);
    checkmarkFade_ = Animations::animate(
        this, duration,
        [self, from, to](double p) {
            if (self)
                self->checkmarkView_->setOpacity(Animations::interpolate(from, to, p));
        },
        [self, hideAtZero](bool) {
            if (self && hideAtZero && self->checkmarkView_->opacity() == 0.0)
                self->checkmarkView_->setVisible(false);
        });
}

double CollagePaneView::checkmarkAlpha() const {
    return checkmarkView_->opacity();
}

void CollagePaneView::setCheckmarkAlpha(double alpha) {
    checkmarkView_->setOpacity(alpha);
}

bool CollagePaneView::isCheckmarkVisible() const {
    return checkmarkView_->isVisible() && checkmarkView_->opacity() > 0.0;
}

void CollagePaneView::handleTap() {
    if (delegate)
        delegate->collagePaneViewDidTap(this);
}

void CollagePaneView::invalidateLayer() {
    layer_ = QImage();
    layerKey_ = LayerKey{};
    update();
}

const QImage& CollagePaneView::sourceFor(double pixelsPerPoint) {
    // Big photos are drawn from a reduced copy when the pane shows them much smaller than stored;
    // the copy is made once per photo and level.
    if (upright_.isNull() || frame_.isEmpty())
        return upright_;
    const QRectF fill = ImageView::targetRect(
        QSizeF(contentsRect_.width() * upright_.width(), contentsRect_.height() * upright_.height()),
        boundingRect(), ContentMode::scaleAspectFill);
    const double needed = fill.width() * pixelsPerPoint / (contentsRect_.width() * upright_.width());
    if (needed >= 0.5)
        return upright_;
    const double factor = std::pow(2.0, std::ceil(std::log2(std::max(needed, 1e-3))));
    if (reducedSource_.isNull() || reducedFactor_ != factor) {
        const QSize size(std::max(1, static_cast<int>(std::lround(upright_.width() * factor))),
                         std::max(1, static_cast<int>(std::lround(upright_.height() * factor))));
        reducedSource_ = upright_.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        reducedFactor_ = factor;
    }
    return reducedSource_;
}

void CollagePaneView::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) {
    if (frame_.isEmpty() || upright_.isNull())
        return;
    const double pixelScale = MaskedLayer::pixelScaleFor(*painter, MaskedLayer::isRenderingSnapshot(),
                                                         Screen::main().scale() * maxScale);
    const LayerKey key{
        currentImage_.get(), maskLoader_.mask().get(), contentsRect_, frame_.size(), drawnAngle_, drawnFlip_,
        pixelScale};
    if (layer_.isNull() || !(key == layerKey_)) {
        const QImage& source = sourceFor(pixelScale);
        const QRectF sourceRect(contentsRect_.x() * source.width(), contentsRect_.y() * source.height(),
                                contentsRect_.width() * source.width(),
                                contentsRect_.height() * source.height());
        const QRectF bounds = boundingRect();
        const double angle = drawnAngle_;
        const double flip = drawnFlip_;
        layer_ = MaskedLayer::compose(
            frame_.size(), pixelScale,
            [&](QPainter& p) {
                const QPointF c = bounds.center();
                p.translate(c);
                p.rotate(angle);
                p.scale(flip, 1.0);
                p.translate(-c);
                p.setClipRect(bounds, Qt::IntersectClip);
                p.drawImage(ImageView::targetRect(sourceRect.size(), bounds, ContentMode::scaleAspectFill),
                            source, sourceRect);
            },
            maskLoader_.mask() ? maskLoader_.mask()->bitmap() : QImage());
        layerKey_ = key;
    }
    painter->save();
    painter->setClipRect(boundingRect(), Qt::IntersectClip);
    const QPointF c = boundingRect().center();
    painter->translate(c.x(), c.y() + containerOffsetY_);
    painter->scale(containerScale_, containerScale_);
    painter->translate(-c);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(boundingRect(), layer_);
    painter->restore();
}
