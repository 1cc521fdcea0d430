#include "platform/AppWindow.h"

#include "platform/Screen.h"
#include "platform/ViewController.h"

#include <QGuiApplication>
#include <QPointer>

namespace {
QPointer<AppWindow> currentKeyWindow;
}

AppWindow::AppWindow(QWidget* parent) : QWidget(parent) {
    setWindowTitle(QStringLiteral("Lumivex"));
    setObjectName(QStringLiteral("appWindow"));
    setMinimumSize(320, 568);
    const QSizeF points = Screen::main().size();
    resize(static_cast<int>(points.width()), static_cast<int>(points.height()));
    setAutoFillBackground(true);
    QPalette p = palette();
    p.setColor(QPalette::Window, Qt::black);
    setPalette(p);
}

AppWindow::~AppWindow() = default;

ViewController* AppWindow::rootViewController() const {
    return root_.data();
}

void AppWindow::setRootViewController(ViewController* controller) {
    if (controller == root_)
        return;
    QPointer<ViewController> old = root_;
    root_ = controller;
    if (controller) {
        controller->setParent(this);
        controller->setGeometry(rect());
        controller->loadViewIfNeeded();
        controller->show();
        controller->lower();
    }
    if (old) {
        // Screens the old root presented are children of this window too; they go with it.
        for (ViewController* presented = old->presentedViewController(); presented;) {
            ViewController* next = presented->presentedViewController();
            presented->hide();
            presented->deleteLater();
            presented = next;
        }
        old->hide();
        old->deleteLater();
    }
}

void AppWindow::makeKeyAndVisible() {
    currentKeyWindow = this;
    show();
    // The offscreen platform has no window stacking and warns about trying.
    if (QGuiApplication::platformName() != QLatin1String("offscreen")) {
        raise();
        activateWindow();
    }
}

AppWindow* AppWindow::keyWindow() {
    return currentKeyWindow;
}

void AppWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (root_)
        root_->setGeometry(rect());
    if (currentKeyWindow == this)
        Screen::main().setSize(QSizeF(size()));
}
