#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>

class NavigationController;

enum class ModalPresentationStyle {
    fullScreen,         // covers the whole window, opaque
    overFullScreen,     // covers the whole window, what is behind stays visible
    overCurrentContext, // covers the presenting screen, what is behind stays visible
    pageSheet,          // a card from the bottom that leaves a strip of the screen behind visible
};

// A screen: a widget with a load-once hook, appearance callbacks and modal presentation.
// Presented screens are children of the window they appear in and are deleted when dismissed.
//
// A presented screen takes the input from everything under it: a clear shield beneath it swallows the
// clicks, wheel turns and touches meant for what it covers (the strip above a page sheet included).
// Dismissing or deleting a screen dismisses whatever it, or any screen inside it, presented.
// A full-screen presentation hides the screen it covers once it is up, and shows it again when it
// goes, so the covered screen hears viewWillDisappear/viewDidDisappear and later
// viewWillAppear/viewDidAppear; the other styles leave what they cover on screen and say nothing to it.
class ViewController : public QWidget {
    Q_OBJECT
public:
    explicit ViewController(QWidget* parent = nullptr);
    ~ViewController() override;

    // Builds the screen's contents once, before it is first shown (or when asked).
    void loadViewIfNeeded();
    bool isViewLoaded() const { return viewLoaded_; }

    NavigationController* navigationController() const;
    ViewController* presentingViewController() const { return presenting_; }
    ViewController* presentedViewController() const { return presented_; }

    ModalPresentationStyle modalPresentationStyle() const { return presentationStyle_; }
    void setModalPresentationStyle(ModalPresentationStyle style) { presentationStyle_ = style; }

    // Shows `controller` over this screen. When this screen already presents one, the new one is
    // presented by that one instead, as a stack.
    void present(ViewController* controller, bool animated, std::function<void()> completion = {});
    // Dismisses the screen this one presents, or this screen itself when it presents nothing.
    void dismiss(bool animated, std::function<void()> completion = {});

    // Geometry a presented screen takes inside `host` for its style.
    static QRect presentationRect(ModalPresentationStyle style, const QRect& host);

protected:
    virtual void viewDidLoad() {}
    virtual void viewWillAppear(bool /*animated*/) {}
    virtual void viewDidAppear(bool /*animated*/) {}
    virtual void viewWillDisappear(bool /*animated*/) {}
    virtual void viewDidDisappear(bool /*animated*/) {}

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    friend class NavigationController;
    void dismissPresented(bool animated, std::function<void()> completion);
    // The outermost screen this one sits in, short of the window: what a full-screen presentation covers.
    ViewController* presentationContext();
    // Dismisses, without animation, what this screen and every screen inside it present.
    void dismissEverythingPresentedWithin();

    bool viewLoaded_ = false;
    bool appeared_ = false;
    ModalPresentationStyle presentationStyle_ = ModalPresentationStyle::pageSheet;
    QPointer<ViewController> presenting_;
    QPointer<ViewController> presented_;
    QPointer<QWidget> presentationHost_;
    // On a presented screen: the shield under it, and the screen it hid by covering the window.
    QPointer<QWidget> shield_;
    QPointer<ViewController> coveredScreen_;
};
