#pragma once

#include "platform/Image.h"

#include <QGraphicsObject>
#include <QImage>
#include <QPointF>
#include <QSizeF>

// One cell of the frame area: a clipped view with a zooming, panning picture inside, as a scroll view
// holding one image view would be. The picture is fitted to span the cell's longer side; the content it
// pans over is a square of the picture's side along that direction, so panning reaches across the long
// way only as far as that side goes. Zoom runs from 1 to 6. Main thread only.
class FrameCellItem : public QGraphicsObject {
    Q_OBJECT
public:
    static const QColor emptyColor; // where the picture does not cover the cell

    explicit FrameCellItem(int tag, QGraphicsItem* parent = nullptr);

    int tag() const { return tag_; }

    // The cell's place in the frame area, in points.
    void setFrame(const QRectF& frame);
    QRectF frame() const { return QRectF(pos(), size_); }

    // What the cell shows. A new picture keeps zoom and fit until the next layout pass, as an image view
    // given another picture would; the fit is then that of the new picture.
    void setImage(ImagePtr image);
    const ImagePtr& image() const { return image_; }

    // A full layout pass: the given zoom, the picture fitted anew and shown from its middle. Without a
    // picture only the zoom is kept.
    void layoutContent(double zoomScale);

    double zoomScale() const { return zoomScale_; }
    QPointF contentOffset() const { return contentOffset_; }
    QSizeF contentSize() const { return contentSize_; }
    // The picture's size at zoom 1 after fitting.
    QSizeF pictureSize() const { return pictureSize_; }

    // Moves the picture with a drag (positive moves it right and down), within the content.
    void panBy(const QPointF& delta);
    // Zooms by `factor` around `anchor` (in the cell's own points), within 1…6.
    void zoomBy(double factor, const QPointF& anchor);

    void setCornerRadius(double radius);
    double cornerRadius() const { return cornerRadius_; }

    // Where the picture is drawn inside the cell, in the cell's own points.
    QRectF pictureRect() const;

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    void clampOffset();

    int tag_;
    QSizeF size_;
    ImagePtr image_;
    QImage upright_;
    double zoomScale_ = 1.0;
    QPointF contentOffset_;
    QSizeF contentSize_;
    QSizeF pictureSize_;
    double cornerRadius_ = 0.0;
};
