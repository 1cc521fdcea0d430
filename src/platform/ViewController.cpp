#include "platform/ViewController.h"

#include "platform/Animations.h"
#include "platform/NavigationController.h"

#include <QEvent>
#include <QPainter>

namespace {
constexpr double kPresentDuration = 0.3;
constexpr int kSheetTopInset = 48;

// Lies between a presented screen and what it covers and takes every pointer event aimed below.
class PresentationShield : public QWidget {
public:
    explicit PresentationShield(QWidget* host) : QWidget(host) {
        setAttribute(Qt::WA_NoSystemBackground);
        setAttribute(Qt::WA_AcceptTouchEvents);
        setFocusPolicy(Qt::NoFocus);
        setObjectName(QStringLiteral("presentationShield"));
    }

protected:
    bool event(QEvent* event) override {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::NativeGesture:
            event->accept();
            return true;
        default:
            return QWidget::event(event);
        }
    }
};
} // namespace

ViewController::ViewController(QWidget* parent) : QWidget(parent) {
    setAutoFillBackground(false);
}

ViewController::~ViewController() {
    if (presentationHost_)
        presentationHost_->removeEventFilter(this);
    delete shield_.data();
    // A screen that goes away takes what it presented with it; nothing may stay behind, orphaned.
    if (presented_) {
        presented_->presenting_ = nullptr;
        presented_->hide();
        presented_->deleteLater();
    }
    if (coveredScreen_)
        coveredScreen_->show();
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
    // Keeps a presented screen, and its shield, sized to the window it lives in.
    if (watched == presentationHost_ && event->type() == QEvent::Resize && presenting_) {
        setGeometry(presentationRect(presentationStyle_, presentationHost_->rect()));
        if (shield_)
            shield_->setGeometry(presentationHost_->rect());
    }
    return QWidget::eventFilter(watched, event);
}

ViewController* ViewController::presentationContext() {
    ViewController* context = this;
    for (QWidget* w = parentWidget(); w && !w->isWindow(); w = w->parentWidget()) {
        if (auto* controller = qobject_cast<ViewController*>(w))
            context = controller;
    }
    return context;
}

void ViewController::dismissEverythingPresentedWithin() {
    if (presented_)
        dismissPresented(false, {});
    for (ViewController* inner : findChildren<ViewController*>()) {
        if (inner->presented_)
            inner->dismissPresented(false, {});
    }
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
    auto* shield = new PresentationShield(host);
    shield->setGeometry(host->rect());
    shield->show();
    shield->raise();
    controller->shield_ = shield;
    // Raised before it loads, so that whatever it presents while loading stays above it.
    controller->raise();
    controller->setGeometry(target);
    controller->loadViewIfNeeded();
    controller->show();
    controller->setFocus();

    QPointer<ViewController> guard(controller);
    QPointer<ViewController> covered;
    if (controller->presentationStyle_ == ModalPresentationStyle::fullScreen && !isWindow())
        covered = presentationContext();
    // Once a full-screen screen is up, the one it covers has left the screen.
    auto presented = [guard, covered, completion]() {
        if (guard && covered && guard->presenting_ && covered->isVisible()) {
            guard->coveredScreen_ = covered;
            covered->hide();
        }
        if (completion)
            completion();
    };
    if (!animated) {
        presented();
        return;
    }
    const int startY = host->height();
    controller->move(target.x(), startY);
    Animations::animate(
        controller, kPresentDuration,
        [guard, target, startY](double p) {
            if (guard)
                guard->move(target.x(), static_cast<int>(Animations::interpolate(startY, target.y(), p)));
        },
        [presented](bool) { presented(); }, AnimationCurve::easeOut);
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
    // Whatever the dismissed screen, or a screen inside it, presents goes with it.
    child->dismissEverythingPresentedWithin();
    presented_ = nullptr;
    child->presenting_ = nullptr;
    // The covered screen comes back before the slide, so it is there to be seen under it.
    if (ViewController* covered = child->coveredScreen_) {
        child->coveredScreen_ = nullptr;
        covered->show();
    }
    auto finish = [child, completion]() {
        if (child) {
            child->hide();
            delete child->shield_.data();
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
