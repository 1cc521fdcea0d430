#include "overlay/StickerCells.h"

#include "overlay/FontList.h"
#include "overlay/OverlayStyle.h"
#include "overlay/StickerData.h"
#include "platform/Assets.h"
#include "platform/ImageView.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

namespace {

const QColor tileBackground(32, 32, 32);
const QColor tileBorder(67, 67, 67);
constexpr double tileRadius = 8;
constexpr int spacing = 10;
constexpr int headerHeight = 40;

} // namespace

StickerTileCell::StickerTileCell(QWidget* parent) : QAbstractButton(parent) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus);
}

void StickerTileCell::setStickerName(const QString& name) {
    if (name == name_)
        return;
    name_ = name;
    image_.reset();
    loaded_ = false;
    setAccessibleName(name);
    update();
}

ImagePtr StickerTileCell::stickerImage() {
    if (!loaded_) {
        image_ = Assets::image(name_);
        loaded_ = true;
    }
    return image_;
}

void StickerTileCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath clip;
    clip.addRoundedRect(frame, tileRadius, tileRadius);
    painter.fillPath(clip, tileBackground);
    if (const ImagePtr image = stickerImage()) {
        painter.save();
        painter.setClipPath(clip);
        const QRectF inner = frame.adjusted(6, 6, -6, -6);
        painter.drawImage(ImageView::targetRect(image->size(), inner, ContentMode::scaleAspectFit),
                          image->uprightBitmap());
        painter.restore();
    }
    painter.setPen(QPen(tileBorder, 1.0));
    painter.drawPath(clip);
}

StickerTableCell::StickerTableCell(QWidget* parent) : QWidget(parent) {
    categoryNameLbl_ = new QLabel(this);
    categoryNameLbl_->setFont(FontList::font(QStringLiteral("AsimovWid"), 17));
    categoryNameLbl_->setStyleSheet(QStringLiteral("color: white;"));
    seeAllBtn_ = new QPushButton(tr("See All"), this);
    seeAllBtn_->setCursor(Qt::PointingHandCursor);
    seeAllBtn_->setFlat(true);
    seeAllBtn_->setStyleSheet(
        QStringLiteral("QPushButton { color: #faca16; border: none; font-size: 15px; }"));
    connect(seeAllBtn_, &QPushButton::clicked, this,
            [this] { emit seeAllRequested(seeAllBtn_->property("tag").toInt()); });

    stickerCollectionVIew_ = new QScrollArea(this);
    stickerCollectionVIew_->setFrameShape(QFrame::NoFrame);
    stickerCollectionVIew_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    stickerCollectionVIew_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    OverlayStyle::styleDarkPage(stickerCollectionVIew_->viewport());
    strip_ = new QWidget;
    OverlayStyle::styleDarkPage(strip_);
    stickerCollectionVIew_->setWidget(strip_);
    stickerCollectionVIew_->setWidgetResizable(false);
    setFixedHeight(rowHeight);
}

int StickerTableCell::collectionTag() const {
    return stickerCollectionVIew_->property("tag").toInt();
}

void StickerTableCell::configure(int section) {
    const QList<StickerData>& catalogue = StickerData::catalogue();
    if (section < 0 || section >= catalogue.size())
        return;
    stickerCollectionVIew_->setProperty("tag", section);
    seeAllBtn_->setProperty("tag", section + 100);
    const StickerData& data = catalogue[section];
    categoryNameLbl_->setText(data.categoryName.left(1).toUpper() + data.categoryName.mid(1).toLower());
    // Reload: tiles are reused, the names come from the strip's tag.
    const QStringList& names = catalogue[collectionTag()].stickerImgName;
    while (cells_.size() < names.size()) {
        auto* cell = new StickerCollectionCell(strip_);
        connect(cell, &QAbstractButton::clicked, this, [this, cell] { pick(cell); });
        cells_.append(cell);
    }
    shown_ = static_cast<int>(names.size());
    for (int i = 0; i < cells_.size(); ++i) {
        cells_[i]->setVisible(i < shown_);
        if (i < shown_)
            cells_[i]->setStickerName(names[i]);
    }
    layoutTiles();
}

QList<StickerCollectionCell*> StickerTableCell::visibleCells() const {
    return cells_.mid(0, shown_);
}

int StickerTableCell::itemSide() const {
    return std::max(1, static_cast<int>(stickerCollectionVIew_->height() * 0.5 - 10));
}

void StickerTableCell::resizeEvent(QResizeEvent*) {
    categoryNameLbl_->setGeometry(16, 0, width() / 2, headerHeight);
    seeAllBtn_->setGeometry(width() - 96, 0, 80, headerHeight);
    stickerCollectionVIew_->setGeometry(0, headerHeight, width(), height() - headerHeight);
    layoutTiles();
}

void StickerTableCell::layoutTiles() {
    // Two rows, filled a column at a time, as a sideways flow does.
    const int side = itemSide();
    const int gapY = std::max(0, (stickerCollectionVIew_->height() - 2 * side) / 3);
    for (int i = 0; i < shown_; ++i)
        cells_[i]->setGeometry(spacing + (i / 2) * (side + spacing), gapY + (i % 2) * (side + gapY), side,
                               side);
    const int columns = (shown_ + 1) / 2;
    strip_->resize(spacing + columns * (side + spacing), stickerCollectionVIew_->height());
}

void StickerTableCell::pick(StickerCollectionCell* cell) {
    // A missing picture gives the editor nothing.
    const ImagePtr image = cell->stickerImage();
    if (!image)
        return;
    if (StickerTablehandler* handler = delegate.get())
        handler->stickerTableCellDidPick(image);
}
