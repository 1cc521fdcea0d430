#pragma once

#include "collage/CollageCell.h"
#include "collage/CollageLayoutOption.h"

#include <QColor>

class LayoutThumbnailView;

// A layout in the layout panel: its line drawing on a rounded card, outlined in blue when chosen.
class LayoutOptionCell : public CollageCell {
    Q_OBJECT
public:
    explicit LayoutOptionCell(QWidget* parent = nullptr);

    static constexpr int thumbnailMargin = 12;

    void configure(CollageLayoutOption option, bool isSelected);

    LayoutThumbnailView* thumbnailView() const { return thumbnailView_; }
    double borderWidth() const;
    QColor borderColor() const;

    QSize sizeHint() const override { return {64, 64}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void placeThumbnail();

    LayoutThumbnailView* thumbnailView_;
};
