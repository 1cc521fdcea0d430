#include "overlay/StickerCategoryController.h"

#include "overlay/OverlayStyle.h"
#include "overlay/StickerData.h"
#include "overlay/StickerViewController.h"
#include "platform/Storyboard.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>

StickerCategoryController::StickerCategoryController(QWidget* parent) : ViewController(parent) {}

void StickerCategoryController::viewDidLoad() {
    OverlayStyle::styleDarkPage(this);
    topLbl_ = OverlayStyle::makeTitleLabel(this);
    topLbl_->setText(tr("Stickers"));
    backButton_ = OverlayStyle::makeBackButton(this);
    connect(backButton_, &QPushButton::clicked, this, [this] { backAction(); });

    stickerTableView_ = new QScrollArea(this);
    stickerTableView_->setFrameShape(QFrame::NoFrame);
    stickerTableView_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    stickerTableView_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    OverlayStyle::styleDarkPage(stickerTableView_->viewport());
    QScroller::grabGesture(stickerTableView_->viewport(), QScroller::TouchGesture);
    table_ = new QWidget;
    OverlayStyle::styleDarkPage(table_);
    stickerTableView_->setWidget(table_);
    for (int section = 0; section < StickerData::catalogue().size(); ++section) {
        auto* row = new StickerTableCell(table_);
        row->configure(section);
        row->delegate = this;
        connect(row, &StickerTableCell::seeAllRequested, this, [this](int tag) { seeAllBtn(tag); });
        rows_.append(row);
    }
    layoutViews();
}

StickerTableCell* StickerCategoryController::rowCell(int section) const {
    return section >= 0 && section < rows_.size() ? rows_[section] : nullptr;
}

void StickerCategoryController::resizeEvent(QResizeEvent*) {
    layoutViews();
}

void StickerCategoryController::layoutViews() {
    if (!isViewLoaded())
        return;
    const int bar = OverlayStyle::topBarHeight;
    backButton_->setGeometry(8, (bar - 44) / 2, 44, 44);
    topLbl_->setGeometry(60, 0, width() - 120, bar);
    stickerTableView_->setGeometry(0, bar, width(), height() - bar);
    const int rowWidth = stickerTableView_->width();
    int y = topContentInset;
    for (StickerTableCell* row : rows_) {
        row->setGeometry(0, y, rowWidth, StickerTableCell::rowHeight);
        y += StickerTableCell::rowHeight + sectionFooterHeight;
    }
    table_->resize(rowWidth, y);
}

void StickerCategoryController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        backAction();
    else
        ViewController::keyPressEvent(event);
}

void StickerCategoryController::backAction() {
    dismiss(true);
}

void StickerCategoryController::seeAllBtn(int tag) {
    auto* grid = Storyboard::instantiate<StickerViewController>(QStringLiteral("Main"),
                                                                QStringLiteral("StickerViewController"));
    grid->selectedIndex = tag - 100;
    grid->delegate = this;
    grid->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    present(grid, true);
}

void StickerCategoryController::stickerTableCellDidPick(ImagePtr image) {
    // The editor dismisses the catalogue once it has the picture.
    if (StickerHandler* handler = delegate.get())
        handler->stickerPicked(std::move(image));
}

void StickerCategoryController::stickerPassedFromSeeAll(ImagePtr image) {
    QPointer<StickerCategoryController> self(this);
    dismiss(true, [self, image] {
        if (!self)
            return;
        if (StickerHandler* handler = self->delegate.get())
            handler->stickerPicked(image);
    });
}
