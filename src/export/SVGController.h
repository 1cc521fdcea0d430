#pragma once

#include "export/FormatSheetController.h"

class CheckRowView;
class ImageView;
class QPushButton;

// The SVG sheet: one transparency check box. It writes "UntitledSVG.svg" in the documents folder,
// replacing the last one; the picture keeps its size.
class SVGController : public FormatSheetController {
    Q_OBJECT
public:
    static const QString kFileName;

    explicit SVGController(QWidget* parent = nullptr);
    SavingtypeMethod savingType() const override { return SavingtypeMethod::SVG; }

    // False flattens the picture on white; true keeps its transparency.
    bool trasparentChoose = false;

    void handletrasnparentTap();
    void downloadBtnAction();

    ImageView* trasnparentCehck() const;
    CheckRowView* trasnparentView() const { return trasnparentView_; }
    QPushButton* downloadBtn() const { return downloadBtn_; }

protected:
    void viewDidLoad() override;

private:
    CheckRowView* trasnparentView_ = nullptr;
    QPushButton* downloadBtn_ = nullptr;
    QPushButton* backButton_ = nullptr;
};
