#include "mirror/EditBtnCell.h"

#include "platform/Assets.h"
#include "platform/ImageView.h"

#include <QLabel>

const QColor EditBtnCell::selectedTitleColor(250, 202, 22);
const QColor EditBtnCell::plainTitleColor(140, 140, 140);

EditBtnCell::EditBtnCell(int index, QString title, QString picture, QString selectedPicture, QWidget* parent)
    : QAbstractButton(parent), index_(index), picture_(std::move(picture)),
      selectedPicture_(std::move(selectedPicture)) {
    setText(title);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(title);
    imageView_ = new ImageView(this);
    imageView_->setContentMode(ContentMode::scaleAspectFit);
    imageView_->setAttribute(Qt::WA_TransparentForMouseEvents);
    label_ = new QLabel(title, this);
    label_->setAlignment(Qt::AlignCenter);
    label_->setAttribute(Qt::WA_TransparentForMouseEvents);
    configure(false);
}

void EditBtnCell::configure(bool selected) {
    shownSelected_ = selected;
    imageView_->setImage(Assets::image(selected ? selectedPicture_ : picture_));
    QPalette palette = label_->palette();
    palette.setColor(QPalette::WindowText, selected ? selectedTitleColor : plainTitleColor);
    label_->setPalette(palette);
}

void EditBtnCell::resizeEvent(QResizeEvent*) {
    const int titleHeight = 18;
    const int side = std::max(0, std::min(width(), height() - titleHeight - 10) - 8);
    imageView_->setGeometry((width() - side) / 2, 6, side, side);
    label_->setGeometry(0, height() - titleHeight - 4, width(), titleHeight);
    // The title fits the cell's width.
    QFont font = label_->font();
    font.setPointSizeF(11);
    while (font.pointSizeF() > 6 && QFontMetricsF(font).horizontalAdvance(text()) > width() - 4)
        font.setPointSizeF(font.pointSizeF() - 0.5);
    label_->setFont(font);
}

void EditBtnCell::paintEvent(QPaintEvent*) {}
