#include "overlay/FontCell.h"

#include "overlay/FontList.h"

#include <QMouseEvent>
#include <QPainter>

namespace {
const QColor selectedColor(0xfa, 0xca, 0x16);
const QColor plainColor(20, 20, 20);
} // namespace

void ReflectionLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::TextAntialiasing);
    // Mirrored top to bottom, so it lies under the word like its reflection.
    painter.translate(0, height());
    painter.scale(1, -1);
    painter.setFont(font());
    painter.setOpacity(alpha * 0.5);
    painter.setPen(Qt::black);
    painter.drawText(rect().translated(4, -4), alignment(), text()); // the shadow, down and right
    painter.setOpacity(alpha);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect(), alignment(), text());
}

FontCell::FontCell(QWidget* parent) : QWidget(parent) {
    fontLblName_ = new QLabel(this);
    fontLblName_->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    oppositeLbl_ = new ReflectionLabel(this);
    oppositeLbl_->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    setCursor(Qt::PointingHandCursor);
    refreshLook();
}

void FontCell::configure(int index) {
    if (index < 0 || index >= FontList::count)
        return;
    index_ = index;
    const QFont font = FontList::font(FontList::fontNames()[index], fontSize);
    for (QLabel* label : {fontLblName_, static_cast<QLabel*>(oppositeLbl_)}) {
        label->setText(FontList::sampleWords()[index]);
        label->setFont(font);
    }
    setAccessibleName(FontList::fontNames()[index]);
    refreshLook();
}

void FontCell::setSelected(bool selected) {
    selected_ = selected;
    refreshLook();
}

void FontCell::refreshLook() {
    for (QLabel* label : {fontLblName_, static_cast<QLabel*>(oppositeLbl_)}) {
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, selected_ ? selectedColor : plainColor);
        label->setPalette(palette);
    }
    update();
}

void FontCell::resizeEvent(QResizeEvent*) {
    const int wordHeight = height() * 55 / 100;
    fontLblName_->setGeometry(0, 0, width(), wordHeight);
    oppositeLbl_->setGeometry(0, wordHeight, width(), wordHeight);
}

void FontCell::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && index_ >= 0)
        emit tapped(index_);
}
