#include "shell/TutorialStyle.h"

#include "platform/Assets.h"

#include <QLabel>
#include <QPushButton>

namespace TutorialStyle {

QPushButton* makeBackButton(QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setObjectName(QStringLiteral("backButton"));
    button->setFixedSize(kBackButtonSize, kBackButtonSize);
    button->setCursor(Qt::PointingHandCursor);
    button->setToolTip(QStringLiteral("Back"));
    const QIcon chevron = Assets::symbol(QStringLiteral("chevron.left"), kBackChevronSize);
    if (chevron.isNull()) {
        button->setText(QStringLiteral("‹"));
    } else {
        button->setIcon(chevron);
        button->setIconSize(QSize(kBackChevronSize, kBackChevronSize));
    }
    button->setStyleSheet(QStringLiteral("QPushButton { color: white; background: rgba(255,255,255,30);"
                                         " border: none; border-radius: 16px; font-size: 22px; }"));
    return button;
}

QPushButton* makeContinueButton(const QString& title, QWidget* parent) {
    auto* button = new QPushButton(title, parent);
    button->setObjectName(QStringLiteral("continueButton"));
    button->setFixedHeight(kButtonHeight);
    button->setCursor(Qt::PointingHandCursor);
    button->setDefault(true);
    button->setStyleSheet(QStringLiteral(
        "QPushButton { color: white; font-size: 17px; font-weight: 600; border: none; border-radius: 28px;"
        " background: qlineargradient(x1:0, y1:0, x2:1, y2:0, stop:0 #778ce5, stop:1 #a46be0); }"
        "QPushButton:pressed { background: #5f72c4; }"));
    return button;
}

QLabel* makeTitleLabel(const QString& text, const QString& objectName, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(objectName);
    label->setAlignment(Qt::AlignCenter);
    label->setStyleSheet(QStringLiteral("color: white; font-size: 30px; font-weight: 700;"));
    return label;
}

QLabel* makeSubtitleLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("subtitleLabel"));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setStyleSheet(QStringLiteral("color: rgba(255,255,255,178); font-size: 16px;"));
    return label;
}

QString pageStyleSheet() {
    return QStringLiteral("background: #0b0b10;");
}

} // namespace TutorialStyle
