#include "export/ColorProfileController.h"

#include "export/SheetControls.h"
#include "platform/ImageView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace {
constexpr double kCornerRadius = 30;
constexpr int kRowHeight = 60;
} // namespace

const QStringList& colorProfileWords() {
    static const QStringList words{QStringLiteral("RGB (best for digital use)"),
                                   QStringLiteral("CMYK (best for professional printing)")};
    return words;
}

ColorProfileCell::ColorProfileCell(const QString& words, QWidget* parent) : QAbstractButton(parent) {
    setObjectName(QStringLiteral("ColorProfileCell"));
    setCursor(Qt::PointingHandCursor);
    setFixedHeight(kRowHeight);
    profileLbl_ = new QLabel(words, this);
    profileLbl_->setObjectName(QStringLiteral("profileLbl"));
    profileLbl_->setStyleSheet(QStringLiteral("color: black; font-size: 15px;"));
    profileLbl_->setAttribute(Qt::WA_TransparentForMouseEvents);
    doneImgView_ = new ImageView(this);
    doneImgView_->setObjectName(QStringLiteral("doneImgView"));
    doneImgView_->setContentMode(ContentMode::scaleAspectFit);
    doneImgView_->setFixedSize(24, 24);
    doneImgView_->setImage(SheetControls::checkboxImage(true));
    doneImgView_->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(4, 0, 4, 0);
    row->addWidget(profileLbl_, 1);
    row->addWidget(doneImgView_);
}

QSize ColorProfileCell::sizeHint() const {
    return QSize(300, kRowHeight);
}

void ColorProfileCell::paintEvent(QPaintEvent*) {
    // The row itself is clear; a press shades it.
    if (!isDown())
        return;
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0, 0, 0, 12));
}

ColorProfileController::ColorProfileController(QWidget* parent) : BottomSheetController(parent) {
    setObjectName(QStringLiteral("ColorProfileController"));
    setContainerCornerRadius(kCornerRadius);
    setDraggable(false);
}

ColorProfileCell* ColorProfileController::cellForRow(int row) const {
    return row >= 0 && row < cells_.size() ? cells_[row] : nullptr;
}

void ColorProfileController::viewDidLoad() {
    BottomSheetController::viewDidLoad();
    auto* title = new QLabel(QStringLiteral("Color Profile"), containerView());
    title->setStyleSheet(QStringLiteral("color: black; font-size: 18px; font-weight: 700;"));
    containerLayout()->addWidget(title);
    profileCollectiomnView_ = new QWidget(containerView());
    profileCollectiomnView_->setObjectName(QStringLiteral("profileCollectiomnView"));
    auto* rows = new QVBoxLayout(profileCollectiomnView_);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    for (int row = 0; row < numberOfItems(); ++row) {
        auto* cell = new ColorProfileCell(colorProfileWords()[row], profileCollectiomnView_);
        cell->doneImgView()->setVisible(row == selecIndex);
        connect(cell, &QAbstractButton::clicked, this, [this, row] { didSelectRow(row); });
        rows->addWidget(cell);
        cells_ << cell;
    }
    containerLayout()->addWidget(profileCollectiomnView_);
    containerLayout()->addStretch(1);
    setContainerHeight(80 + kRowHeight * numberOfItems());
}

void ColorProfileController::didSelectRow(int row) {
    if (row < 0 || row >= numberOfItems())
        return;
    if (delegate)
        delegate->colorProfileChosen(row);
}
