#pragma once

#include "overlay/StickerCategoryController.h"
#include "platform/ViewController.h"
#include "platform/WeakDelegate.h"

class QLabel;
class QPushButton;
class QScrollArea;
class SeeAllCollectionVIew;

// Every sticker of one category, three to a row. A choice is handed to `delegate` (the catalogue), which
// dismisses this grid.
class StickerViewController : public ViewController {
    Q_OBJECT
public:
    explicit StickerViewController(QWidget* parent = nullptr);

    int selectedIndex = 0;
    WeakDelegate<StickerPasssedFromSeeAll> delegate;

    QLabel* topLbl() const { return topLbl_; }
    QPushButton* backButton() const { return backButton_; }
    QScrollArea* seeAllCollectionVIew() const { return seeAllCollectionVIew_; }
    const QList<SeeAllCollectionVIew*>& cells() const { return cells_; }
    // (collection width / 3 − 5) points.
    int itemSide() const;

    void backAction();
    void didSelectItem(int item);

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void layoutViews();

    QLabel* topLbl_ = nullptr;
    QPushButton* backButton_ = nullptr;
    QScrollArea* seeAllCollectionVIew_ = nullptr;
    QWidget* grid_ = nullptr;
    QList<SeeAllCollectionVIew*> cells_;
};
