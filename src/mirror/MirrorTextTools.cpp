// The caption tools of the mirror editor: new captions and their edits, fonts, colours, alignment,
// opacity and caps, all acting on the label whose tag is `tagValue`.
#include "mirror/MirrorVController.h"

#include "mirror/CaptionLabelView.h"
#include "mirror/MirrorCanvasView.h"
#include "mirror/TextCell.h"
#include "overlay/FontCell.h"
#include "overlay/FontList.h"
#include "platform/Animations.h"
#include "platform/Storyboard.h"

#include <QFontMetricsF>
#include <QScrollArea>
#include <QScrollBar>

namespace {
const QString captionFont = QStringLiteral("Rubik-Bold");
constexpr double captionSize = 35, measuringSize = 40, fontListSize = 30;
constexpr double captionMargin = 60, captionTop = 30;
constexpr int handlerSize = 30;
} // namespace

void MirrorVController::reloadTextTools() {
    for (TextCell* cell : textCells_)
        cell->configure(cell->index() == textbtnSelect);
}

CaptionLabelView* MirrorVController::currentLabel() const {
    for (const QPointer<CaptionLabelView>& label : stickerLblArr)
        if (label && label->tag() == tagValue)
            return label;
    return nullptr;
}

StickerView* MirrorVController::overlayOf(CaptionLabelView* label) const {
    return label ? dynamic_cast<StickerView*>(label->parentItem()) : nullptr;
}

void MirrorVController::bringLabelToFront(CaptionLabelView* label) {
    containerView_->bringToFront(overlayOf(label));
}

void MirrorVController::didSelectTextTool(int index) {
    if (index < 0 || index >= toolCount)
        return;
    textbtnSelect = index;
    reloadTextTools();
    slidePanel(Panel::multiColor, false);
    slidePanel(Panel::opacity, false);
    CaptionLabelView* label = currentLabel();
    switch (index) {
    case 0:
        presentTextEntry(false, QString());
        return;
    case 1:
        slidePanel(Panel::font, true);
        return;
    case 2:
        slidePanel(Panel::multiColor, true);
        return;
    case 3:
        if (label) {
            const Qt::Alignment now = label->textAlignment() & Qt::AlignHorizontal_Mask;
            label->setTextAlignment(now == Qt::AlignHCenter ? Qt::AlignLeft
                                    : now == Qt::AlignLeft  ? Qt::AlignRight
                                                            : Qt::AlignHCenter);
        }
        break;
    case 4:
        slidePanel(Panel::opacity, true);
        return;
    case 5:
        // Text already in upper case goes to lower case, anything else to upper case.
        if (label)
            label->setText(label->text() == label->text().toUpper() ? label->text().toLower()
                                                                    : label->text().toUpper());
        break;
    default:
        break;
    }
    bringLabelToFront(label);
}

void MirrorVController::textBackAction() {
    slidePanel(Panel::textEditing, false);
    slidePanel(Panel::multiColor, false);
    slidePanel(Panel::opacity, false);
}

void MirrorVController::didSelectFont(int index) {
    if (index < 0 || index >= fontCells_.size())
        return;
    for (FontCell* cell : fontCells_)
        cell->setSelected(cell->index() == index);
    // The chosen font glides to the middle of the list.
    QScrollBar* bar = fontCollectionView_->horizontalScrollBar();
    FontCell* cell = fontCells_[index];
    const int target = std::clamp(
        cell->x() + cell->width() / 2 - fontCollectionView_->viewport()->width() / 2, 0, bar->maximum());
    const int from = bar->value();
    QPointer<QScrollBar> guard(bar);
    Animations::animate(this, panelDuration, [guard, from, target](double t) {
        if (guard)
            guard->setValue(int(std::lround(Animations::interpolate(from, target, t))));
    });
    if (CaptionLabelView* label = currentLabel()) {
        label->setFont(FontList::fontNames()[index], fontListSize);
        bringLabelToFront(label);
    }
}

void MirrorVController::fontDoneAction() {
    slidePanel(Panel::font, false, fontPanelDuration);
}

void MirrorVController::fontCancelAction() {
    if (CaptionLabelView* label = currentLabel()) {
        label->setFont(captionFont, fontListSize);
        bringLabelToFront(label);
    }
    slidePanel(Panel::font, false, fontPanelDuration);
}

void MirrorVController::buttonTapped(Color color) {
    if (CaptionLabelView* label = currentLabel()) {
        label->setTextColor(color.toQColor());
        bringLabelToFront(label);
    }
}

void MirrorVController::sliderACtion(double value) {
    if (CaptionLabelView* label = currentLabel()) {
        label->setAlpha(value);
        bringLabelToFront(label);
    }
}

// ---- the text entry ----

void MirrorVController::presentTextEntry(bool isdoubleTap, const QString& text) {
    auto* entry = Storyboard::instantiate<TextEditViewController>(QStringLiteral("Main"),
                                                                  QStringLiteral("TextEditViewController"));
    entry->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
    entry->newtextDelegate = this;
    entry->isdoubleTap = isdoubleTap;
    entry->textedited = text;
    if (isdoubleTap)
        entry->setInitialText(text);
    present(entry, true);
}

void MirrorVController::newTextAdded(const QString& text) {
    if (presentedViewController())
        presentedViewController()->dismiss(true);
    const double side = containerView_->side();
    const double width = side - 2 * captionMargin;
    // The height the text takes at a size larger than it is shown at, so a new caption has room.
    const QRectF measured =
        QFontMetricsF(FontList::font(captionFont, measuringSize))
            .boundingRect(QRectF(0, 0, width, 1e6), Qt::AlignLeft | Qt::TextWordWrap, text);
    auto* label = new CaptionLabelView(count);
    label->setFont(captionFont, captionSize);
    label->setTextAlignment(Qt::AlignHCenter);
    label->setText(text);
    label->resize(width, std::max(1.0, std::ceil(measured.height())));
    StickerView* overlay = makeOverlay(label);
    overlay->setHandlerSize(handlerSize);
    overlay->setData(0, count);
    containerView_->addSticker(overlay);
    allStickerView << overlay;
    stickerLblArr << label;
    setSelectedStickerView(overlay);
    tagValue = count;
    ++count;
}

void MirrorVController::doubleTapped(StickerView* overlay) {
    if (!overlay)
        return;
    const int tag = overlay->data(0).toInt();
    for (const QPointer<CaptionLabelView>& label : stickerLblArr)
        if (label && label->tag() == tag) {
            tagValue = tag;
            presentTextEntry(true, label->text());
            return;
        }
}

void MirrorVController::textEdited(const QString& text) {
    if (presentedViewController())
        presentedViewController()->dismiss(true);
    // The caption keeps its frame and font; a longer text is drawn smaller to fit.
    if (CaptionLabelView* label = currentLabel())
        label->setText(text);
    for (const QPointer<StickerView>& overlay : allStickerView) {
        if (!overlay)
            continue;
        overlay->showEditingHandlers = true;
        overlay->updateHandlers();
        containerView_->bringToFront(overlay);
    }
}
