#pragma once

#include "platform/Image.h"

#include <QGraphicsObject>
#include <QImage>

// The picture inside a mirror pane: a W × W square showing one picture aspect-filled, grown by its zoom
// from its top left corner as a zoomed view grows inside its scroll view. It paints the whole square;
// its pane clips it. Presses pass through to the pane around it.
class MirrorImageView : public QGraphicsObject {
    Q_OBJECT
public:
    MirrorImageView(double side, int tag, QGraphicsItem* parent = nullptr);

    int tag() const { return tag_; }
    double side() const { return side_; }

    void setImage(ImagePtr image);
    const ImagePtr& image() const { return image_; }

    // The zoom the square is drawn at: its frame is side × zoom on each side.
    void setZoomScale(double zoom);
    double zoomScale() const { return zoom_; }

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    double side_;
    int tag_;
    double zoom_ = 1.0;
    ImagePtr image_;
    QImage upright_;
};
