#pragma once

#include "platform/Image.h"

#include <QColor>
#include <QPoint>
#include <QWidget>
#include <functional>

class CheckerboardView;
class DragGripView;
class ImageView;
class QLabel;

// One row of the layers list: a card with a grip, the layer's picture over a checkerboard, and its
// place in the stack ("Layer 01" is the front). Selected rows have a blue border.
class LayerCell : public QWidget {
    Q_OBJECT
public:
    explicit LayerCell(QWidget* parent = nullptr);

    static constexpr int rowHeight = 132;
    static constexpr double cornerRadius = 14.0;
    static constexpr int preferredThumbnailWidth = 190;

    // "Layer 01" for row 0: numbers are places in the stack, not photo numbers.
    static QString layerTitle(int row);

    // Fires when the row is clicked without moving.
    std::function<void()> onTap;
    // Fires once the pointer has moved far enough with the button down to start a drag.
    std::function<void()> onDragRequested;

    void configure(int row, ImagePtr thumbnail, bool isSelected);
    // Back to a blank, unselected row without a picture.
    void prepareForReuse();

    int row() const { return row_; }
    bool isLayerSelected() const { return selected_; }
    QString title() const;
    ImagePtr thumbnail() const;
    double borderWidth() const { return selected_ ? 2.0 : 1.0; }
    QColor borderColor() const;

    // The card inside the row's margins.
    QRect cardRect() const;
    QRect thumbnailRect() const;

    QLabel* titleLabel() const { return titleLabel_; }
    QLabel* subtitleLabel() const { return subtitleLabel_; }
    ImageView* thumbnailImageView() const { return thumbnailImageView_; }
    CheckerboardView* checkerboardView() const { return checkerboardView_; }
    DragGripView* dragHandleView() const { return dragHandleView_; }

    QSize sizeHint() const override { return {300, rowHeight}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void layoutParts();

    DragGripView* dragHandleView_ = nullptr;
    CheckerboardView* checkerboardView_ = nullptr;
    ImageView* thumbnailImageView_ = nullptr;
    QLabel* titleLabel_ = nullptr;
    QLabel* subtitleLabel_ = nullptr;
    int row_ = -1;
    bool selected_ = false;
    bool pressed_ = false;
    bool dragging_ = false;
    QPoint pressPosition_;
};
