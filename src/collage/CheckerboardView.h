#pragma once

#include <QColor>
#include <QWidget>

// The chequered ground that shows through transparent parts of a layer's picture.
class CheckerboardView : public QWidget {
    Q_OBJECT
public:
    explicit CheckerboardView(QWidget* parent = nullptr);

    static constexpr int tileSize = 10;
    static QColor lightColor() { return QColor::fromRgbF(0.94f, 0.94f, 0.94f); }
    static QColor darkColor() { return QColor::fromRgbF(0.82f, 0.82f, 0.82f); }

protected:
    void paintEvent(QPaintEvent* event) override;
};
