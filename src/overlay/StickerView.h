#pragma once

#include "platform/Color.h"
#include "platform/Image.h"

#include <QGraphicsObject>
#include <QGraphicsWidget>
#include <QPointF>
#include <QPointer>
#include <QRectF>
#include <QVariant>

class StickerView;
class QGraphicsRectItem;
class QVariantAnimation;

// What an overlay reports to its owner. Every call has a do-nothing default, so a listener answers only
// what it cares about.
class StickerViewDelegate {
public:
    virtual ~StickerViewDelegate() = default;
    virtual void stickerViewDidBeginMoving(StickerView*) {}
    virtual void stickerViewDidChangeMoving(StickerView*) {}
    virtual void stickerViewDidEndMoving(StickerView*) {}
    virtual void stickerViewDidBeginRotating(StickerView*) {}
    virtual void stickerViewDidChangeRotating(StickerView*) {}
    virtual void stickerViewDidEndRotating(StickerView*) {}
    virtual void stickerViewDidClose(StickerView*) {}
    virtual void stickerViewDidTap(StickerView*) {}
};

// A picture in a handle's square, fitted whole; nothing when it has none. Takes the clicks and touches
// that land in its square even without a picture, so an invisible handle still works.
class StickerHandleView : public QGraphicsObject {
    Q_OBJECT
public:
    explicit StickerHandleView(QGraphicsItem* parent = nullptr);

    void setImage(ImagePtr image);
    const ImagePtr& image() const { return image_; }
    void setSide(double side);
    double side() const { return side_; }
    // Whether the handle answers presses (a hidden handle never does).
    void setUserInteractionEnabled(bool enabled) { interactive_ = enabled; }
    bool isUserInteractionEnabled() const { return interactive_; }

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    ImagePtr image_;
    QImage upright_;
    double side_ = 22;
    bool interactive_ = true;
};

// The movable overlay of a canvas: carries any content (a picture, a caption) and lets the user drag it
// by its body, turn and scale it at once with the handle at the bottom right, remove it with the one at
// the top left, mirror its content with the one at the bottom left, and tap it.
//
// Geometry follows the phone's view: `center()` is the item's position in its parent (or the scene),
// `bounds()` its untransformed size with the content inset by `defaultInset` on every side, and
// `transform()` a pure rotation. Scaling changes the bounds, never the transform, so a caption's owner
// re-sizes its text itself. The content follows the bounds, keeping its margins.
//
// Input: the mouse (drag, tap, Ctrl+wheel to scale, Alt+wheel to turn) and touch (one finger as the
// mouse, two fingers turn and scale about the centre). Everything happens on the main thread.
class StickerView : public QGraphicsObject {
    Q_OBJECT
public:
    // Corners of the content: a handle's tag.
    enum Corner { topLeft = 0, topRight = 1, bottomLeft = 2, bottomRight = 3 };

    // Takes ownership of `contentView`; its size gives the overlay's.
    explicit StickerView(QGraphicsWidget* contentView, QGraphicsItem* parent = nullptr);
    ~StickerView() override;

    // Not owned; the owner keeps it alive for as long as the overlay lives.
    StickerViewDelegate* delegate = nullptr;
    bool enableClose = true;
    bool enableRotate = true;
    bool enableFlip = true;
    // Set by the owner, who then calls updateHandlers().
    bool showEditingHandlers = true;
    QVariant userInfo;

    QGraphicsWidget* contentView() const { return contentView_; }
    int defaultInset() const { return defaultInset_; }
    int defaultMinimumSize() const { return defaultMinimumSize_; }
    int minimumSize() const { return minimumSize_; }

    Color outlineBorderColor() const { return outlineBorderColor_; }
    void setOutlineBorderColor(const Color& color);
    // Width of the outline drawn around the content: 1 while the handles show, else 0.
    double contentBorderWidth() const { return borderWidth_; }

    // Handles made on first use; the owner sets their pictures through these.
    StickerHandleView* closeImageView();
    StickerHandleView* rotateImageView();
    StickerHandleView* flipImageView();

    void updateHandlers();
    // Handles of `size` points; the margin becomes half of it and the smallest side twice it. Sizes under
    // 1 are ignored. Centre and rotation stay as they were.
    void setHandlerSize(int size);

    QPointF center() const { return pos(); }
    void setCenter(const QPointF& point) { setPos(point); }
    QRectF bounds() const { return bounds_; }
    void setBounds(const QRectF& bounds);
    // The content's frame in the overlay's own coordinates (origin at the centre).
    QRectF contentFrame() const;
    // Where a corner of the content lies in the overlay's own coordinates.
    QPointF cornerPoint(int corner) const;
    // The content's horizontal mirroring: 1 as made, -1 after one flip (in between while it animates).
    double contentScaleX() const { return contentScaleX_; }

    // The rotation of the transform, in radians.
    double rotationAngle() const;
    // What the last turn began from.
    double deltaAngle() const { return deltaAngle_; }
    QRectF initialBounds() const { return initialBounds_; }

    // Movement below this many points is still a tap.
    static constexpr double tapSlop = 4.0;

    // The gestures' logic, fed with the touch's location in the parent's space. Public so that any kind
    // of input can drive it.
    enum class GestureState { began, changed, ended, cancelled };
    void handleMoveGesture(GestureState state, const QPointF& location);
    void handleRotateGesture(GestureState state, const QPointF& location);
    void handleCloseGesture();
    void handleFlipGesture();
    void handleTapGesture();

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void wheelEvent(QGraphicsSceneWheelEvent* event) override;
    bool sceneEvent(QEvent* event) override;

private:
    enum class Drag { none, body, rotate, close, flip };
    StickerHandleView* makeHandle(StickerHandleView*& slot, int corner);
    void placeHandle(StickerHandleView* handle);
    void layoutContent();
    void applyContentTransform();
    void refreshOutline();
    QPointF locationInParent(const QPointF& scenePoint) const;
    void press(Drag drag, const QPointF& scenePoint);
    void move(const QPointF& scenePoint);
    void release(const QPointF& scenePoint);
    bool handleTouch(QEvent* event);
    void removeFromSuperview();

    QGraphicsWidget* contentView_ = nullptr;
    QGraphicsRectItem* outline_ = nullptr;
    int defaultInset_ = 11;
    int defaultMinimumSize_ = 44;
    int minimumSize_ = 44;
    Color outlineBorderColor_;
    double borderWidth_ = 1.0;
    QRectF bounds_;
    double contentScaleX_ = 1.0;
    QPointer<QVariantAnimation> flipAnimation_;

    StickerHandleView* closeImageView_ = nullptr;
    StickerHandleView* rotateImageView_ = nullptr;
    StickerHandleView* flipImageView_ = nullptr;

    // Gesture state as the phone's recognisers keep it.
    QPointF beginningPoint_;
    QPointF beginningCenter_;
    QRectF initialBounds_;
    double initialDistance_ = 0;
    double deltaAngle_ = 0;

    // Pointer tracking: what the press started on, where, and whether it has become a drag.
    Drag drag_ = Drag::none;
    QPointF pressScenePoint_;
    bool dragging_ = false;
    // Two-finger turn and scale: the pinch's start.
    bool pinching_ = false;
    double pinchStartAngle_ = 0;
    double pinchStartDistance_ = 0;
    double pinchStartRotation_ = 0;
    QRectF pinchStartBounds_;
};

// A picture as an overlay's content, fitted whole into the content's frame.
class StickerPictureView : public QGraphicsWidget {
    Q_OBJECT
public:
    explicit StickerPictureView(ImagePtr image, const QSizeF& size, QGraphicsItem* parent = nullptr);
    const ImagePtr& image() const { return image_; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    ImagePtr image_;
    QImage upright_;
};
