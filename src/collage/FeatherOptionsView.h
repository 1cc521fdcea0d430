#pragma once

#include <QWidget>
#include <functional>

class FeatherSliderRow;
class QLabel;

// The feather panel: a title over a horizontal and a vertical slider row. A pure control: it keeps no
// feather of its own and knows nothing of panes; the owner loads values into the rows and listens.
class FeatherOptionsView : public QWidget {
    Q_OBJECT
public:
    explicit FeatherOptionsView(QWidget* parent = nullptr);

    static constexpr int preferredHeight = 130;

    std::function<void(double)> onHorizontalFeatherChanged;
    std::function<void(double)> onVerticalFeatherChanged;

    FeatherSliderRow* horizontalRow() const { return horizontalRow_; }
    FeatherSliderRow* verticalRow() const { return verticalRow_; }
    QLabel* titleLabel() const { return titleLabel_; }

    QSize sizeHint() const override { return {390, preferredHeight}; }

private:
    QLabel* titleLabel_ = nullptr;
    FeatherSliderRow* horizontalRow_ = nullptr;
    FeatherSliderRow* verticalRow_ = nullptr;
};
