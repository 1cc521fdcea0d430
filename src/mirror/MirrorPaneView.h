#pragma once

#include "mirror/MirrorPattern.h"

#include <QGraphicsObject>
#include <QPointer>

class MirrorImageView;
class MirrorPaneView;
class QVariantAnimation;

// What a pane tells the canvas: its offset changed through setContentOffset (a drag, a wheel, an
// animated move), or the user tapped its picture.
class MirrorPaneDelegate {
public:
    virtual ~MirrorPaneDelegate() = default;
    virtual void scrollViewDidScroll(MirrorPaneView* pane) = 0;
    virtual void scrollViewDidZoom(MirrorPaneView* /*pane*/, double /*zoom*/, const QPointF& /*anchor*/) {}
    virtual void imageTapped(MirrorImageView* imageView) = 0;
};

// One pane of a mirror pattern: the outer view at the pane's rectangle, which is also its scroll view,
// clipping a W × W picture that it scrolls over. Its bounds origin is the scroll offset. Writing the
// offset tells the delegate; writing the bounds origin does not, which is how linked panes are placed.
//
// Input: a drag scrolls (the picture follows the pointer), a press without movement is a tap on the
// picture, the wheel scrolls and Ctrl+wheel zooms about the pointer.
class MirrorPaneView : public QGraphicsObject {
    Q_OBJECT
public:
    MirrorPaneView(double side, int tag, QGraphicsItem* parent = nullptr);
    ~MirrorPaneView() override;

    MirrorPaneDelegate* delegate = nullptr;
    int tag() const { return tag_; }
    MirrorImageView* imageView() const { return imageView_; }

    // Frame in the canvas; the bounds keep their origin.
    void setFrame(const QRectF& frame);
    QRectF frame() const { return QRectF(pos(), bounds_.size()); }

    const MirrorScrollState& state() const { return state_; }
    QPointF contentOffset() const { return state_.origin; }
    // Scrolls to `offset` and tells the delegate; animated, it glides there over 0.3 seconds, telling
    // the delegate at every step.
    void setContentOffset(const QPointF& offset, bool animated = false);
    // Places the picture silently.
    void setBoundsOrigin(const QPointF& origin);
    void setContentSize(const QSizeF& size);
    void setContentInset(const QMarginsF& inset);
    // The zoom value alone; what grows is the view the canvas picks for zooming.
    void setZoomScale(double zoom);
    double minimumZoomScale = MirrorPatterns::minimumZoomScale;
    double maximumZoomScale = MirrorPatterns::maximumZoomScale;
    int autoresizingMask = 0;

    // The farthest the content can be scrolled, at the present content size and inset.
    QPointF maximumContentOffset() const;
    QPointF clampedOffset(const QPointF& offset) const;

    // Presses further than this are drags, not taps (points).
    static constexpr double tapSlop = 4.0;
    // A wheel notch scrolls this many points.
    static constexpr double wheelStep = 20.0;

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void wheelEvent(QGraphicsSceneWheelEvent* event) override;

private:
    void applyOrigin();

    int tag_;
    MirrorImageView* imageView_ = nullptr;
    QRectF bounds_;
    MirrorScrollState state_;
    QPointer<QVariantAnimation> offsetAnimation_;
    QPointF pressPoint_;
    QPointF pressOffset_;
    bool dragging_ = false;
};
