#pragma once

#include "export/FormatSheetController.h"

class PhotoLibrary;
class QPushButton;

// The TIFF sheet: no options, one download button. The file goes to the temporary folder and into the
// album before the share screen opens; a failure leaves the busy indicator up (Escape closes the sheet).
class TiffController : public FormatSheetController {
    Q_OBJECT
public:
    explicit TiffController(QWidget* parent = nullptr);
    SavingtypeMethod savingType() const override { return SavingtypeMethod::TIFF; }

    // Where the TIFF is added as an asset; the shared album unless the opener sets another.
    PhotoLibrary* photoLibrary;

    void downloadbtnAction();
    void backBtnAction() { backAction(); }

    QPushButton* downloadBtn() const { return downloadBtn_; }

protected:
    void viewDidLoad() override;

private:
    QPushButton* downloadBtn_ = nullptr;
    QPushButton* backButton_ = nullptr;
};
