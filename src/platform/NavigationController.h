#pragma once

#include "platform/ViewController.h"

#include <QList>
#include <QPointer>

class QLabel;
class QPushButton;

// A stack of screens, the top one shown, with an optional bar holding a back button and the title.
class NavigationController : public ViewController {
    Q_OBJECT
public:
    explicit NavigationController(ViewController* root, QWidget* parent = nullptr);

    void pushViewController(ViewController* controller, bool animated);
    // Removes the top screen (never the root) and answers it; it is deleted once out of sight.
    ViewController* popViewController(bool animated);
    void popToRootViewController(bool animated);
    void setViewControllers(const QList<ViewController*>& controllers, bool animated);

    QList<ViewController*> viewControllers() const;
    ViewController* topViewController() const;

    void setNavigationBarHidden(bool hidden, bool animated = false);
    bool isNavigationBarHidden() const { return barHidden_; }

    static constexpr int kNavigationBarHeight = 44;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QRect contentRect() const;
    void layoutStack();
    void updateBar();
    void transition(ViewController* from, ViewController* to, bool forward, bool animated,
                    std::function<void()> done);

    QList<QPointer<ViewController>> stack_;
    QWidget* bar_ = nullptr;
    QPushButton* backButton_ = nullptr;
    QLabel* titleLabel_ = nullptr;
    bool barHidden_ = false;
};
