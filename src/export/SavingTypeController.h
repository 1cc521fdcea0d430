#pragma once

#include "export/BottomSheetController.h"
#include "export/SavingProtocols.h"

#include <QList>

class SavingTypeCell;

// The format chooser: seven rows, one per format. Picking a row closes the sheet and only then tells
// the delegate.
class SavingTypeController : public BottomSheetController {
    Q_OBJECT
public:
    static constexpr int kNoRow = 8;

    explicit SavingTypeController(QWidget* parent = nullptr);

    WeakDelegate<SavingMethodPass> delegate;
    int selectedIndex = kNoRow;
    bool isimage = true;

    // The row that carries the suggestion pill: PNG for a picture, MP4 Video for a video.
    static bool isSuggested(int row, bool isimage);

    int numberOfItems() const;
    SavingTypeCell* cellForRow(int row) const;
    QWidget* bottomDownView() const { return bottomDownView_; }

    void reloadData();
    void didSelectRow(int row);

protected:
    void viewDidLoad() override;

private:
    QWidget* bottomDownView_ = nullptr;
    QList<SavingTypeCell*> cells_;
};
