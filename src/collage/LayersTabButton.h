#pragma once

#include <QAbstractButton>

// The header button that opens the layers panel: a translucent filled pill with the layers symbol and
// "Layers" on one line.
class LayersTabButton : public QAbstractButton {
    Q_OBJECT
public:
    explicit LayersTabButton(QWidget* parent = nullptr);

    static constexpr int padding = 8;
    static constexpr int minimumHeight = 40;
    static constexpr double cornerRadius = 10.0;
    static QString symbolName() { return QStringLiteral("square.3.layers.3d"); }

    // Draws the layers symbol into `rect`, or three stacked sheets when its picture is not installed.
    static void drawLayersSymbol(QPainter& painter, const QRectF& rect, const QColor& tint);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QSizeF iconSize() const;
};
