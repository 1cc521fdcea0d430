#include "export/PDFPrintController.h"

#include "export/PDFPrintFunction.h"
#include "export/SheetControls.h"
#include "platform/Dispatch.h"
#include "platform/Storyboard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

PDFPrintController::PDFPrintController(QWidget* parent) : FormatSheetController(parent) {
    setObjectName(QStringLiteral("PDFPrintController"));
}

ImageView* PDFPrintController::flattenCheck() const {
    return flattenView_->check();
}
ImageView* PDFPrintController::notesCheck() const {
    return notesView_->check();
}
ImageView* PDFPrintController::cropMarksCheck() const {
    return cropMarksView_->check();
}

void PDFPrintController::viewDidLoad() {
    FormatSheetController::viewDidLoad();
    containerLayout()->insertWidget(
        0, SheetControls::makeHeader(QStringLiteral("Save as PDF Print"), &backButton_, containerView()));
    connect(backButton_, &QPushButton::clicked, this, &PDFPrintController::backAction);
    QWidget* parent = containerView();
    QVBoxLayout* content = contentLayout();
    flattenView_ = new CheckRowView(QStringLiteral("Flatten image"), QStringLiteral("flattenView"), parent);
    notesView_ = new CheckRowView(QStringLiteral("Add notes"), QStringLiteral("notesView"), parent);
    cropMarksView_ = new CheckRowView(QStringLiteral("Crop marks"), QStringLiteral("cropMarksView"), parent);
    content->addWidget(flattenView_);
    content->addWidget(notesView_);
    content->addWidget(cropMarksView_);

    auto* profileRow = new QPushButton(parent);
    profileRow->setObjectName(QStringLiteral("colorprofileView"));
    profileRow->setCursor(Qt::PointingHandCursor);
    profileRow->setFixedHeight(52);
    profileRow->setStyleSheet(QStringLiteral("QPushButton { background: white; border: 0.5px solid #949494;"
                                             " border-radius: 8px; }"));
    // The caption above the chosen profile's words, which are long, and a chevron that says it opens.
    auto* row = new QHBoxLayout(profileRow);
    row->setContentsMargins(12, 4, 12, 4);
    auto* words = new QVBoxLayout;
    words->setSpacing(0);
    auto* caption = new QLabel(QStringLiteral("Color profile"), profileRow);
    caption->setStyleSheet(QStringLiteral("color: black; font-size: 15px; font-weight: 600; border: none;"));
    colorProfileLbl_ = new QLabel(colorProfileWords()[0], profileRow);
    colorProfileLbl_->setObjectName(QStringLiteral("colorProfileLbl"));
    colorProfileLbl_->setStyleSheet(QStringLiteral("color: #6e6e73; font-size: 13px; border: none;"));
    auto* chevron = new QLabel(QStringLiteral("›"), profileRow);
    chevron->setStyleSheet(QStringLiteral("color: #8e8e93; font-size: 18px; border: none;"));
    for (QLabel* label : {caption, colorProfileLbl_, chevron})
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    words->addWidget(caption);
    words->addWidget(colorProfileLbl_);
    row->addLayout(words, 1);
    row->addWidget(chevron);
    colorprofileView_ = profileRow;
    content->addWidget(profileRow);

    content->addStretch(1);
    downloadBtn_ = SheetControls::makeDownloadButton(parent);
    content->addWidget(downloadBtn_);
    connect(flattenView_, &QAbstractButton::clicked, this, &PDFPrintController::handleFlattenTap);
    connect(notesView_, &QAbstractButton::clicked, this, &PDFPrintController::handlenotTap);
    connect(cropMarksView_, &QAbstractButton::clicked, this, &PDFPrintController::handlecropTap);
    connect(profileRow, &QPushButton::clicked, this, [this] { handleprofileTap(); });
    connect(downloadBtn_, &QPushButton::clicked, this, &PDFPrintController::downloadbtnAction);
}

void PDFPrintController::handlecropTap() {
    cropSelect = SheetControls::toggleCheck(cropMarksCheck());
}

void PDFPrintController::handleFlattenTap() {
    // Stored and never read: the page is the same either way.
    flattenChoose = SheetControls::toggleCheck(flattenCheck());
}

void PDFPrintController::handlenotTap() {
    notesChoose = SheetControls::toggleCheck(notesCheck());
}

ColorProfileController* PDFPrintController::handleprofileTap() {
    auto* sheet = Storyboard::instantiate<ColorProfileController>(QStringLiteral("Main"),
                                                                  QStringLiteral("ColorProfileController"));
    sheet->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
    sheet->delegate = static_cast<ColorProfilePassed*>(this);
    sheet->selecIndex = rgbselect ? 0 : 1;
    present(sheet, true);
    return sheet;
}

void PDFPrintController::colorProfileChosen(int row) {
    if (row < 0 || row >= colorProfileWords().size())
        return;
    if (presentedViewController())
        dismiss(true);
    rgbselect = row == 0;
    colorProfileLbl_->setText(colorProfileWords()[row]);
}

void PDFPrintController::downloadbtnAction() {
    if (isBusy())
        return;
    showBusy();
    QPointer<PDFPrintController> self(this);
    const ImagePtr image = tobeSavedimage;
    const bool rgb = rgbselect;
    const bool crop = cropSelect;
    const bool notes = notesChoose;
    Dispatch::global(QualityOfService::userInitiated).async([self, image, rgb, crop, notes] {
        const auto picture =
            rgb ? PDFPrintFunction::rgbConverted(image) : PDFPrintFunction::cmykConverted(image);
        if (!picture)
            return;
        std::optional<QString> url;
        if (crop)
            url = notes ? PDFPrintFunction::cropMarksWithNote(*picture, kCropMargin)
                        : PDFPrintFunction::cropMarks(*picture, kCropMargin);
        else
            url = notes ? PDFPrintFunction::notesPage(*picture) : PDFPrintFunction::plainPage(*picture);
        if (!url)
            return; // printed; the busy indicator stays up
        Dispatch::main().async([self, shown = picture->image, path = *url] {
            if (!self)
                return;
            self->hideBusy();
            if (self->savingDelegate)
                self->savingDelegate->saveDetailsPassed(
                    SaveModelDetails{shown, path, SavingtypeMethod::PDFPrint});
        });
    });
}
