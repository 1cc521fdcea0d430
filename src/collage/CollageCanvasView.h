#pragma once

#include "collage/CollageLayoutOption.h"
#include "collage/CollagePaneView.h"
#include "platform/Image.h"

#include <QGraphicsView>
#include <QPointer>
#include <functional>
#include <optional>
#include <vector>

class CollageBackdropPaneView;
class CustomBackgroundItem;

enum class GestureState { began, changed, ended, cancelled, failed };

// The surface a collage is composed on: a white rectangle owning one photo pane and one blurred
// backdrop per photo, placed from a layout's fractions. It keeps the stacking order and the
// selection, and turns drags, pinches and Ctrl+wheel anywhere on it into moves of the selected pane.
class CollageCanvasView : public QGraphicsView, public CollagePaneViewDelegate {
    Q_OBJECT
public:
    explicit CollageCanvasView(QWidget* parent = nullptr);
    ~CollageCanvasView() override;

    static constexpr double kOverhang = 25.0;

    const std::vector<CollagePaneView*>& paneViews() const { return paneViews_; }
    const std::vector<CollageBackdropPaneView*>& backdropViews() const { return backdropViews_; }

    double blurIntensity = 0.35;
    std::function<void()> onSelectionChanged;
    std::function<void()> onLayersChanged;

    std::optional<int> selectedIndex() const { return selectedIndex_; }
    // Pane indices from front to back.
    const std::vector<int>& zOrder() const { return zOrder_; }
    bool isCustomBackgroundActive() const { return isCustomBackgroundActive_; }

    // Discards every pane and builds new ones for the photos, placed by the layout (equal columns
    // when there is none or its pane count differs).
    void configure(const std::vector<ImagePtr>& images, std::optional<CollageLayoutOption> layout);

    void selectPane(int index);
    std::optional<std::pair<double, double>> selectedPaneFeather() const;
    void setSelectedPaneFeather(double horizontal, double vertical);
    void rotateSelectedPane();
    void flipSelectedPane();
    void resetSelectedPane();

    ImagePtr layerThumbnail(int row) const;
    void moveLayer(int from, int to);
    void applyZOrder();

    void setCustomBackground(ImagePtr image);
    void clearCustomBackground();

    // Gesture actions: the pan's translation and the pinch's scale are the change since the last call.
    // A pinch also moves the pane by how far the fingers' centre moved.
    void handleCanvasPan(GestureState state, const QPointF& translation = QPointF());
    void handleCanvasPinch(GestureState state, double scale = 1.0, const QPointF& translation = QPointF());

    QSizeF canvasSize() const;
    // The canvas as one picture: its size in points times the screen scale. Masks and blurs that
    // have not arrived yet are made first, so the picture never lacks them.
    ImagePtr snapshot();
    // The snapshot with every checkmark hidden for the moment of drawing.
    ImagePtr flattenedImage();

    bool hasPendingWork() const;

    // Where a pane with layout rectangle `rect` goes on a canvas of `size`.
    static QRectF paneFrame(const QRectF& rect, const QSizeF& size, double inset, double gap);

    void collagePaneViewDidTap(CollagePaneView* pane) override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    void clearPanes();
    void syncCanvasSize();
    void layoutPanes();
    CollagePaneView* selectedPane() const;
    // Both gestures act on the selected pane: `change` on began and changed, a spring back on the end.
    void handleGesture(GestureState state, const std::function<void(CollagePaneView*)>& change);
    void beginGesture();
    void endGesture();

    QGraphicsScene* scene_ = nullptr;
    CustomBackgroundItem* customBackgroundImageView_ = nullptr;
    std::vector<CollagePaneView*> paneViews_;
    std::vector<CollageBackdropPaneView*> backdropViews_;
    std::vector<QRectF> paneRects_;
    double gap_ = 0.0;
    double inset_ = 0.0;
    std::optional<int> selectedIndex_;
    std::vector<int> zOrder_;
    bool isCustomBackgroundActive_ = false;

    QPointF pressPosition_;
    QPointF lastDragPosition_;
    bool mousePressed_ = false;
    bool dragging_ = false;
    bool pinching_ = false;
};
