#pragma once

#include "platform/Color.h"
#include "platform/ViewController.h"

#include <QList>
#include <functional>

class QPushButton;

// A sheet of colour swatches: twelve hues in eight shades and a row of greys, opaque only. Every tap
// reports its colour at once through onColorChanged; there is no confirmation. "Done" dismisses.
class ColorPicker : public ViewController {
    Q_OBJECT
public:
    explicit ColorPicker(Color initial = Color::white(), QWidget* parent = nullptr);

    std::function<void(const Color&)> onColorChanged;

    Color selectedColor() const { return selected_; }
    const QList<QPushButton*>& swatches() const { return swatches_; }
    QPushButton* doneButton() const { return doneButton_; }
    // The swatch colours in grid order, row by row.
    static QList<Color> palette();

    // What a tap on a swatch does.
    void pick(const Color& color);

protected:
    void viewDidLoad() override;
    void paintEvent(QPaintEvent* event) override;

private:
    Color selected_;
    QList<QPushButton*> swatches_;
    QPushButton* doneButton_ = nullptr;
};
