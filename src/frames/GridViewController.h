#pragma once

#include "platform/ViewController.h"

#include <QList>
#include <QStringList>

class GridCell;
class QLabel;
class QPushButton;
class QScrollArea;

// The 33 classic frames as a grid of previews, three to a row with one point between cells. A tap opens
// the classic collage for that frame; the editor then asks for the frame's photos.
class GridViewController : public ViewController {
    Q_OBJECT
public:
    static constexpr double numberOfColumns = 3.0;
    static constexpr double interitemSpacing = 1.0;

    explicit GridViewController(QWidget* parent = nullptr);

    // Frame n's preview is row n.
    static const QStringList& ArrayButton();
    // The previews of the frames with as many cells as frame `item`: the row of the tray the editor shows.
    static QStringList previewsForFrame(int item);
    // The side of a cell for a grid of `width` points.
    static double itemSide(double width);

    QList<GridCell*> cells() const { return cells_; }
    QLabel* titleLabel() const { return titleLabel_; }
    QPushButton* backButton() const { return backButton_; }
    QScrollArea* collectionview() const { return collectionview_; }

    // A tap on item i: the cell is marked and the editor opens for that frame.
    void didSelectItem(int item);
    void backAction();

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void layoutViews();

    QList<GridCell*> cells_;
    QLabel* titleLabel_ = nullptr;
    QPushButton* backButton_ = nullptr;
    QScrollArea* collectionview_ = nullptr;
    QWidget* content_ = nullptr;
};
