#pragma once

#include "collage/FeatherMaskLoader.h"
#include "platform/Dispatch.h"
#include "platform/Image.h"

#include <QGraphicsObject>
#include <QImage>
#include <optional>

// A blurred, feathered copy of a pane's photo lying under all panes, so that what shows through a
// pane's soft edge, or beside a pane dragged aside, is a soft blur of the same photo. It has the
// pane's frame but not its move and zoom, and takes no input.
class CollageBackdropPaneView : public QGraphicsObject {
    Q_OBJECT
public:
    explicit CollageBackdropPaneView(QGraphicsItem* parent = nullptr);
    ~CollageBackdropPaneView() override;

    void setFrame(const QRectF& frame);
    QRectF frame() const { return frame_; }

    void setImage(ImagePtr image);
    const ImagePtr& image() const { return image_; }

    // Fraction of the full extra-light blur, kept as given; the blur uses it limited to 0…1.
    double blurIntensity = 1.0;
    double blurFraction() const { return blurFraction_; }
    // Takes the fraction from `blurIntensity` again and redoes the blur (after the backdrop was hidden).
    void rebuildBlurAnimator();

    double horizontalFeather() const { return horizontalFeather_; }
    double verticalFeather() const { return verticalFeather_; }
    void setFeathers(double horizontal, double vertical);
    void updateFeatherMask();
    FeatherMaskLoader::Request maskRequest() const;
    const ImagePtr& featherMask() const { return maskLoader_.mask(); }
    void ensureFeatherMask();

    // The blurred picture as drawn (null until it is ready), and whether work is still in flight.
    const QImage& blurredImage() const { return blurred_; }
    bool hasPendingWork() const;
    // For flattening: the blur made now if the asynchronous one has not arrived.
    void ensureBlur();

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    struct BlurKey {
        const Image* image = nullptr;
        QSizeF size;
        double fraction = -1.0;
        bool operator==(const BlurKey&) const = default;
    };
    BlurKey currentBlurKey() const;
    void updateBlur();

    QRectF frame_;
    ImagePtr image_;
    double blurFraction_ = 0.0;
    QImage blurred_;
    BlurKey blurredKey_;
    int blurGeneration_ = 0;
    bool blurPending_ = false;
    // The blur on its way and what it is for: asking again for the same one starts nothing, and a
    // newer request keeps an older one that has not started from running at all.
    std::optional<WorkItem> blurWorkItem_;
    BlurKey pendingBlurKey_;

    double horizontalFeather_ = 25.0;
    double verticalFeather_ = 25.0;
    FeatherMaskLoader maskLoader_;

    struct LayerKey {
        const uchar* blur = nullptr;
        const Image* mask = nullptr;
        QSizeF size;
        double pixelScale = 0.0;
        bool operator==(const LayerKey&) const = default;
    };
    LayerKey layerKey_;
    QImage layer_;
};
