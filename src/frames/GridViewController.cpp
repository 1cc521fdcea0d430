#include "frames/GridViewController.h"

#include "frames/CollageViewController.h"
#include "frames/FrameGeometry.h"
#include "frames/GridCell.h"
#include "platform/Assets.h"
#include "platform/Storyboard.h"
#include "resources/AssetNames.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <cmath>

namespace {
constexpr int kHeaderHeight = 96;
constexpr int kTitleTop = 52;
} // namespace

GridViewController::GridViewController(QWidget* parent) : ViewController(parent) {
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(QStringLiteral("GridViewController { background: white; }"));
}

const QStringList& GridViewController::ArrayButton() {
    static const QStringList names = AssetNames::classicFrames();
    return names;
}

QStringList GridViewController::previewsForFrame(int item) {
    const std::optional<int> first = FrameGeometry::firstFrameOfRange(item);
    if (!first)
        return {};
    return ArrayButton().mid(*first, FrameGeometry::cellCount(item) == 5 ? 9 : 6);
}

double GridViewController::itemSide(double width) {
    return std::floor((width - (numberOfColumns - 1) * interitemSpacing) / numberOfColumns);
}

void GridViewController::viewDidLoad() {
    titleLabel_ = new QLabel(QStringLiteral("Grid"), this);
    titleLabel_->setAlignment(Qt::AlignCenter);
    titleLabel_->setStyleSheet(QStringLiteral("font-size: 18px; font-weight: 600; color: black;"));
    backButton_ = new QPushButton(this);
    backButton_->setObjectName(QStringLiteral("backButton"));
    backButton_->setIcon(Assets::symbol(QStringLiteral("chevron.left"), 22));
    backButton_->setIconSize(QSize(22, 22));
    backButton_->setFlat(true);
    backButton_->setCursor(Qt::PointingHandCursor);
    backButton_->setStyleSheet(
        QStringLiteral("QPushButton { border: none; background: #222; border-radius: 16px; }"));
    connect(backButton_, &QPushButton::clicked, this, &GridViewController::backAction);

    collectionview_ = new QScrollArea(this);
    collectionview_->setFrameShape(QFrame::NoFrame);
    collectionview_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    collectionview_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    collectionview_->setStyleSheet(QStringLiteral("QScrollArea { background: white; }"));
    content_ = new QWidget;
    content_->setStyleSheet(QStringLiteral("background: #e4e4e8;"));
    for (int i = 0; i < ArrayButton().size(); ++i) {
        auto* cell = new GridCell(ArrayButton()[i], content_);
        cell->setStyleSheet(QStringLiteral("background: white;"));
        cell->setAutoFillBackground(true);
        connect(cell, &GridCell::clicked, this, [this, i] { didSelectItem(i); });
        cells_ << cell;
    }
    collectionview_->setWidget(content_);
    layoutViews();
}

void GridViewController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    if (isViewLoaded())
        layoutViews();
}

void GridViewController::layoutViews() {
    titleLabel_->setGeometry(0, kTitleTop, width(), 32);
    backButton_->setGeometry(16, kTitleTop, 32, 32);
    collectionview_->setGeometry(0, kHeaderHeight, width(), height() - kHeaderHeight);
    const int columns = int(numberOfColumns);
    // The scroll area's own width: its viewport follows only once the area has laid itself out.
    const int side = int(itemSide(width()));
    const int step = side + int(interitemSpacing);
    for (int i = 0; i < cells_.size(); ++i)
        cells_[i]->setGeometry((i % columns) * step, (i / columns) * step, side, side);
    const int rows = int((cells_.size() + columns - 1) / columns);
    content_->resize(width(), rows * step);
}

void GridViewController::didSelectItem(int item) {
    const int count = FrameGeometry::cellCount(item);
    if (count == 0)
        return;
    for (int i = 0; i < cells_.size(); ++i)
        cells_[i]->setSelected(i == item);
    auto* editor = Storyboard::instantiate<CollageViewController>(QStringLiteral("Main"),
                                                                  QStringLiteral("CollageViewController"));
    editor->currentindex = item;
    editor->tagValue = count;
    editor->maingridarray = previewsForFrame(item);
    editor->isFirst = true;
    editor->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    present(editor, true);
}

void GridViewController::backAction() {
    dismiss(true);
}
