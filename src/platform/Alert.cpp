#include "platform/Alert.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

Alert::Alert(const QString& title, const QString& message, QWidget* parent)
    : ViewController(parent), title_(title), message_(message) {
    setObjectName(QStringLiteral("alert"));
    setModalPresentationStyle(ModalPresentationStyle::overFullScreen);
    setFocusPolicy(Qt::StrongFocus);
}

void Alert::addAction(AlertAction action) {
    actions_.append(std::move(action));
    if (isViewLoaded()) {
        // Late actions still get a button.
        auto* layout = static_cast<QVBoxLayout*>(card_->layout());
        auto* button = new QPushButton(actions_.last().title, card_);
        const int index = static_cast<int>(actions_.size()) - 1;
        connect(button, &QPushButton::clicked, this, [this, index]() { trigger(index); });
        layout->addWidget(button);
        buttons_.append(button);
    }
}

void Alert::viewDidLoad() {
    auto* outer = new QVBoxLayout(this);
    outer->setAlignment(Qt::AlignCenter);
    card_ = new QWidget(this);
    card_->setObjectName(QStringLiteral("alertCard"));
    card_->setFixedWidth(270);
    card_->setAttribute(Qt::WA_StyledBackground, true);
    card_->setStyleSheet(QStringLiteral(
        "#alertCard { background: #2c2c2e; border-radius: 14px; }"
        "QLabel { color: white; }"
        "QPushButton { color: #0a84ff; background: transparent; border: none; border-top: 1px solid #3a3a3c;"
        " padding: 10px; font-size: 16px; }"
        "QPushButton[destructive=\"true\"] { color: #ff453a; }"
        "QPushButton[cancel=\"true\"] { font-weight: 600; }"));
    auto* layout = new QVBoxLayout(card_);
    layout->setContentsMargins(0, 18, 0, 0);
    layout->setSpacing(0);
    auto* titleLabel = new QLabel(title_, card_);
    titleLabel->setObjectName(QStringLiteral("alertTitle"));
    titleLabel->setAlignment(Qt::AlignCenter);
    titleLabel->setWordWrap(true);
    QFont titleFont = titleLabel->font();
    titleFont.setPointSizeF(13);
    titleFont.setBold(true);
    titleLabel->setFont(titleFont);
    auto* messageLabel = new QLabel(message_, card_);
    messageLabel->setObjectName(QStringLiteral("alertMessage"));
    messageLabel->setAlignment(Qt::AlignCenter);
    messageLabel->setWordWrap(true);
    messageLabel->setContentsMargins(16, 4, 16, 16);
    layout->addWidget(titleLabel);
    layout->addWidget(messageLabel);
    titleLabel->setVisible(!title_.isEmpty());
    messageLabel->setVisible(!message_.isEmpty());
    for (int i = 0; i < actions_.size(); ++i) {
        auto* button = new QPushButton(actions_[i].title, card_);
        button->setProperty("destructive", actions_[i].style == AlertActionStyle::destructive);
        button->setProperty("cancel", actions_[i].style == AlertActionStyle::cancel);
        button->setCursor(Qt::PointingHandCursor);
        connect(button, &QPushButton::clicked, this, [this, i]() { trigger(i); });
        layout->addWidget(button);
        buttons_.append(button);
    }
    outer->addWidget(card_);
}

void Alert::paintEvent(QPaintEvent*) {
    // Dims the screen behind the card.
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0, 0, 0, 100));
}

QPushButton* Alert::buttonForAction(const QString& title) const {
    for (int i = 0; i < actions_.size() && i < buttons_.size(); ++i) {
        if (actions_[i].title == title)
            return buttons_[i];
    }
    return nullptr;
}

bool Alert::triggerAction(const QString& title) {
    for (int i = 0; i < actions_.size(); ++i) {
        if (actions_[i].title == title) {
            trigger(i);
            return true;
        }
    }
    return false;
}

void Alert::trigger(int index) {
    if (triggered_ || index < 0 || index >= actions_.size())
        return;
    triggered_ = true;
    auto handler = actions_[index].handler;
    if (!presentingViewController()) {
        hide();
        if (handler)
            handler();
        return;
    }
    dismiss(false, [handler]() {
        if (handler)
            handler();
    });
}

void Alert::keyPressEvent(QKeyEvent* event) {
    const auto find = [this](auto pred) {
        for (int i = 0; i < actions_.size(); ++i) {
            if (pred(actions_[i].style))
                return i;
        }
        return -1;
    };
    if (event->key() == Qt::Key_Escape) {
        const int cancel = find([](AlertActionStyle s) { return s == AlertActionStyle::cancel; });
        trigger(cancel >= 0 ? cancel : (actions_.size() == 1 ? 0 : -1));
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        const int preferred = find([](AlertActionStyle s) { return s == AlertActionStyle::defaultStyle; });
        trigger(preferred >= 0 ? preferred : 0);
        return;
    }
    ViewController::keyPressEvent(event);
}

Alert* Alert::visibleAlert(QWidget* window) {
    if (!window)
        return nullptr;
    Alert* found = nullptr;
    for (Alert* alert : window->findChildren<Alert*>()) {
        if (alert->isVisible() && !alert->triggered_)
            found = alert;
    }
    return found;
}
