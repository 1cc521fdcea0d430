#include "export/TiffController.h"

#include "export/SheetControls.h"
#include "export/TiffFunction.h"
#include "platform/Dispatch.h"
#include "platform/PhotoLibrary.h"

#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

TiffController::TiffController(QWidget* parent)
    : FormatSheetController(parent), photoLibrary(&PhotoLibrary::shared()) {
    setObjectName(QStringLiteral("TiffController"));
}

void TiffController::viewDidLoad() {
    FormatSheetController::viewDidLoad();
    containerLayout()->insertWidget(
        0, SheetControls::makeHeader(QStringLiteral("Save as TIFF"), &backButton_, containerView()));
    connect(backButton_, &QPushButton::clicked, this, &TiffController::backBtnAction);
    contentLayout()->addStretch(1);
    downloadBtn_ = SheetControls::makeDownloadButton(containerView());
    contentLayout()->addWidget(downloadBtn_);
    connect(downloadBtn_, &QPushButton::clicked, this, &TiffController::downloadbtnAction);
}

void TiffController::downloadbtnAction() {
    showBusy();
    QPointer<TiffController> self(this);
    const ImagePtr image = tobeSavedimage;
    TiffFunction::saveImageAsTIFF(image, photoLibrary ? photoLibrary->folder() : QString(),
                                  [self, image](bool ok, std::optional<QString> url) {
                                      if (!ok || !url)
                                          return;
                                      Dispatch::main().async([self, image, path = *url] {
                                          if (!self)
                                              return;
                                          self->hideBusy();
                                          if (self->savingDelegate)
                                              self->savingDelegate->saveDetailsPassed(
                                                  SaveModelDetails{image, path, SavingtypeMethod::TIFF});
                                      });
                                  });
}
