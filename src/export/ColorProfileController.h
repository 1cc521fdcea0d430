#pragma once

#include "export/BottomSheetController.h"
#include "export/SavingProtocols.h"

#include <QAbstractButton>
#include <QStringList>

class ImageView;
class QLabel;

// Told which colour profile row the user picked.
class ColorProfilePassed {
public:
    virtual ~ColorProfilePassed() = default;
    virtual void colorProfileChosen(int row) = 0;
};

// The words of the two colour profiles: row 0 RGB, row 1 CMYK.
const QStringList& colorProfileWords();

// One row of the profile sheet: the words and a mark when it is the chosen one.
class ColorProfileCell : public QAbstractButton {
    Q_OBJECT
public:
    ColorProfileCell(const QString& words, QWidget* parent = nullptr);
    ImageView* doneImgView() const { return doneImgView_; }
    QLabel* profileLbl() const { return profileLbl_; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ImageView* doneImgView_ = nullptr;
    QLabel* profileLbl_ = nullptr;
};

// The small sheet of the print PDF that picks RGB or CMYK. It does not follow a drag; its top area
// closes it. A tap on a row only tells the delegate, which closes the sheet itself.
class ColorProfileController : public BottomSheetController {
    Q_OBJECT
public:
    explicit ColorProfileController(QWidget* parent = nullptr);

    WeakDelegate<ColorProfilePassed> delegate;
    int selecIndex = 0;

    int numberOfItems() const { return static_cast<int>(colorProfileWords().size()); }
    ColorProfileCell* cellForRow(int row) const;
    QWidget* profileCollectiomnView() const { return profileCollectiomnView_; }
    void didSelectRow(int row);

protected:
    void viewDidLoad() override;

private:
    QWidget* profileCollectiomnView_ = nullptr;
    QList<ColorProfileCell*> cells_;
};
