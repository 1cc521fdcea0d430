#pragma once

#include <QPointer>
#include <QWidget>

class ViewController;

// The program's one window: phone-shaped, holding the root screen and everything presented over it.
class AppWindow : public QWidget {
    Q_OBJECT
public:
    explicit AppWindow(QWidget* parent = nullptr);
    ~AppWindow() override;

    // Replaces the root screen at once; the old root and what it presented are deleted.
    void setRootViewController(ViewController* controller);
    ViewController* rootViewController() const;

    // Shows the window and makes it the one that receives input.
    void makeKeyAndVisible();

    // The window most recently made key, if it still exists.
    static AppWindow* keyWindow();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QPointer<ViewController> root_;
};
