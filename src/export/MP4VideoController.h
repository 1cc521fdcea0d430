#pragma once

#include "export/FormatSheetController.h"
#include "export/MP4Function.h"

class QLabel;
class QPushButton;
class QSlider;

// The MP4 sheet: a quality slider whose label ("Low", "Medium", "High") decides the export preset. A
// picked video is exported at that quality; a picture first becomes a video as long as the silent
// track "Blank Audio.mp3", and that video is exported the same way, into "Convert/Convert.mp4".
class MP4VideoController : public FormatSheetController {
    Q_OBJECT
public:
    explicit MP4VideoController(QWidget* parent = nullptr);
    SavingtypeMethod savingType() const override { return SavingtypeMethod::MP4Video; }

    // The silent track; empty when the resource is missing.
    std::optional<QString> audioURL;

    // The label's words for a slider value; nothing outside the three bands.
    static std::optional<QString> qualityText(float value);
    static constexpr float kSliderMinimum = 0.2f;
    static constexpr float kSliderMaximum = 1.5f;

    void qualitySliderAction(float value);
    void downloadBtnAction();

    QSlider* qualityslider() const { return qualityslider_; }
    QLabel* sizelbl() const { return sizelbl_; }
    QLabel* suggestedLbl() const { return suggestedLbl_; }
    QPushButton* downloadButton() const { return downloadButton_; }

protected:
    void viewDidLoad() override;
    bool showsVideoInformation() const override { return false; }

private:
    void exportThenPass(const QString& input, Video::ExportPreset preset, std::optional<QString> temporary);

    QSlider* qualityslider_ = nullptr;
    QLabel* sizelbl_ = nullptr;
    QLabel* suggestedLbl_ = nullptr;
    QPushButton* downloadButton_ = nullptr;
    QPushButton* backButton_ = nullptr;
};
