#pragma once

#include "platform/Color.h"

#include <QWidget>
#include <optional>

class ImageView;
class PreviewBlurView;

// The square preview of the background picker: a background colour, a gradient from the top-left
// corner to the bottom-right one when one is set, the picture view over them and a light blur over
// everything, whose strength is a fraction from 0 (none) to 1. The blur is a live effect of the
// preview; it changes no picture.
class CustomBackgroundPreviewView : public QWidget {
    Q_OBJECT
public:
    explicit CustomBackgroundPreviewView(QWidget* parent = nullptr);

    ImageView* imageView() const { return imageView_; }

    void setBackgroundColor(const QColor& color);
    QColor backgroundColor() const { return background_; }
    void setGradient(std::optional<std::pair<QColor, QColor>> colors);
    const std::optional<std::pair<QColor, QColor>>& gradient() const { return gradient_; }
    void setBlurFraction(double fraction);
    double blurFraction() const { return blurFraction_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    ImageView* imageView_ = nullptr;
    PreviewBlurView* blurView_ = nullptr;
    QColor background_;
    std::optional<std::pair<QColor, QColor>> gradient_;
    double blurFraction_ = 0.0;
};
