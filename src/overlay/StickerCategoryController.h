#pragma once

#include "overlay/StickerCells.h"
#include "platform/Image.h"
#include "platform/ViewController.h"
#include "platform/WeakDelegate.h"

#include <QList>

class QLabel;
class QPushButton;
class QScrollArea;
class StickerViewController;

// The editor's side of the catalogue: it receives the chosen picture and dismisses the catalogue.
class StickerHandler {
public:
    virtual ~StickerHandler() = default;
    virtual void stickerPicked(ImagePtr image) = 0;
};

// What the grid of one category hands back to the catalogue.
class StickerPasssedFromSeeAll {
public:
    virtual ~StickerPasssedFromSeeAll() = default;
    virtual void stickerPassedFromSeeAll(ImagePtr image) = 0;
};

// The sticker catalogue: one row per category, each with a sideways strip of its pictures and "See All"
// for the whole category as a grid. A choice goes to the editor through `delegate`, which dismisses the
// catalogue; without a delegate a choice ends there.
class StickerCategoryController : public ViewController,
                                  public StickerTablehandler,
                                  public StickerPasssedFromSeeAll {
    Q_OBJECT
public:
    static constexpr int sectionFooterHeight = 20;
    static constexpr int topContentInset = 5;

    explicit StickerCategoryController(QWidget* parent = nullptr);

    WeakDelegate<StickerHandler> delegate;

    QLabel* topLbl() const { return topLbl_; }
    QPushButton* backButton() const { return backButton_; }
    QScrollArea* stickerTableView() const { return stickerTableView_; }
    // The row of a category, or null for an index out of range.
    StickerTableCell* rowCell(int section) const;

    void backAction();
    // Opens the grid of the category whose "See All" carries `tag` (section + 100).
    void seeAllBtn(int tag);

    void stickerTableCellDidPick(ImagePtr image) override;
    void stickerPassedFromSeeAll(ImagePtr image) override;

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void layoutViews();

    QLabel* topLbl_ = nullptr;
    QPushButton* backButton_ = nullptr;
    QScrollArea* stickerTableView_ = nullptr;
    QWidget* table_ = nullptr;
    QList<StickerTableCell*> rows_;
};
