#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QSlider;
class SymbolIconView;

// A row of the background picker: icon, title, slider and the rounded value. The slider runs in tenths
// internally; the callback gets the exact value and the label shows it rounded to a whole number.
class CustomBackgroundSliderRow : public QWidget {
    Q_OBJECT
public:
    CustomBackgroundSliderRow(const QString& symbolName, const QString& title, double minimum, double maximum,
                              QWidget* parent = nullptr);

    static constexpr int resolution = 10;
    static constexpr int rowHeight = 32;

    std::function<void(double)> onValueChanged;

    // Shows `value` (clamped) without firing onValueChanged.
    void setValue(double value);
    double value() const;

    SymbolIconView* iconView() const { return iconView_; }
    QLabel* titleLabel() const { return titleLabel_; }
    QSlider* slider() const { return slider_; }
    QLabel* valueLabel() const { return valueLabel_; }

private:
    void showValue(double value);

    SymbolIconView* iconView_ = nullptr;
    QLabel* titleLabel_ = nullptr;
    QSlider* slider_ = nullptr;
    QLabel* valueLabel_ = nullptr;
};
