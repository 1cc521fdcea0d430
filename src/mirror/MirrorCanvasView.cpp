#include "mirror/MirrorCanvasView.h"

#include "mirror/MirrorImageView.h"
#include "overlay/StickerView.h"
#include "platform/Assets.h"
#include "platform/Screen.h"
#include "resources/AssetNames.h"

#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {
const std::vector<MirrorPaneView*> noPanes;
constexpr double overlayZ = 1;
} // namespace

MirrorCanvasView::MirrorCanvasView(double side, QWidget* parent) : QGraphicsView(parent), side_(side) {
    scene_ = new QGraphicsScene(QRectF(0, 0, side, side), this);
    setScene(scene_);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setBackgroundBrush(Qt::black);
    setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setFixedSize(int(std::ceil(side)), int(std::ceil(side)));
    for (int index = 0; index < MirrorPatterns::lowCount; ++index) {
        const MirrorPatternLayout& layout = MirrorPatterns::table()[size_t(index)];
        for (int pane = 0; pane < layout.paneCount(); ++pane) {
            auto* view = new MirrorPaneView(side, layout.tags[size_t(pane)]);
            view->delegate = this;
            paneSets_[size_t(index)].push_back(view);
        }
    }
}

MirrorCanvasView::~MirrorCanvasView() {
    // Panes and stickers off the canvas have no owner but this view.
    for (auto& set : paneSets_)
        for (MirrorPaneView* pane : set)
            if (!pane->scene())
                delete pane;
    for (QGraphicsItem* item : detached_)
        if (!item->scene())
            delete item;
}

const std::vector<MirrorPaneView*>& MirrorCanvasView::panes(int pattern) const {
    return pattern >= 0 && pattern < MirrorPatterns::lowCount ? paneSets_[size_t(pattern)] : noPanes;
}

std::vector<MirrorPaneView*> MirrorCanvasView::showingPanes() const {
    return panes(showing_);
}

void MirrorCanvasView::setCurrentImageView(MirrorImageView* view) {
    currentImageView_ = view;
}

void MirrorCanvasView::addToCanvas(QGraphicsItem* item) {
    if (item->scene() != scene_)
        scene_->addItem(item);
}

void MirrorCanvasView::removeNonStickers() {
    for (QGraphicsItem* item : scene_->items()) {
        if (item->parentItem() || dynamic_cast<StickerView*>(item->toGraphicsObject()))
            continue;
        scene_->removeItem(item);
        if (item == overlayView_) {
            delete overlayView_;
            overlayView_ = nullptr;
        }
    }
    showing_ = -1;
}

void MirrorCanvasView::detachStickers() {
    for (StickerView* sticker : stickersOnCanvas()) {
        scene_->removeItem(sticker);
        if (std::find(detached_.begin(), detached_.end(), sticker) == detached_.end())
            detached_.push_back(sticker);
    }
}

void MirrorCanvasView::applyLowMirrorPattern(int index) {
    removeNonStickers();
    if (index == MirrorPatterns::lowCount - 1)
        detachStickers(); // the last pattern clears the canvas of overlays too
    buildPanes(index);
    bringStickersToFront();
}

void MirrorCanvasView::applyHighMirrorPattern(int index, bool mirrorFirst) {
    removeNonStickers();
    if (index >= 0 && index < MirrorPatterns::highCount) {
        buildPanes(mirrorFirst ? 0 : 1);
        const ImagePtr overlay = Assets::image(AssetNames::overlayName(index));
        QPixmap pixmap = overlay ? QPixmap::fromImage(overlay->uprightBitmap()) : QPixmap();
        overlayView_ = new QGraphicsPixmapItem(pixmap);
        overlayView_->setTransformationMode(Qt::SmoothTransformation);
        overlayView_->setAcceptedMouseButtons(Qt::NoButton);
        overlayView_->setAcceptHoverEvents(false);
        if (!pixmap.isNull())
            overlayView_->setTransform(
                QTransform::fromScale(side_ / pixmap.width(), side_ / pixmap.height()));
        overlayView_->setZValue(overlayZ);
        scene_->addItem(overlayView_);
    }
    bringStickersToFront();
}

void MirrorCanvasView::buildPanes(int index) {
    const MirrorPatternLayout* layout = MirrorPatterns::pattern(index);
    if (!layout)
        return;
    const std::vector<MirrorPaneView*>& set = paneSets_[size_t(index)];
    for (int k = 0; k < layout->paneCount(); ++k) {
        MirrorPaneView* pane = set[size_t(k)];
        pane->setFrame(MirrorPatterns::paneRect(index, k, side_));
        pane->minimumZoomScale = MirrorPatterns::minimumZoomScale;
        pane->maximumZoomScale = MirrorPatterns::maximumZoomScale;
        // The picture's frame is set anew, W × W, so the pane starts unzoomed over it.
        pane->setZoomScale(1.0);
        pane->imageView()->setZoomScale(1.0);
        pane->imageView()->setImage(MirrorPatterns::imageFor(layout->forms[size_t(k)], selectedImage_));
        pane->setContentSize(QSizeF(side_, side_));
        pane->setContentInset(QMarginsF());
        pane->autoresizingMask = index == 0 ? 0 : MirrorPatterns::autoresizingMask;
    }
    currentImageView_ = set.front()->imageView();
    currentImage_ = currentImageView_->image();
    for (MirrorPaneView* pane : set) {
        addToCanvas(pane);
        pane->setZValue(0);
    }
    showing_ = index;
    placeAtRest(index);
}

// The panes reach their resting offsets in this order; each change of offset moves the others by the
// link rule on the way, and the last moves glide.
void MirrorCanvasView::placeAtRest(int index) {
    const std::vector<MirrorPaneView*>& p = paneSets_[size_t(index)];
    const QSizeF content(side_, side_);
    switch (index) {
    case 0:
        p[0]->setContentOffset({content.width() - p[0]->state().bounds.width(), 0});
        p[1]->setContentOffset({content.width() - 2 * p[1]->state().bounds.width(), 0});
        break;
    case 1:
    case 4:
        p[0]->setContentOffset({0, 0});
        p[1]->setContentOffset({content.width() - p[1]->state().bounds.width(), 0});
        scrollView1ContentOffset = p[1]->contentOffset().x();
        p[0]->setContentOffset(p[1]->contentOffset(), true);
        break;
    case 2:
    case 3:
        p[0]->setContentOffset(p[1]->contentOffset(), true);
        break;
    case 5:
    case 6:
    case 7:
    case 8:
        p[0]->setContentOffset({0, 0});
        p[1]->setContentOffset({0, p[1]->state().bounds.height()});
        p[0]->setContentOffset(p[1]->contentOffset(), true);
        break;
    case 14:
    case 15:
    case 17:
        for (size_t k = 0; k < p.size(); ++k) {
            const bool far = MirrorPatterns::restOffset(index, int(k), side_).x() > 0;
            const double w = p[k]->state().bounds.width();
            p[k]->setContentOffset({far ? content.width() - w : content.width() - 4 * w, 0});
        }
        break;
    case 16:
        for (MirrorPaneView* pane : p)
            pane->setContentOffset({content.width() - pane->state().bounds.width(), 0});
        break;
    default: // 9 to 13
        for (MirrorPaneView* pane : p)
            pane->setContentOffset({pane->state().bounds.width() - pane->state().bounds.width(), 0});
        break;
    }
}

MirrorImageView* MirrorCanvasView::viewForZooming(MirrorPaneView* pane) const {
    for (int index = 0; index < MirrorPatterns::lowCount; ++index) {
        const auto& set = paneSets_[size_t(index)];
        if (MirrorPatterns::zoomsOwnPicture(index) && std::find(set.begin(), set.end(), pane) != set.end())
            return pane->imageView();
    }
    return paneSets_[0][1]->imageView();
}

namespace {
// The zoom of `pane` and of the picture it zooms, as a pinch leaves them; silent.
void applyZoom(MirrorCanvasView& canvas, MirrorPaneView* pane, double zoom) {
    pane->setZoomScale(zoom);
    MirrorImageView* view = canvas.viewForZooming(pane);
    view->setZoomScale(pane->state().zoomScale);
    if (auto* holder = dynamic_cast<MirrorPaneView*>(view->parentItem()))
        holder->setContentSize(QSizeF(canvas.side(), canvas.side()) * pane->state().zoomScale);
}
} // namespace

void MirrorCanvasView::zoom(MirrorPaneView* pane, double zoomScale, const QPointF& anchor) {
    const double before = pane->state().zoomScale;
    applyZoom(*this, pane, zoomScale);
    const double ratio = pane->state().zoomScale / before;
    // The point under the pointer stays where it is when the pane zooms its own picture.
    QPointF offset = pane->contentOffset();
    if (viewForZooming(pane) == pane->imageView())
        offset = pane->clampedOffset((offset + anchor) * ratio - anchor);
    pane->setContentOffset(offset);
}

void MirrorCanvasView::scrollViewDidScroll(MirrorPaneView* pane) {
    const std::vector<MirrorPaneView*>& set = panes(showing_);
    const auto it = std::find(set.begin(), set.end(), pane);
    if (it == set.end())
        return;
    for (const MirrorLinkUpdate& update :
         MirrorPatterns::linkPane(showing_, int(it - set.begin()), pane->state())) {
        MirrorPaneView* target = set[size_t(update.pane)];
        target->setBoundsOrigin(update.origin);
        if (update.zoomScale)
            applyZoom(*this, target, *update.zoomScale);
        if (update.contentInset)
            target->setContentInset(*update.contentInset);
    }
}

void MirrorCanvasView::scrollViewDidZoom(MirrorPaneView* pane, double zoomScale, const QPointF& anchor) {
    zoom(pane, zoomScale, anchor);
}

void MirrorCanvasView::imageTapped(MirrorImageView* imageView) {
    if (onImageTapped)
        onImageTapped(imageView);
}

void MirrorCanvasView::addSticker(StickerView* sticker) {
    scene_->addItem(sticker);
    bringToFront(sticker);
}

QList<StickerView*> MirrorCanvasView::stickersOnCanvas() const {
    QList<StickerView*> stickers;
    // In the order they were stacked, lowest first.
    const QList<QGraphicsItem*> items = scene_->items(Qt::AscendingOrder);
    for (QGraphicsItem* item : items)
        if (auto* sticker = dynamic_cast<StickerView*>(item->toGraphicsObject());
            sticker && !item->parentItem())
            stickers << sticker;
    return stickers;
}

void MirrorCanvasView::bringToFront(QGraphicsItem* item) {
    while (item && item->parentItem())
        item = item->parentItem();
    if (item && item->scene() == scene_)
        item->setZValue(++topZ_);
}

void MirrorCanvasView::bringStickersToFront() {
    for (StickerView* sticker : stickersOnCanvas())
        bringToFront(sticker);
}

ImagePtr MirrorCanvasView::snapshot() {
    const double scale = Screen::main().scale();
    const int pixels = std::max(1, int(std::lround(side_ * scale)));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    {
        QPainter painter(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        scene_->render(&painter, QRectF(0, 0, pixels, pixels), scene_->sceneRect(), Qt::IgnoreAspectRatio);
    }
    return Image::make(image.convertToFormat(QImage::Format_RGB32), scale);
}

void MirrorCanvasView::resizeEvent(QResizeEvent* event) {
    QGraphicsView::resizeEvent(event);
    // fitInView would keep a margin; the canvas fills its view exactly.
    setTransform(QTransform::fromScale(viewport()->width() / side_, viewport()->height() / side_));
}

void MirrorCanvasView::mouseDoubleClickEvent(QMouseEvent* event) {
    QGraphicsItem* item = itemAt(event->position().toPoint());
    while (item && item->parentItem())
        item = item->parentItem();
    if (auto* sticker = item ? dynamic_cast<StickerView*>(item->toGraphicsObject()) : nullptr) {
        if (onStickerDoubleTapped)
            onStickerDoubleTapped(sticker);
        event->accept();
        return;
    }
    QGraphicsView::mouseDoubleClickEvent(event);
}
