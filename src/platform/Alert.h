#pragma once

#include "platform/ViewController.h"

#include <QList>
#include <functional>

class QPushButton;

enum class AlertActionStyle { defaultStyle, cancel, destructive };

struct AlertAction {
    QString title;
    AlertActionStyle style = AlertActionStyle::defaultStyle;
    std::function<void()> handler;
};

// A card in the middle of the window with a title, a message and buttons. Tapping a button
// dismisses the card and then runs the action's handler. Return picks the first default action,
// Escape the cancel action.
class Alert : public ViewController {
    Q_OBJECT
public:
    Alert(const QString& title, const QString& message, QWidget* parent = nullptr);

    void addAction(AlertAction action);

    QString title() const { return title_; }
    QString message() const { return message_; }
    const QList<AlertAction>& actions() const { return actions_; }
    QPushButton* buttonForAction(const QString& title) const;

    // Acts as a tap on the button with that title; answers false when there is none.
    bool triggerAction(const QString& title);

    // The alert an open window shows on top, if any (for callers and tests that look for it).
    static Alert* visibleAlert(QWidget* window);

protected:
    void viewDidLoad() override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void trigger(int index);

    QString title_;
    QString message_;
    QList<AlertAction> actions_;
    QList<QPushButton*> buttons_;
    QWidget* card_ = nullptr;
    bool triggered_ = false;
};
