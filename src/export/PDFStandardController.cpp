#include "export/PDFStandardController.h"

#include "export/PDFStandardFunction.h"
#include "export/SheetControls.h"
#include "platform/Dispatch.h"

#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

PDFStandardController::PDFStandardController(QWidget* parent) : FormatSheetController(parent) {
    setObjectName(QStringLiteral("PDFStandardController"));
}

ImageView* PDFStandardController::flattenCheckView() const {
    return flattenView_->check();
}

ImageView* PDFStandardController::noteCheckView() const {
    return noteView_->check();
}

void PDFStandardController::viewDidLoad() {
    FormatSheetController::viewDidLoad();
    containerLayout()->insertWidget(
        0, SheetControls::makeHeader(QStringLiteral("Save as PDF"), &backButton_, containerView()));
    connect(backButton_, &QPushButton::clicked, this, &PDFStandardController::backAction);
    QWidget* parent = containerView();
    flattenView_ = new CheckRowView(QStringLiteral("Flatten image"), QStringLiteral("flattenView"), parent);
    noteView_ = new CheckRowView(QStringLiteral("Add notes"), QStringLiteral("noteView"), parent);
    contentLayout()->addWidget(flattenView_);
    contentLayout()->addWidget(noteView_);
    contentLayout()->addStretch(1);
    downloadBtn_ = SheetControls::makeDownloadButton(parent);
    contentLayout()->addWidget(downloadBtn_);
    connect(flattenView_, &QAbstractButton::clicked, this, &PDFStandardController::handleFlattenTap);
    connect(noteView_, &QAbstractButton::clicked, this, &PDFStandardController::handlenotTap);
    connect(downloadBtn_, &QPushButton::clicked, this, &PDFStandardController::downloadbtnAction);
}

void PDFStandardController::handleFlattenTap() {
    // Stored and never read: the page is the same either way.
    flattenChoose = SheetControls::toggleCheck(flattenCheckView());
}

void PDFStandardController::handlenotTap() {
    notesChoose = SheetControls::toggleCheck(noteCheckView());
}

void PDFStandardController::downloadbtnAction() {
    if (isBusy())
        return;
    showBusy();
    QPointer<PDFStandardController> self(this);
    const ImagePtr image = tobeSavedimage;
    const bool notes = notesChoose;
    Dispatch::global(QualityOfService::userInitiated).async([self, image, notes] {
        const std::optional<QString> url =
            notes ? PDFStandardFunction::notesPage(image) : PDFStandardFunction::plainPage(image);
        if (!url)
            return; // printed; the busy indicator stays up
        Dispatch::main().async([self, image, path = *url] {
            if (!self)
                return;
            self->hideBusy();
            if (self->savingDelegate)
                self->savingDelegate->saveDetailsPassed(
                    SaveModelDetails{image, path, SavingtypeMethod::PDFStandard});
        });
    });
}
