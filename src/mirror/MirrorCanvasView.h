#pragma once

#include "mirror/MirrorImageView.h"
#include "mirror/MirrorPaneView.h"
#include "mirror/MirrorPattern.h"
#include "platform/Image.h"

#include <QGraphicsView>
#include <QList>
#include <QPointer>
#include <array>
#include <functional>
#include <vector>

class QGraphicsPixmapItem;
class StickerView;

// The square canvas of the mirror editor, W points on a side. It owns one set of panes for each of the
// 18 patterns, made once and reused on every selection, and shows one pattern at a time, maybe under an
// overlay picture, with the editor's stickers and captions above. Scrolling one pane moves the others
// by the pattern's link rule; nothing is drawn into a bitmap until the canvas is flattened.
//
// Main thread only. Indices out of range build nothing; the stickers are raised all the same.
class MirrorCanvasView : public QGraphicsView, public MirrorPaneDelegate {
    Q_OBJECT
public:
    explicit MirrorCanvasView(double side, QWidget* parent = nullptr);
    ~MirrorCanvasView() override;

    double side() const { return side_; }

    // The picture as picked; the panes take it (or a mirrored form of it) on the next build.
    void setSelectedImage(ImagePtr image) { selectedImage_ = std::move(image); }
    const ImagePtr& selectedImage() const { return selectedImage_; }

    void applyLowMirrorPattern(int index);
    void applyHighMirrorPattern(int index, bool mirrorFirst);

    // The pattern whose panes are on the canvas, or -1.
    int showingPattern() const { return showing_; }
    // The panes of a pattern (on the canvas or not), in pane order; empty out of range.
    const std::vector<MirrorPaneView*>& panes(int pattern) const;
    std::vector<MirrorPaneView*> showingPanes() const;
    // The picture laid over the panes by an overlay pattern, or null.
    QGraphicsPixmapItem* overlayView() const { return overlayView_; }

    // The pane that takes a look, and the picture it started from.
    MirrorImageView* currentImageView() const { return currentImageView_; }
    void setCurrentImageView(MirrorImageView* view);
    const ImagePtr& currentImage() const { return currentImage_; }
    void setCurrentImage(ImagePtr image) { currentImage_ = std::move(image); }
    double scrollView1ContentOffset = 0;

    // The view whose picture grows when `pane` zooms: its own for the patterns that zoom their own
    // picture, the second picture of the first pattern for all others.
    MirrorImageView* viewForZooming(MirrorPaneView* pane) const;
    void zoom(MirrorPaneView* pane, double zoomScale, const QPointF& anchor = QPointF());

    // Overlays. The canvas takes ownership; a sticker taken off the canvas by pattern 18 stays owned.
    void addSticker(StickerView* sticker);
    QList<StickerView*> stickersOnCanvas() const;
    void bringToFront(QGraphicsItem* item);
    void bringStickersToFront();

    // Told when the user taps a pane's picture, and when they double-click an overlay.
    std::function<void(MirrorImageView*)> onImageTapped;
    std::function<void(StickerView*)> onStickerDoubleTapped;

    // The canvas as one picture: W points square at the screen's scale.
    ImagePtr snapshot();

    void scrollViewDidScroll(MirrorPaneView* pane) override;
    void scrollViewDidZoom(MirrorPaneView* pane, double zoom, const QPointF& anchor) override;
    void imageTapped(MirrorImageView* imageView) override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void removeNonStickers();
    void detachStickers();
    void buildPanes(int index);
    void placeAtRest(int index);
    void addToCanvas(QGraphicsItem* item);

    double side_;
    QGraphicsScene* scene_ = nullptr;
    ImagePtr selectedImage_;
    std::array<std::vector<MirrorPaneView*>, MirrorPatterns::lowCount> paneSets_;
    int showing_ = -1;
    QGraphicsPixmapItem* overlayView_ = nullptr;
    QPointer<MirrorImageView> currentImageView_;
    ImagePtr currentImage_;
    // Stickers taken off the canvas, still owned here.
    std::vector<QGraphicsItem*> detached_;
    double topZ_ = 10;
};
