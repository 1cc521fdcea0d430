#pragma once

#include "frames/FrameGeometry.h"
#include "platform/Color.h"
#include "platform/Image.h"

#include <QGraphicsView>
#include <array>
#include <functional>

class FrameCellItem;
class QGraphicsScene;

// The frame area of the classic collage: six cells on a coloured ground, of which a frame shows the
// first two to six. The cells keep their pictures while hidden, so a frame with more cells shows them
// again. Dragging a cell pans its picture, the wheel with Ctrl (or a pinch) zooms it, and a click
// without a drag reports the cell. Main thread only.
class FrameAreaView : public QGraphicsView {
    Q_OBJECT
public:
    explicit FrameAreaView(QWidget* parent = nullptr);
    ~FrameAreaView() override;

    // Spacing in points, horizontally and vertically.
    double coordx = FrameGeometry::defaultSpacing;
    double coordy = FrameGeometry::defaultSpacing;

    // Called with the tag of a cell clicked without dragging.
    std::function<void(int tag)> onCellTapped;

    FrameCellItem* cell(int index) const;
    QSizeF areaSize() const { return QSizeF(size()); }

    // A full layout pass for `frame`: the frame's cells shown and placed, zoom and picture fit set anew.
    // A frame outside 0…32 hides every cell. Every shown cell must hold a picture.
    void layoutFrame(int frame);
    // The same places, zoom and fit left alone (for the spacing slider).
    void relayoutFrame(int frame);
    // The slider's spacing for both axes, then the cells placed again when `frame` is one of the 33.
    void setSpacing(double value, int frame);
    // Every cell's corners, shown or not.
    void setCornerRadius(double radius);

    void setBackgroundColor(const Color& color);
    Color backgroundColor() const { return background_; }

    // The area flattened at the screen's scale, transparent where nothing is drawn.
    ImagePtr snapshot() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void drawBackground(QPainter* painter, const QRectF& rect) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    FrameCellItem* cellAt(const QPoint& viewPosition) const;
    void placeCells(int frame);

    QGraphicsScene* scene_;
    std::array<FrameCellItem*, FrameGeometry::maxCells> cells_{};
    Color background_;
    int laidOutFrame_ = -1;
    FrameCellItem* pressed_ = nullptr;
    QPoint pressPosition_;
    QPoint lastPosition_;
    bool dragged_ = false;
};
