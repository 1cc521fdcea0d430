#include "filters/FilterStripView.h"

#include "filters/LookCubeCache.h"
#include "platform/Assets.h"
#include "platform/Dispatch.h"

#include <QPointer>
#include <QScrollBar>

const QColor FilterStripView::selectionColor = QColor(0xfa, 0xca, 0x16);

namespace {

QStringList tableThumbnails() {
    QStringList names;
    for (const FilterTableEntry& entry : filterTable())
        names << entry.thumbnail;
    return names;
}

} // namespace

FilterStripView::FilterStripView(QWidget* parent) : FilterStripView(tableThumbnails(), 0, parent) {}

FilterStripView::FilterStripView(const QStringList& thumbnailNames, int extraCells, QWidget* parent)
    : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(false);
    setStyleSheet(QStringLiteral("background: transparent;"));
    auto* content = new QWidget;
    content->setAttribute(Qt::WA_TranslucentBackground);
    for (int k = 0; k < thumbnailNames.size(); ++k) {
        const ImagePtr thumbnail = Assets::image(thumbnailNames[k]);
        auto* button =
            new FilterThumbnailButton(k, thumbnail ? thumbnail->uprightBitmap() : QImage(), content);
        button->setGeometry(firstButtonX + buttonStep * k, buttonY, buttonWidth, buttonHeight);
        button->setAccessibleName(thumbnailNames[k]);
        connect(button, &QAbstractButton::clicked, this, [this, button] { FilterButtonTapped(button); });
        buttons_.push_back(button);
    }
    const int cells = int(thumbnailNames.size()) + std::max(0, extraCells);
    content->resize(cells * buttonStep, buttonY * 2 + buttonHeight);
    setWidget(content);
    setFixedHeight(content->height());
}

void FilterStripView::FilterButtonTapped(FilterThumbnailButton* sender) {
    const int tag = sender ? sender->tag() : 0;
    for (FilterThumbnailButton* button : buttons_)
        button->setBorder(0, Qt::transparent);
    if (sender)
        sender->setBorder(1.0, selectionColor);
    selected_ = tag;
    QPointer<FilterStripView> self(this);
    Dispatch::main().async([self, tag] {
        if (self && self->onFilterSelected)
            self->onFilterSelected(tag);
    });
}
