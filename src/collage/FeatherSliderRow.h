#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QSlider;
class SymbolIconView;
class TickMarksView;

// One feather control: an icon tile, a title, a 0…100 slider over a tick scale, and a pill with the
// rounded value.
//
// QSlider only has integer positions, so the slider runs over 0…1000 internally and a value is its
// position divided by 10. What the row passes on is that value unrounded, so a drag moves in tenths
// while the pill shows whole numbers.
class FeatherSliderRow : public QWidget {
    Q_OBJECT
public:
    FeatherSliderRow(const QString& symbolName, const QString& title, QWidget* parent = nullptr);

    static constexpr double minimumValue = 0.0;
    static constexpr double maximumValue = 100.0;
    // Slider positions per unit of value.
    static constexpr int resolution = 10;
    static constexpr int rowHeight = 38;

    // Fires on every change made by the user (drag, click, keys, wheel) with the unrounded value.
    std::function<void(double)> onValueChanged;

    // Shows `value` (clamped to 0…100) without firing onValueChanged.
    void setValue(double value);
    double value() const;

    QSlider* slider() const { return slider_; }
    QLabel* titleLabel() const { return titleLabel_; }
    QLabel* valueLabel() const { return valueLabel_; }
    SymbolIconView* iconView() const { return iconView_; }
    TickMarksView* tickMarksView() const { return tickMarksView_; }

private:
    void sliderChanged(int position);
    void showValue(double value);

    QWidget* iconTile_ = nullptr;
    SymbolIconView* iconView_ = nullptr;
    QLabel* titleLabel_ = nullptr;
    QSlider* slider_ = nullptr;
    TickMarksView* tickMarksView_ = nullptr;
    QWidget* valuePill_ = nullptr;
    QLabel* valueLabel_ = nullptr;
    bool loading_ = false;
};
