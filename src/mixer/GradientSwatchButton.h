#pragma once

#include "platform/Color.h"

#include <QPushButton>

// One end of the gradient: a filled colour swatch with its label ("Color 1", "Color 2") under it.
class GradientSwatchButton : public QPushButton {
    Q_OBJECT
public:
    explicit GradientSwatchButton(const QString& label, QWidget* parent = nullptr);

    void setSwatchColor(const Color& color);
    Color swatchColor() const { return color_; }
    QString label() const { return label_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString label_;
    Color color_;
};
