#include "platform/NavigationController.h"

#include "platform/Animations.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace {
constexpr double kPushDuration = 0.35;
}

NavigationController::NavigationController(ViewController* root, QWidget* parent) : ViewController(parent) {
    bar_ = new QWidget(this);
    bar_->setObjectName(QStringLiteral("navigationBar"));
    auto* barLayout = new QHBoxLayout(bar_);
    barLayout->setContentsMargins(8, 0, 8, 0);
    backButton_ = new QPushButton(QStringLiteral("‹ Back"), bar_);
    backButton_->setObjectName(QStringLiteral("navigationBackButton"));
    backButton_->setFlat(true);
    backButton_->setCursor(Qt::PointingHandCursor);
    titleLabel_ = new QLabel(bar_);
    titleLabel_->setAlignment(Qt::AlignCenter);
    barLayout->addWidget(backButton_);
    barLayout->addWidget(titleLabel_, 1);
    barLayout->addSpacing(backButton_->sizeHint().width());
    connect(backButton_, &QPushButton::clicked, this, [this]() { popViewController(true); });
    if (root)
        pushViewController(root, false);
}

QRect NavigationController::contentRect() const {
    const int top = barHidden_ ? 0 : kNavigationBarHeight;
    return QRect(0, top, width(), std::max(0, height() - top));
}

void NavigationController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    layoutStack();
}

void NavigationController::layoutStack() {
    bar_->setGeometry(0, 0, width(), kNavigationBarHeight);
    bar_->setVisible(!barHidden_);
    const QRect content = contentRect();
    for (const auto& controller : stack_) {
        if (controller)
            controller->setGeometry(content);
    }
}

void NavigationController::updateBar() {
    ViewController* top = topViewController();
    titleLabel_->setText(top ? top->windowTitle() : QString());
    backButton_->setVisible(stack_.size() > 1);
}

QList<ViewController*> NavigationController::viewControllers() const {
    QList<ViewController*> result;
    for (const auto& controller : stack_) {
        if (controller)
            result.append(controller);
    }
    return result;
}

ViewController* NavigationController::topViewController() const {
    for (auto it = stack_.crbegin(); it != stack_.crend(); ++it) {
        if (*it)
            return *it;
    }
    return nullptr;
}

void NavigationController::setNavigationBarHidden(bool hidden, bool /*animated*/) {
    barHidden_ = hidden;
    layoutStack();
}

void NavigationController::transition(ViewController* from, ViewController* to, bool forward, bool animated,
                                      std::function<void()> done) {
    const QRect content = contentRect();
    if (to) {
        to->setParent(this);
        to->setGeometry(content);
        to->loadViewIfNeeded();
        to->show();
        to->raise();
    }
    if (!animated || !from || !to) {
        if (from)
            from->hide();
        if (done)
            done();
        return;
    }
    // Pushes slide the new screen in from the right; pops slide the top screen out to the right.
    QPointer<ViewController> fromGuard(from);
    QPointer<ViewController> toGuard(to);
    const int w = content.width();
    if (!forward)
        from->raise();
    Animations::animate(
        this, kPushDuration,
        [=](double p) {
            if (forward && toGuard)
                toGuard->move(content.x() + static_cast<int>((1.0 - p) * w), content.y());
            if (!forward && fromGuard)
                fromGuard->move(content.x() + static_cast<int>(p * w), content.y());
        },
        [=](bool) {
            if (fromGuard) {
                fromGuard->hide();
                fromGuard->move(content.topLeft());
            }
            if (toGuard)
                toGuard->move(content.topLeft());
            if (done)
                done();
        },
        AnimationCurve::easeOut);
}

void NavigationController::pushViewController(ViewController* controller, bool animated) {
    if (!controller || stack_.contains(controller))
        return;
    ViewController* previous = topViewController();
    stack_.append(controller);
    updateBar();
    transition(previous, controller, true, animated && isVisible(), {});
}

ViewController* NavigationController::popViewController(bool animated) {
    if (viewControllers().size() <= 1)
        return nullptr;
    ViewController* popped = topViewController();
    stack_.removeAll(QPointer<ViewController>(popped));
    ViewController* revealed = topViewController();
    updateBar();
    QPointer<ViewController> guard(popped);
    transition(popped, revealed, false, animated && isVisible(), [guard]() {
        if (guard)
            guard->deleteLater();
    });
    return popped;
}

void NavigationController::popToRootViewController(bool animated) {
    while (viewControllers().size() > 2) {
        ViewController* middle = stack_.takeAt(stack_.size() - 2);
        if (middle)
            middle->deleteLater();
    }
    popViewController(animated);
}

void NavigationController::setViewControllers(const QList<ViewController*>& controllers, bool animated) {
    ViewController* previous = topViewController();
    for (const auto& old : stack_) {
        if (old && !controllers.contains(old.data()) && old != previous)
            old->deleteLater();
    }
    stack_.clear();
    for (ViewController* controller : controllers) {
        if (!controller)
            continue;
        stack_.append(controller);
        controller->setParent(this);
        controller->hide();
    }
    ViewController* top = topViewController();
    updateBar();
    if (previous == top) {
        if (top)
            top->show();
        return;
    }
    const bool previousKept = previous && controllers.contains(previous);
    QPointer<ViewController> guard(previous);
    transition(previous, top, true, animated && isVisible(), [guard, previousKept]() {
        if (guard && !previousKept)
            guard->deleteLater();
    });
}
