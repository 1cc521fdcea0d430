#include "export/SVGController.h"

#include "export/PNGFunctionClass.h"
#include "export/SVGFunction.h"
#include "export/SheetControls.h"
#include "platform/Documents.h"

#include <QPushButton>
#include <QVBoxLayout>

const QString SVGController::kFileName = QStringLiteral("UntitledSVG.svg");

SVGController::SVGController(QWidget* parent) : FormatSheetController(parent) {
    setObjectName(QStringLiteral("SVGController"));
}

ImageView* SVGController::trasnparentCehck() const {
    return trasnparentView_->check();
}

void SVGController::viewDidLoad() {
    FormatSheetController::viewDidLoad();
    containerLayout()->insertWidget(
        0, SheetControls::makeHeader(QStringLiteral("Save as SVG"), &backButton_, containerView()));
    connect(backButton_, &QPushButton::clicked, this, &SVGController::backAction);
    trasnparentView_ = new CheckRowView(QStringLiteral("Transparent background"),
                                        QStringLiteral("trasnparentView"), containerView());
    contentLayout()->addWidget(trasnparentView_);
    contentLayout()->addStretch(1);
    downloadBtn_ = SheetControls::makeDownloadButton(containerView());
    contentLayout()->addWidget(downloadBtn_);
    connect(trasnparentView_, &QAbstractButton::clicked, this, &SVGController::handletrasnparentTap);
    connect(downloadBtn_, &QPushButton::clicked, this, &SVGController::downloadBtnAction);
}

void SVGController::handletrasnparentTap() {
    trasparentChoose = SheetControls::toggleCheck(trasnparentCehck());
}

void SVGController::downloadBtnAction() {
    showBusy();
    if (!tobeSavedimage)
        return;
    const double width = tobeSavedimage->size().width();
    const double height = tobeSavedimage->size().height();
    const ImagePtr picture =
        trasparentChoose ? tobeSavedimage
                         : PNGFunctionClass::renderFlattened(tobeSavedimage, Qt::white, width, height);
    const QString text = SVGFunction::svgText(picture, width, height);
    if (text.isEmpty())
        return;
    const std::optional<QString> url = SVGFunction::writeText(text, Documents::fileURL(kFileName));
    if (!url)
        return;
    hideBusy();
    if (savingDelegate)
        savingDelegate->saveDetailsPassed(SaveModelDetails{picture, url, SavingtypeMethod::SVG});
}
