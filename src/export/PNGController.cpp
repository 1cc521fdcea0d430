#include "export/PNGController.h"

#include "export/PNGFunctionClass.h"
#include "export/RasterExport.h"
#include "export/SheetControls.h"
#include "platform/Documents.h"
#include "platform/Log.h"

#include <QLabel>
#include <QPushButton>
#include <QSaveFile>
#include <QSlider>
#include <QVBoxLayout>

const QString PNGController::kFileName = QStringLiteral("default.png");

PNGController::PNGController(QWidget* parent) : FormatSheetController(parent) {
    setObjectName(QStringLiteral("PNGController"));
}

ImageView* PNGController::trasnparentCheck() const {
    return trasnparentView_->check();
}

ImageView* PNGController::compressQuailityCheck() const {
    return compressQualityView_->check();
}

void PNGController::viewDidLoad() {
    FormatSheetController::viewDidLoad();
    containerLayout()->insertWidget(
        0, SheetControls::makeHeader(QStringLiteral("Save as PNG"), &backButton_, containerView()));
    connect(backButton_, &QPushButton::clicked, this, &PNGController::backAction);
    QVBoxLayout* content = contentLayout();
    QWidget* parent = containerView();

    const SheetControls::SizeRows sizeRows =
        SheetControls::addSizeRows(content, QStringLiteral("sizeValueLbl"), parent);
    sizeValueLbl_ = sizeRows.valueLabel;
    sizeValueView_ = sizeRows.valueView;
    sizeSlider_ = sizeRows.slider;
    pxLbl_ = sizeRows.pixelLabel;

    trasnparentView_ =
        new CheckRowView(QStringLiteral("Transparent background"), QStringLiteral("trasnparentView"), parent);
    content->addWidget(trasnparentView_);
    compressQualityView_ =
        new CheckRowView(QStringLiteral("Compress quality"), QStringLiteral("compressQualityView"), parent);
    content->addWidget(compressQualityView_);
    suggestLbl_ = SheetControls::makeNote(QStringLiteral("suggestLbl"), parent);
    suggestLbl_->setText(
        QStringLiteral("Keeps every pixel as it is: best for illustrations and clear areas."));
    suggestLbl_->setWordWrap(true);
    content->addWidget(suggestLbl_);

    content->addStretch(1);
    downloadBtn_ = SheetControls::makeDownloadButton(parent);
    content->addWidget(downloadBtn_);

    connect(sizeSlider_, &QSlider::valueChanged, this,
            [this] { sizeSliderAction(SheetControls::sliderValue(sizeSlider_)); });
    connect(trasnparentView_, &QAbstractButton::clicked, this, &PNGController::handletrasnparentTap);
    connect(compressQualityView_, &QAbstractButton::clicked, this, &PNGController::handleCompressTap);
    connect(downloadBtn_, &QPushButton::clicked, this, &PNGController::downloadbtnAction);

    if (tobeSavedimage) {
        newWidth = tobeSavedimage->size().width();
        newheight = tobeSavedimage->size().height();
        pxLbl_->setText(RasterExport::pixelLabelAtLoad(newWidth, newheight));
    }
}

void PNGController::sizeSliderAction(float value) {
    if (const auto size = SheetControls::showSliderSize(sizeValueLbl_, pxLbl_, tobeSavedimage, value)) {
        newWidth = size->width();
        newheight = size->height();
    }
}

void PNGController::handletrasnparentTap() {
    trasparentBool = SheetControls::toggleCheck(trasnparentCheck());
}

void PNGController::handleCompressTap() {
    // PNG is lossless: the box is offered, and deliberately stores nothing.
    SheetControls::toggleCheck(compressQuailityCheck());
}

void PNGController::downloadbtnAction() {
    if (!tobeSavedimage)
        return;
    const double factor = RasterExport::fitFactor(newWidth, newheight, tobeSavedimage->size());
    const ImagePtr resized = RasterExport::renderScaled(tobeSavedimage, factor);
    if (!resized)
        return;
    const ImagePtr result =
        trasparentBool ? PNGFunctionClass::renderClearBacked(resized)
                       : PNGFunctionClass::renderFlattened(resized, Qt::white, resized->size().width(),
                                                           resized->size().height());
    if (!result)
        return;

    std::optional<QString> url;
    const QByteArray png = result->pngData();
    if (!png.isEmpty()) {
        const QString path = Documents::fileURL(kFileName);
        // Written beside the old file and renamed over it, so a full disk leaves no half picture.
        QSaveFile file(path);
        if (file.open(QIODevice::WriteOnly) && file.write(png) == png.size() && file.commit())
            url = path;
        else
            printLine(("Error saving image: " + path + ": " + file.errorString()).toStdString());
    }
    if (savingDelegate)
        savingDelegate->saveDetailsPassed(SaveModelDetails{tobeSavedimage, url, SavingtypeMethod::PNG});
}
