#pragma once

#include "export/FormatSheetController.h"

class CheckRowView;
class ImageView;
class QPushButton;

// The standard PDF sheet: a flatten row that is kept and changes nothing, and a notes row. It writes
// "UntitledPdf.pdf", or "NotesPDF.pdf" with notes, in the documents folder.
class PDFStandardController : public FormatSheetController {
    Q_OBJECT
public:
    explicit PDFStandardController(QWidget* parent = nullptr);
    SavingtypeMethod savingType() const override { return SavingtypeMethod::PDFStandard; }

    bool flattenChoose = false;
    bool notesChoose = false;

    void handleFlattenTap();
    void handlenotTap();
    void downloadbtnAction();

    ImageView* flattenCheckView() const;
    ImageView* noteCheckView() const;
    CheckRowView* flattenView() const { return flattenView_; }
    CheckRowView* noteView() const { return noteView_; }
    QPushButton* downloadBtn() const { return downloadBtn_; }

protected:
    void viewDidLoad() override;

private:
    CheckRowView* flattenView_ = nullptr;
    CheckRowView* noteView_ = nullptr;
    QPushButton* downloadBtn_ = nullptr;
    QPushButton* backButton_ = nullptr;
};
