#include "export/JPGController.h"

#include "export/RasterExport.h"
#include "export/SheetControls.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

JPGController::JPGController(QWidget* parent) : FormatSheetController(parent) {
    setObjectName(QStringLiteral("JPGController"));
}

void JPGController::viewDidLoad() {
    FormatSheetController::viewDidLoad();
    // The title line sits above the shared file-type row.
    containerLayout()->insertWidget(
        0, SheetControls::makeHeader(QStringLiteral("Save as JPG"), &backButton_, containerView()));
    connect(backButton_, &QPushButton::clicked, this, &JPGController::backAction);
    QVBoxLayout* content = contentLayout();
    QWidget* parent = containerView();

    const SheetControls::SizeRows sizeRows =
        SheetControls::addSizeRows(content, QStringLiteral("SizeValueLbl"), parent);
    sizeValueLbl_ = sizeRows.valueLabel;
    sizeValueView_ = sizeRows.valueView;
    sizeSlider_ = sizeRows.slider;
    pxLbl_ = sizeRows.pixelLabel;

    qualityValueLbl_ = new QLabel(RasterExport::qualityValueText(1.0f));
    qualityValueLbl_->setObjectName(QStringLiteral("qualityValueLbl"));
    content->addWidget(
        SheetControls::makeValueRow(QStringLiteral("Quality"), qualityValueLbl_, &qualityValueView_, parent));
    qualitySlider_ = SheetControls::makeSlider(0.0, 1.0, QStringLiteral("qualitySlider"), parent);
    content->addWidget(qualitySlider_);
    fileSizeLbl_ = SheetControls::makeNote(QStringLiteral("fileSizeLbl"), parent);
    fileSizeLbl_->setText(RasterExport::fileSizeText(1.0f));
    content->addWidget(fileSizeLbl_);

    content->addStretch(1);
    downloadBtn_ = SheetControls::makeDownloadButton(parent);
    content->addWidget(downloadBtn_);

    connect(sizeSlider_, &QSlider::valueChanged, this,
            [this] { sizeSliderAction(SheetControls::sliderValue(sizeSlider_)); });
    connect(qualitySlider_, &QSlider::valueChanged, this,
            [this] { qualitySlideraction(SheetControls::sliderValue(qualitySlider_)); });
    connect(downloadBtn_, &QPushButton::clicked, this, &JPGController::donwloadbtnAction);

    if (tobeSavedimage) {
        newWidth = tobeSavedimage->size().width();
        newheight = tobeSavedimage->size().height();
        pxLbl_->setText(RasterExport::pixelLabelAtLoad(newWidth, newheight));
    }
}

void JPGController::sizeSliderAction(float value) {
    if (const auto size = SheetControls::showSliderSize(sizeValueLbl_, pxLbl_, tobeSavedimage, value)) {
        newWidth = size->width();
        newheight = size->height();
    }
}

void JPGController::qualitySlideraction(float value) {
    qualityValueLbl_->setText(RasterExport::qualityValueText(value));
    fileSizeLbl_->setText(RasterExport::fileSizeText(value));
    qualityParameter = static_cast<double>(value);
}

void JPGController::donwloadbtnAction() {
    if (!tobeSavedimage)
        return;
    const QByteArray jpeg = tobeSavedimage->jpegData(qualityParameter);
    if (jpeg.isEmpty())
        return;
    // Read back as a picture of its own, one pixel to the point, as bytes decode.
    const ImagePtr recompressed = Image::fromData(jpeg);
    if (!recompressed)
        return;
    const double factor = RasterExport::fitFactor(newWidth, newheight, recompressed->size());
    const ImagePtr resized = RasterExport::renderScaled(recompressed, factor);
    if (!resized)
        return;
    if (savingDelegate)
        savingDelegate->saveDetailsPassed(SaveModelDetails{resized, std::nullopt, SavingtypeMethod::JPG});
}
