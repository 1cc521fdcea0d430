#pragma once

#include "mirror/EditBtnCell.h"

// A cell of the text tools strip; it looks and behaves as a cell of the tool strip.
class TextCell : public EditBtnCell {
    Q_OBJECT
public:
    using EditBtnCell::EditBtnCell;
    QLabel* textLbl() const { return displayLbl(); }
    ImageView* textImgView() const { return displayImgView(); }
};
