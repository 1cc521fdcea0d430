#include "overlay/OverlayStyle.h"

#include "overlay/FontList.h"
#include "platform/Assets.h"

#include <QLabel>
#include <QPushButton>

namespace OverlayStyle {

void styleDarkPage(QWidget* page) {
    page->setAutoFillBackground(true);
    QPalette palette = page->palette();
    palette.setColor(QPalette::Window, QColor(18, 18, 18));
    page->setPalette(palette);
}

QPushButton* makeBackButton(QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setIcon(Assets::symbol(QStringLiteral("chevron.left"), 22));
    button->setIconSize(QSize(22, 22));
    button->setFlat(true);
    button->setCursor(Qt::PointingHandCursor);
    button->setAccessibleName(QObject::tr("Back"));
    button->setStyleSheet(QStringLiteral("QPushButton { border: none; background: transparent; }"));
    return button;
}

QLabel* makeTitleLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setAlignment(Qt::AlignCenter);
    label->setFont(FontList::font(QStringLiteral("AsimovWid"), 18));
    label->setStyleSheet(QStringLiteral("color: white;"));
    return label;
}

} // namespace OverlayStyle
