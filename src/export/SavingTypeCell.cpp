#include "export/SavingTypeCell.h"

#include "platform/Assets.h"
#include "platform/ImageView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace {
constexpr int kPillHeight = 20;
}

SavingTypeCell::SavingTypeCell(QWidget* parent) : QWidget(parent) {
    setFixedHeight(kHeight);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_TranslucentBackground); // the cell's background is clear

    savingImageName_ = new ImageView(this);
    savingImageName_->setContentMode(ContentMode::scaleAspectFit);
    savingImageName_->setFixedSize(36, 36);

    saveformatnameLbl_ = new QLabel(this);
    saveformatnameLbl_->setStyleSheet(QStringLiteral("color: black; font-size: 16px; font-weight: 600;"));
    infolbl_ = new QLabel(this);
    infolbl_->setStyleSheet(QStringLiteral("color: #6e6e73; font-size: 12px;"));

    suggestedLbl_ = new QLabel(QStringLiteral("Suggested"), this);
    suggestedLbl_->setAlignment(Qt::AlignCenter);
    suggestedLbl_->setFixedHeight(kPillHeight);
    // A pill: the radius is half the height.
    suggestedLbl_->setStyleSheet(QStringLiteral("background: #faca16; color: black; font-size: 10px;"
                                                " font-weight: 600; padding: 0 8px; border-radius: %1px;")
                                     .arg(kPillHeight / 2));

    selectbtn_ = new QLabel(QStringLiteral("✓"), this);
    selectbtn_->setStyleSheet(QStringLiteral("color: #faca16; font-size: 20px; font-weight: 700;"));

    auto* titleRow = new QHBoxLayout;
    titleRow->setSpacing(8);
    titleRow->addWidget(saveformatnameLbl_);
    titleRow->addWidget(suggestedLbl_);
    titleRow->addStretch(1);
    auto* text = new QVBoxLayout;
    text->setSpacing(2);
    text->addLayout(titleRow);
    text->addWidget(infolbl_);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 6, 16, 6);
    row->setSpacing(12);
    row->addWidget(savingImageName_);
    row->addLayout(text, 1);
    row->addWidget(selectbtn_);
}

void SavingTypeCell::configure(const QString& iconName, const QString& title, const QString& description,
                               bool suggested, bool selected) {
    savingImageName_->setImage(Assets::image(iconName));
    saveformatnameLbl_->setText(title);
    infolbl_->setText(description);
    suggestedLbl_->setVisible(suggested);
    selectbtn_->setVisible(selected);
}

void SavingTypeCell::mouseReleaseEvent(QMouseEvent* event) {
    if (rect().contains(event->position().toPoint()) && onTap)
        onTap();
}
