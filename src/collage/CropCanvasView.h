#pragma once

#include "collage/CropGeometry.h"

#include <QImage>
#include <QWidget>
#include <functional>
#include <optional>

// The picture with the crop rectangle over it: the area outside the rectangle is dimmed, corners and
// edge midpoints carry handles. Dragging a handle resizes the rectangle, dragging inside moves it,
// arrow keys nudge it (Shift for larger steps). The rectangle is kept in pixels of the picture shown,
// so the screen's size never changes what is cut.
class CropCanvasView : public QWidget {
    Q_OBJECT
public:
    explicit CropCanvasView(QWidget* parent = nullptr);

    static constexpr double margin = 24.0;
    static constexpr double handleReach = 22.0;
    // Smallest side of the rectangle on screen, so the handles never overlap.
    static constexpr double minimumViewSide = 40.0;

    // Fires whenever the user changes the rectangle.
    std::function<void()> onCropRectChanged;

    // `display` is drawn in place of a picture of `pixelSize`; it may be a reduced copy.
    void setPicture(const QImage& display, const QSize& pixelSize);
    QSize pictureSize() const { return pixelSize_; }

    QRectF cropRect() const { return cropRect_; }
    void setCropRect(const QRectF& rect);
    std::optional<double> aspect() const { return aspect_; }
    void setAspect(std::optional<double> aspect) { aspect_ = aspect; }

    // Smallest side allowed, in picture pixels.
    double minimumSide() const;
    // Where the picture is drawn, and the mapping between the view and picture pixels.
    QRectF pictureRectInView() const;
    QPointF toView(const QPointF& picturePoint) const;
    QPointF toPicture(const QPointF& viewPoint) const;
    QRectF cropRectInView() const;
    CropHandle handleAt(const QPointF& viewPoint) const;

    bool isDragging() const { return dragHandle_ != CropHandle::none; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    double displayScale() const;
    void updateCursor(CropHandle handle);
    void changeCropRect(const QRectF& rect);

    QImage display_;
    QSize pixelSize_;
    QRectF cropRect_;
    std::optional<double> aspect_;
    CropHandle dragHandle_ = CropHandle::none;
    QPointF dragStart_;
    QRectF dragStartRect_;
};
