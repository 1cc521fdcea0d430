#include "frames/BtnsCell.h"

#include "platform/Assets.h"
#include "platform/ImageView.h"

#include <QLabel>
#include <QVBoxLayout>

const QColor BtnsCell::selectedColor = QColor(0xfa, 0xca, 0x16);
const QColor BtnsCell::unselectedColor = QColor::fromRgbF(0.549f, 0.549f, 0.549f);

BtnsCell::BtnsCell(const QString& title, const QString& icon, const QString& selectedIcon, QWidget* parent)
    : QAbstractButton(parent), btnImageView_(new ImageView(this)), btnTextLbl_(new QLabel(title, this)),
      icon_(icon), selectedIcon_(selectedIcon) {
    setObjectName(title);
    setCursor(Qt::PointingHandCursor);
    btnImageView_->setContentMode(ContentMode::scaleAspectFit);
    btnImageView_->setFixedSize(28, 28);
    btnTextLbl_->setAlignment(Qt::AlignCenter);
    for (QWidget* child : {static_cast<QWidget*>(btnImageView_), static_cast<QWidget*>(btnTextLbl_)})
        child->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 8, 0, 6);
    layout->setSpacing(4);
    layout->addWidget(btnImageView_, 0, Qt::AlignHCenter);
    layout->addWidget(btnTextLbl_);
    setSelectedState(false);
}

void BtnsCell::setSelectedState(bool selected) {
    selected_ = selected;
    btnImageView_->setImage(Assets::image(selected ? selectedIcon_ : icon_));
    btnTextLbl_->setStyleSheet(QStringLiteral("font-size: 12px; color: %1;")
                                   .arg((selected ? selectedColor : unselectedColor).name()));
}

void BtnsCell::paintEvent(QPaintEvent*) {}
