#include "export/EditorSavingChain.h"

#include "export/FormatSheetController.h"
#include "export/RateShareController.h"
#include "export/SavingTypeController.h"
#include "export/TiffController.h"
#include "platform/Dispatch.h"
#include "platform/PhotoLibrary.h"
#include "platform/Storyboard.h"
#include "platform/ViewController.h"

namespace {
const QString kBoard = QStringLiteral("Main");
}

EditorSavingChain::EditorSavingChain(ViewController* editor, Snapshot snapshot)
    : QObject(editor), photoLibrary(&PhotoLibrary::shared()), editor_(editor),
      snapshot_(std::move(snapshot)) {}

QString EditorSavingChain::sheetIdentifier(SavingtypeMethod type) {
    switch (type) {
    case SavingtypeMethod::JPG:
        return QStringLiteral("JPGController");
    case SavingtypeMethod::PNG:
        return QStringLiteral("PNGController");
    case SavingtypeMethod::PDFStandard:
        return QStringLiteral("PDFStandardController");
    case SavingtypeMethod::PDFPrint:
        return QStringLiteral("PDFPrintController");
    case SavingtypeMethod::SVG:
        return QStringLiteral("SVGController");
    case SavingtypeMethod::MP4Video:
        return QStringLiteral("MP4VideoController");
    case SavingtypeMethod::TIFF:
        return QStringLiteral("TiffController");
    }
    return {};
}

SavingTypeController* EditorSavingChain::openChooser() {
    if (!editor_)
        return nullptr;
    auto* chooser =
        Storyboard::instantiate<SavingTypeController>(kBoard, QStringLiteral("SavingTypeController"));
    chooser->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
    chooser->isimage = true;
    chooser->selectedIndex = SavingTypeController::kNoRow;
    chooser->delegate = this;
    editor_->present(chooser, true);
    return chooser;
}

FormatSheetController* EditorSavingChain::openFormatSheet(SavingtypeMethod type) {
    if (!editor_ || !snapshot_)
        return nullptr;
    const ImagePtr snapshot = snapshot_();
    if (!snapshot)
        return nullptr;
    auto* sheet = Storyboard::instantiate<FormatSheetController>(kBoard, sheetIdentifier(type));
    sheet->shareImage = snapshot;
    sheet->delegate = this;
    sheet->savingDelegate = this;
    if (auto* tiff = qobject_cast<TiffController*>(sheet))
        tiff->photoLibrary = photoLibrary;
    sheet->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
    editor_->present(sheet, true);
    return sheet;
}

void EditorSavingChain::savingMethodChosen(SavingtypeMethod type) {
    openFormatSheet(type);
}

void EditorSavingChain::newSavingMethodChosen(SavingtypeMethod type) {
    // A change of format starts over: a new snapshot, a new sheet, none of the old options.
    openFormatSheet(type);
}

void EditorSavingChain::saveDetailsPassed(const SaveModelDetails& details) {
    QPointer<EditorSavingChain> self(this);
    Dispatch::main().async([self, details] {
        if (!self || !self->editor_)
            return;
        auto open = [self, details] {
            if (!self)
                return;
            self->finalsaveImage = details.shareimage;
            self->finalURL = details.sharedURL;
            self->enumType = details.saveType;
            self->presentShareScreen();
        };
        // The sheet may already have gone (Escape); the editor itself must not be dismissed then.
        if (self->editor_->presentedViewController())
            self->editor_->dismiss(true, std::move(open));
        else
            open();
    });
}

void EditorSavingChain::presentShareScreen() {
    if (!editor_)
        return;
    auto* share = Storyboard::instantiate<RateShareController>(kBoard, QStringLiteral("RateShareController"));
    share->shareImage = finalsaveImage;
    share->fetchData = enumType;
    // Only a made file travels; a JPG is shared as the picture itself.
    if (enumType != SavingtypeMethod::JPG)
        share->sharevideoURL = finalURL;
    share->photoLibrary = photoLibrary;
    share->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
    editor_->present(share, true);
}
