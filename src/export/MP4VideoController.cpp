#include "export/MP4VideoController.h"

#include "export/SheetControls.h"
#include "platform/Assets.h"
#include "platform/Dispatch.h"
#include "platform/Log.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSlider>
#include <QUuid>
#include <QVBoxLayout>

namespace {
constexpr int kSliderScale = 1000;
constexpr double kSheetHeight = 330;
} // namespace

MP4VideoController::MP4VideoController(QWidget* parent) : FormatSheetController(parent) {
    setObjectName(QStringLiteral("MP4VideoController"));
}

std::optional<QString> MP4VideoController::qualityText(float value) {
    if (0.2f <= value && value < 0.6f)
        return QStringLiteral("Low");
    if (0.6f <= value && value < 1.0f)
        return QStringLiteral("Medium");
    if (1.0f <= value && value <= 1.5f)
        return QStringLiteral("High");
    return std::nullopt;
}

void MP4VideoController::viewDidLoad() {
    FormatSheetController::viewDidLoad();
    containerLayout()->insertWidget(
        0, SheetControls::makeHeader(QStringLiteral("Save as MP4 Video"), &backButton_, containerView()));
    connect(backButton_, &QPushButton::clicked, this, &MP4VideoController::backAction);
    QWidget* parent = containerView();
    QVBoxLayout* content = contentLayout();

    sizelbl_ = new QLabel(QStringLiteral("High"));
    sizelbl_->setObjectName(QStringLiteral("sizelbl"));
    QWidget* valueView = nullptr;
    content->addWidget(SheetControls::makeValueRow(QStringLiteral("Quality"), sizelbl_, &valueView, parent));
    qualityslider_ = SheetControls::makeSlider(0, 1, QStringLiteral("qualityslider"), parent);
    qualityslider_->setRange(static_cast<int>(kSliderMinimum * kSliderScale),
                             static_cast<int>(kSliderMaximum * kSliderScale));
    qualityslider_->setValue(kSliderScale);
    content->addWidget(qualityslider_);
    suggestedLbl_ = SheetControls::makeNote(QStringLiteral("suggestedLbl"), parent);
    suggestedLbl_->setText(QStringLiteral("Suggested: High keeps the video as sharp as it is."));
    content->addWidget(suggestedLbl_);
    content->addStretch(1);
    downloadButton_ = SheetControls::makeDownloadButton(parent);
    content->addWidget(downloadButton_);
    connect(qualityslider_, &QSlider::valueChanged, this, [this](int value) {
        qualitySliderAction(static_cast<float>(value) / static_cast<float>(kSliderScale));
    });
    connect(downloadButton_, &QPushButton::clicked, this, &MP4VideoController::downloadBtnAction);

    if (shareImage)
        suggestedLbl_->hide();
    audioURL = Assets::resourceURL(QStringLiteral("Blank Audio"), QStringLiteral("mp3"));
    setContainerHeight(kSheetHeight);
}

void MP4VideoController::qualitySliderAction(float value) {
    if (const auto text = qualityText(value))
        sizelbl_->setText(*text);
}

void MP4VideoController::downloadBtnAction() {
    if (isBusy())
        return;
    showBusy();
    // Read back from the label, as the user last saw it.
    const Video::ExportPreset preset = MP4Function::presetForLabel(sizelbl_->text());
    if (!shareImage) {
        if (!videoUrl)
            fatalError("MP4VideoController: no picture and no video to save");
        exportThenPass(*videoUrl, preset, std::nullopt);
        return;
    }
    if (!audioURL)
        fatalError("Missing resource \"Blank Audio.mp3\": a picture cannot become a video without it");
    if (!tobeSavedimage)
        return;
    QPointer<MP4VideoController> self(this);
    const QImage picture = tobeSavedimage->uprightBitmap();
    const QString audio = *audioURL;
    const QString generated = QDir(QDir::tempPath())
                                  .filePath(QStringLiteral("lumivex-picture-%1.mp4")
                                                .arg(QUuid::createUuid().toString(QUuid::WithoutBraces)));
    Dispatch::global(QualityOfService::userInitiated).async([self, picture, audio, generated, preset] {
        const Video::GeneratedVideo made = Video::videoFromImage(picture, audio, generated);
        if (!made.url) {
            printLine("fail");
            printLine(made.error.toStdString());
            return;
        }
        Dispatch::main().async([self, url = *made.url, preset] {
            if (self)
                self->exportThenPass(url, preset, url);
            else
                QFile::remove(url);
        });
    });
}

void MP4VideoController::exportThenPass(const QString& input, Video::ExportPreset preset,
                                        std::optional<QString> temporary) {
    QPointer<MP4VideoController> self(this);
    const ImagePtr shown = tobeSavedimage;
    MP4Function::exportVideo(input, preset, [self, shown, temporary](const MP4Function::Result& result) {
        if (temporary)
            QFile::remove(*temporary);
        if (result.error) {
            printLine(("Error converting video: " + result.error->localizedDescription).toStdString());
            return;
        }
        Dispatch::main().async([self, shown, url = *result.url] {
            if (!self)
                return;
            self->hideBusy();
            if (self->savingDelegate)
                self->savingDelegate->saveDetailsPassed(
                    SaveModelDetails{shown, url, SavingtypeMethod::MP4Video});
        });
    });
}
