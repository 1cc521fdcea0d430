#include "platform/ViewController.h"

#include "platform/Animations.h"
#include "platform/NavigationController.h"

#include <QEvent>
#include <QPainter>

namespace {
constexpr double kPresentDuration = 0.3;
constexpr int kSheetTopInset = 48;
} // namespace

ViewController::ViewController(QWidget* parent) : QWidget(parent) {
    setAutoFillBackground(false);
}

ViewController::~ViewController() {
    if (presentationHost_)
        presentationHost_->removeEventFilter(this);
}

void ViewController::loadViewIfNeeded() {
    if (viewLoaded_)
        return;
    viewLoaded_ = true;
    viewDidLoad();
}

NavigationController* ViewController::navigationController() const {
    for (QWidget* w = parentWidget(); w; w = w->parentWidget()) {
        if (auto* nav = qobject_cast<NavigationController*>(w))
            return nav;
    }
    return nullptr;
}

void ViewController::showEvent(QShowEvent* event) {
    loadViewIfNeeded();
    QWidget::showEvent(event);
    if (!appeared_) {
        appeared_ = true;
        viewWillAppear(false);
        viewDidAppear(false);
    }
}

void ViewController::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (appeared_ && !isVisible()) {
        appeared_ = false;
        viewWillDisappear(false);
        viewDidDisappear(false);
    }
}

QRect ViewController::presentationRect(ModalPresentationStyle style, const QRect& host) {
    if (style == ModalPresentationStyle::pageSheet)
        return host.adjusted(0, kSheetTopInset, 0, 0);
    return host;
}

bool ViewController::eventFilter(QObject* watched, QEvent* event) {
    // Keeps a presented screen sized to the window it lives in.
    if (watched == presentationHost_ && event->type() == QEvent::Resize && presenting_)
        setGeometry(presentationRect(presentationStyle_, presentationHost_->rect()));
    return QWidget::eventFilter(watched, event);
}

void ViewController::present(ViewController* controller, bool animated, std::function<void()> completion) {
    if (!controller || controller == this)
        return;
    if (presented_) {
        presented_->present(controller, animated, std::move(completion));
        return;
    }
    QWidget* host = window();
    presented_ = controller;
    controller->presenting_ = this;
    controller->presentationHost_ = host;
    controller->setParent(host);
    controller->setAttribute(Qt::WA_StyledBackground, true);
    if (controller->presentationStyle_ == ModalPresentationStyle::fullScreen &&
        !controller->autoFillBackground() && controller->styleSheet().isEmpty()) {
        controller->setAutoFillBackground(true);
    }
    host->installEventFilter(controller);
    const QRect target = presentationRect(controller->presentationStyle_, host->rect());
    // Raised before it loads, so that whatever it presents while loading stays above it.
    controller->raise();
    controller->setGeometry(target);
    controller->loadViewIfNeeded();
    controller->show();
    controller->setFocus();
    if (!animated) {
        if (completion)
            completion();
        return;
    }
    QPointer<ViewController> guard(controller);
    const int startY = host->height();
    controller->move(target.x(), startY);
    Animations::animate(
        controller, kPresentDuration,
        [guard, target, startY](double p) {
            if (guard)
                guard->move(target.x(), static_cast<int>(Animations::interpolate(startY, target.y(), p)));
        },
        [completion](bool) {
            if (completion)
                completion();
        },
        AnimationCurve::easeOut);
}

void ViewController::dismiss(bool animated, std::function<void()> completion) {
    if (presented_) {
        dismissPresented(animated, std::move(completion));
        return;
    }
    if (presenting_)
        presenting_->dismissPresented(animated, std::move(completion));
}

void ViewController::dismissPresented(bool animated, std::function<void()> completion) {
    QPointer<ViewController> child = presented_;
    if (!child)
        return;
    // Whatever the dismissed screen presents goes with it.
    if (child->presented_)
        child->dismissPresented(false, {});
    presented_ = nullptr;
    child->presenting_ = nullptr;
    auto finish = [child, completion]() {
        if (child) {
            child->hide();
            child->deleteLater();
        }
        if (completion)
            completion();
    };
    if (!animated) {
        finish();
        return;
    }
    QWidget* host = child->presentationHost_;
    const int startY = child->y();
    const int endY = host ? host->height() : startY + child->height();
    Animations::animate(
        child, kPresentDuration,
        [child, startY, endY](double p) {
            if (child)
                child->move(child->x(), static_cast<int>(Animations::interpolate(startY, endY, p)));
        },
        [finish](bool) { finish(); }, AnimationCurve::easeIn);
}
