#pragma once

#include "filters/FilterThumbnailButton.h"

#include <QColor>
#include <QList>
#include <QScrollArea>
#include <QStringList>
#include <functional>
#include <optional>

// The horizontal strip of look thumbnails under an editor. One button per name, 74 × 99 points, 82 points
// apart from x = 5, tagged with its row. A tap moves the selection border to the button at once and
// reports the row on the main queue afterwards, so the border is drawn before the look is worked out.
// A thumbnail the assets do not have leaves its button blank.
class FilterStripView : public QScrollArea {
    Q_OBJECT
public:
    static constexpr int buttonWidth = 74, buttonHeight = 99, buttonStep = 82, firstButtonX = 5, buttonY = 1;
    static const QColor selectionColor; // "faca16"

    // `thumbnailNames` defaults to the thumbnails of the filter table. `extraCells` widens the scrolled
    // content by that many steps beyond the last button.
    explicit FilterStripView(QWidget* parent = nullptr);
    FilterStripView(const QStringList& thumbnailNames, int extraCells, QWidget* parent = nullptr);

    // Called on the main queue with the row of the tapped button.
    std::function<void(int)> onFilterSelected;

    QList<FilterThumbnailButton*> buttons() const { return buttons_; }
    int filterScrollViewCount() const { return int(buttons_.size()); }
    std::optional<int> selectedIndex() const { return selected_; }

    void FilterButtonTapped(FilterThumbnailButton* sender);

private:
    QList<FilterThumbnailButton*> buttons_;
    std::optional<int> selected_;
};
