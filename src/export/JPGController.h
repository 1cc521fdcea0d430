#pragma once

#include "export/FormatSheetController.h"

class QLabel;
class QPushButton;
class QSlider;

// The JPG sheet: a size slider and a quality slider. It writes no file: the recompressed picture,
// re-rendered at the chosen size, goes to the share screen, which stores it in the album.
class JPGController : public FormatSheetController {
    Q_OBJECT
public:
    explicit JPGController(QWidget* parent = nullptr);
    SavingtypeMethod savingType() const override { return SavingtypeMethod::JPG; }

    // Target size in points; the picture's own size once loaded.
    double newWidth = 0;
    double newheight = 0;
    double qualityParameter = 1.0;

    // The actions, with the value the slider gives.
    void sizeSliderAction(float value);
    void qualitySlideraction(float value);
    void donwloadbtnAction();

    QLabel* pxLbl() const { return pxLbl_; }
    QLabel* SizeValueLbl() const { return sizeValueLbl_; }
    QLabel* qualityValueLbl() const { return qualityValueLbl_; }
    QLabel* fileSizeLbl() const { return fileSizeLbl_; }
    QSlider* sizeSlider() const { return sizeSlider_; }
    QSlider* qualitySlider() const { return qualitySlider_; }
    QPushButton* downloadBtn() const { return downloadBtn_; }
    QPushButton* backButton() const { return backButton_; }

protected:
    void viewDidLoad() override;

private:
    QLabel* pxLbl_ = nullptr;
    QLabel* sizeValueLbl_ = nullptr;
    QLabel* qualityValueLbl_ = nullptr;
    QLabel* fileSizeLbl_ = nullptr;
    QSlider* sizeSlider_ = nullptr;
    QSlider* qualitySlider_ = nullptr;
    QWidget* sizeValueView_ = nullptr;
    QWidget* qualityValueView_ = nullptr;
    QPushButton* downloadBtn_ = nullptr;
    QPushButton* backButton_ = nullptr;
};
