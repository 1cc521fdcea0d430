#pragma once

#include <QWidget>
#include <functional>

// Base of the editor's bottom-sheet cells: a painted card that dims while pressed and reports a tap
// when released inside.
class CollageCell : public QWidget {
    Q_OBJECT
public:
    explicit CollageCell(QWidget* parent = nullptr);

    std::function<void()> onTap;

    bool isSelected() const { return selected_; }
    bool isPressed() const { return pressed_; }

protected:
    void setSelected(bool selected) { selected_ = selected; }
    // Opacity the subclass paints with, lowered while a finger is down.
    double contentOpacity() const { return pressed_ ? 0.6 : 1.0; }

    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool selected_ = false;
    bool pressed_ = false;
};
