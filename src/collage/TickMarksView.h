#pragma once

#include <QWidget>

// The decorative scale under a feather slider: evenly spaced thin vertical lines. Takes no input.
class TickMarksView : public QWidget {
    Q_OBJECT
public:
    explicit TickMarksView(QWidget* parent = nullptr);

    static constexpr int tickCount = 13;
    static constexpr double lineWidth = 1.2;
    static constexpr int preferredHeight = 6;

    // x of tick `index` (0 … tickCount − 1) in a view `width` wide; the first and last sit on the edges.
    static double tickX(int index, double width) { return index * width / (tickCount - 1); }

    QSize sizeHint() const override { return {120, preferredHeight}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};
