#include "mixer/CustomBackgroundCategoryRowCell.h"

#include "mixer/CustomBackgroundThumbnailCell.h"
#include "platform/Assets.h"

#include <QHBoxLayout>
#include <QScrollBar>
#include <QWheelEvent>

CustomBackgroundCategoryRowCell::CustomBackgroundCategoryRowCell(QWidget* parent) : QScrollArea(parent) {
    setFixedHeight(rowHeight);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setStyleSheet(
        QStringLiteral("QScrollArea, QScrollArea > QWidget > QWidget { background: transparent; }"));
    viewport()->setAutoFillBackground(false);
}

void CustomBackgroundCategoryRowCell::configure(const QString& assetPrefix, int itemCount,
                                                std::optional<int> selectedItem) {
    if (assetPrefix != assetPrefix_ || itemCount != itemCount_) {
        assetPrefix_ = assetPrefix;
        itemCount_ = itemCount;
        cells_.clear();
        auto* row = new QWidget;
        row->setAttribute(Qt::WA_TranslucentBackground);
        auto* layout = new QHBoxLayout(row);
        layout->setContentsMargins(16, (rowHeight - CustomBackgroundThumbnailCell::side) / 2, 16,
                                   (rowHeight - CustomBackgroundThumbnailCell::side) / 2);
        layout->setSpacing(10);
        for (int item = 0; item < itemCount; ++item) {
            auto* cell = new CustomBackgroundThumbnailCell(row);
            connect(cell, &QAbstractButton::clicked, this, [this, item]() {
                if (onSelectItem)
                    onSelectItem(item);
            });
            layout->addWidget(cell);
            cells_ << cell;
        }
        row->adjustSize();
        setWidget(row);
    }
    selectedItem_ = selectedItem;
    for (int item = 0; item < cells_.size(); ++item)
        cells_[item]->configure(Assets::image(assetPrefix_ + QString::number(item + 1)),
                                selectedItem_ == item);
}

void CustomBackgroundCategoryRowCell::wheelEvent(QWheelEvent* event) {
    // A vertical wheel scrolls the page, a sideways one (or Shift + wheel) the row.
    const QPoint delta = event->angleDelta();
    if (std::abs(delta.x()) > std::abs(delta.y())) {
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - delta.x() / 2);
        event->accept();
        return;
    }
    event->ignore();
}
