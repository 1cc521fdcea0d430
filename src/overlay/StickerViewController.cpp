#include "overlay/StickerViewController.h"

#include "overlay/OverlayStyle.h"
#include "overlay/StickerCells.h"
#include "overlay/StickerData.h"
#include "platform/Log.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScroller>

namespace {
constexpr int gap = 5;
}

StickerViewController::StickerViewController(QWidget* parent) : ViewController(parent) {}

void StickerViewController::viewDidLoad() {
    OverlayStyle::styleDarkPage(this);
    const QList<StickerData>& catalogue = StickerData::catalogue();
    const bool known = selectedIndex >= 0 && selectedIndex < catalogue.size();
    topLbl_ = OverlayStyle::makeTitleLabel(this);
    topLbl_->setText(known ? catalogue[selectedIndex].categoryName.toUpper() : QString());
    backButton_ = OverlayStyle::makeBackButton(this);
    connect(backButton_, &QPushButton::clicked, this, [this] { backAction(); });

    seeAllCollectionVIew_ = new QScrollArea(this);
    seeAllCollectionVIew_->setFrameShape(QFrame::NoFrame);
    seeAllCollectionVIew_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    seeAllCollectionVIew_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    OverlayStyle::styleDarkPage(seeAllCollectionVIew_->viewport());
    QScroller::grabGesture(seeAllCollectionVIew_->viewport(), QScroller::TouchGesture);
    grid_ = new QWidget;
    OverlayStyle::styleDarkPage(grid_);
    seeAllCollectionVIew_->setWidget(grid_);
    if (known) {
        const QStringList& names = catalogue[selectedIndex].stickerImgName;
        for (int i = 0; i < names.size(); ++i) {
            auto* cell = new SeeAllCollectionVIew(grid_);
            cell->setStickerName(names[i]);
            connect(cell, &QAbstractButton::clicked, this, [this, i] { didSelectItem(i); });
            cells_.append(cell);
        }
    }
    layoutViews();
}

int StickerViewController::itemSide() const {
    const int width = seeAllCollectionVIew_ ? seeAllCollectionVIew_->width() : this->width();
    return std::max(1, static_cast<int>(width / 3.0 - gap));
}

void StickerViewController::resizeEvent(QResizeEvent*) {
    layoutViews();
}

void StickerViewController::layoutViews() {
    if (!isViewLoaded())
        return;
    const int bar = OverlayStyle::topBarHeight;
    backButton_->setGeometry(8, (bar - 44) / 2, 44, 44);
    topLbl_->setGeometry(60, 0, width() - 120, bar);
    seeAllCollectionVIew_->setGeometry(0, bar, width(), height() - bar);
    const int side = itemSide();
    const int columnWidth = seeAllCollectionVIew_->width() / 3;
    for (int i = 0; i < cells_.size(); ++i)
        cells_[i]->setGeometry((i % 3) * columnWidth + (columnWidth - side) / 2, gap + (i / 3) * (side + gap),
                               side, side);
    grid_->resize(seeAllCollectionVIew_->width(),
                  gap + static_cast<int>((cells_.size() + 2) / 3) * (side + gap));
}

void StickerViewController::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        backAction();
    else
        ViewController::keyPressEvent(event);
}

void StickerViewController::backAction() {
    dismiss(true);
}

void StickerViewController::didSelectItem(int item) {
    if (item < 0 || item >= cells_.size())
        return;
    SeeAllCollectionVIew* cell = cells_[item];
    const ImagePtr image = cell->stickerImage();
    // The grid's pictures are part of the product: one that is missing is a broken build.
    if (!image)
        fatalError(("Sticker picture \"" + cell->stickerName() + "\" is missing").toStdString());
    if (StickerPasssedFromSeeAll* passed = delegate.get())
        passed->stickerPassedFromSeeAll(image);
}
