#pragma once

#include "export/ColorProfileController.h"
#include "export/FormatSheetController.h"

class CheckRowView;
class ImageView;
class QLabel;
class QPushButton;

// The print PDF sheet: flatten (kept, changes nothing), notes, crop marks, and the colour profile row
// that opens ColorProfileController. The file name follows crop marks and notes, whatever the profile:
// "UntitledPdf.pdf", "Notes.pdf", "CropMarks.pdf" or "Crop&Note.pdf".
class PDFPrintController : public FormatSheetController, public ColorProfilePassed {
    Q_OBJECT
public:
    static constexpr double kCropMargin = 20.0;

    explicit PDFPrintController(QWidget* parent = nullptr);
    SavingtypeMethod savingType() const override { return SavingtypeMethod::PDFPrint; }

    bool flattenChoose = false;
    bool notesChoose = false;
    bool cropSelect = false;
    bool rgbselect = true;

    void handlecropTap();
    void handleFlattenTap();
    void handlenotTap();
    // Opens the profile sheet with the current profile marked.
    ColorProfileController* handleprofileTap();
    void downloadbtnAction();
    void colorProfileChosen(int row) override;

    ImageView* flattenCheck() const;
    ImageView* notesCheck() const;
    ImageView* cropMarksCheck() const;
    CheckRowView* flattenView() const { return flattenView_; }
    CheckRowView* notesView() const { return notesView_; }
    CheckRowView* cropMarksView() const { return cropMarksView_; }
    QAbstractButton* colorprofileView() const { return colorprofileView_; }
    QLabel* colorProfileLbl() const { return colorProfileLbl_; }
    QPushButton* downloadBtn() const { return downloadBtn_; }

protected:
    void viewDidLoad() override;

private:
    CheckRowView* flattenView_ = nullptr;
    CheckRowView* notesView_ = nullptr;
    CheckRowView* cropMarksView_ = nullptr;
    QAbstractButton* colorprofileView_ = nullptr;
    QLabel* colorProfileLbl_ = nullptr;
    QPushButton* downloadBtn_ = nullptr;
    QPushButton* backButton_ = nullptr;
};
