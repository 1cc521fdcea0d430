#pragma once

#include "platform/Color.h"

#include <QAbstractButton>
#include <QList>
#include <QScrollArea>
#include <QStringList>
#include <functional>

// One round swatch of the colour strip, 30 points across with a white ring; chosen, it is drawn 1.6 times
// as large.
class ColorSwatchButton : public QAbstractButton {
    Q_OBJECT
public:
    ColorSwatchButton(int tag, Color color, QWidget* parent = nullptr);
    int tag() const { return tag_; }
    Color color() const { return color_; }
    double scale() const { return scale_; }
    void setScale(double scale);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int tag_;
    Color color_;
    double scale_ = 1.0;
};

// The strip of caption colours: one swatch per entry of the swatch table, 60 points apart, starting half the
// strip's width from the left so the first can stand in the middle. The swatches are made on the main
// queue after the strip, so the panel opens at once. A tap enlarges the swatch, reports its colour and
// scrolls it to the middle.
class ColorSwatchStripView : public QScrollArea {
    Q_OBJECT
public:
    static constexpr int swatchSide = 30, swatchStep = 60, swatchY = 25;

    // "color-wheel" and then the caption colours in families of tints, some repeated on purpose.
    static const QStringList& swatchTable();

    explicit ColorSwatchStripView(QWidget* parent = nullptr);

    std::function<void(Color)> onColorChosen;
    const QList<ColorSwatchButton*>& swatches() const { return swatches_; }
    void buttonTapped(ColorSwatchButton* sender);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildSwatches();
    void placeSwatches();

    QWidget* content_ = nullptr;
    QList<ColorSwatchButton*> swatches_;
};
