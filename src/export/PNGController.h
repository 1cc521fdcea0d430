#pragma once

#include "export/FormatSheetController.h"

class CheckRowView;
class ImageView;
class QLabel;
class QPushButton;
class QSlider;

// The PNG sheet: a size slider, a transparency check box and a compression check box that changes
// nothing in the file. It writes "default.png" in the documents folder, replacing the last one.
class PNGController : public FormatSheetController {
    Q_OBJECT
public:
    static const QString kFileName;

    explicit PNGController(QWidget* parent = nullptr);
    SavingtypeMethod savingType() const override { return SavingtypeMethod::PNG; }

    double newWidth = 0;
    double newheight = 0;
    // False flattens the picture on white; true keeps its transparency.
    bool trasparentBool = false;

    void sizeSliderAction(float value);
    void handletrasnparentTap();
    void handleCompressTap();
    void downloadbtnAction();

    QLabel* pxLbl() const { return pxLbl_; }
    QLabel* sizeValueLbl() const { return sizeValueLbl_; }
    QSlider* sizeSlider() const { return sizeSlider_; }
    ImageView* trasnparentCheck() const;
    ImageView* compressQuailityCheck() const;
    CheckRowView* trasnparentView() const { return trasnparentView_; }
    CheckRowView* compressQualityView() const { return compressQualityView_; }
    QPushButton* downloadBtn() const { return downloadBtn_; }

protected:
    void viewDidLoad() override;

private:
    QLabel* pxLbl_ = nullptr;
    QLabel* sizeValueLbl_ = nullptr;
    QLabel* suggestLbl_ = nullptr;
    QSlider* sizeSlider_ = nullptr;
    QWidget* sizeValueView_ = nullptr;
    CheckRowView* trasnparentView_ = nullptr;
    CheckRowView* compressQualityView_ = nullptr;
    QPushButton* downloadBtn_ = nullptr;
    QPushButton* backButton_ = nullptr;
};
