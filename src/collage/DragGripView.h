#pragma once

#include <QColor>
#include <QWidget>

// The grip at the leading edge of a layer row: two columns of three round dots.
class DragGripView : public QWidget {
    Q_OBJECT
public:
    explicit DragGripView(QWidget* parent = nullptr);

    static constexpr double dotDiameter = 4.0;
    static QColor dotColor() { return QColor::fromRgbF(1, 1, 1, 0.35f); }

    // Centres of the six dots in a grip of `size`, spread evenly over it.
    static QList<QPointF> dotCentres(const QSizeF& size);

    QSize sizeHint() const override { return {20, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};
