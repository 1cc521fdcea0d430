#pragma once

#include "platform/ViewController.h"

#include <QColor>
#include <QPointer>

class QVBoxLayout;

// A sheet that rises from the bottom over a dimmed screen: a clear area on top that closes it when
// tapped, and a container with rounded top corners that follows a downward drag and closes when
// dragged far enough. Subclasses fill `containerLayout()`.
class BottomSheetController : public ViewController {
    Q_OBJECT
public:
    explicit BottomSheetController(QWidget* parent = nullptr);

    // A white of 0.01 at alpha 0.6: a dark veil over what the sheet covers.
    static QColor dimmingColor();

    QColor backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(const QColor& color);

    QWidget* topView() const { return topView_; }
    QWidget* containerView() const { return containerView_; }
    double containerCornerRadius() const { return cornerRadius_; }
    double containerHeight() const { return containerHeight_; }
    void setContainerHeight(double height);

    // The container's downward offset while it is dragged.
    double containerTranslation() const { return translation_; }
    // A drag must pass this distance to close the sheet.
    double dismissThreshold() const { return height() / 3.5; }

    // The container's pan recogniser, in its two phases; `translationY` counts from the press.
    void panChanged(double translationY);
    void panEnded(double translationY);

    // Clears the veil at once, so it does not linger during the slide, and dismisses animated.
    void dismissSheet(std::function<void()> completion = {});

protected:
    void viewDidLoad() override;
    void setContainerCornerRadius(double radius);
    // A sheet that only closes from its top area and its own controls does not follow a drag.
    void setDraggable(bool draggable) { draggable_ = draggable; }
    QVBoxLayout* containerLayout() const { return containerLayout_; }

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void layoutSheet();
    // A press, drag or release on the container or anything inside it; answers whether it was taken.
    bool handleContainerMouse(QWidget* target, QEvent* event);

    QColor backgroundColor_;
    QWidget* topView_ = nullptr;
    QWidget* containerView_ = nullptr;
    QVBoxLayout* containerLayout_ = nullptr;
    double cornerRadius_ = 30;
    double containerHeight_ = 400;
    double translation_ = 0;
    double pressY_ = 0;
    bool panning_ = false;
    bool draggable_ = true;
    QPointer<QWidget> pressTarget_;
};
