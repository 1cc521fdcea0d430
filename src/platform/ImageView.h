#pragma once

#include "platform/Image.h"

#include <QWidget>

enum class ContentMode { scaleToFill = 0, scaleAspectFit = 1, scaleAspectFill = 2, center = 4 };

// Shows one picture in a content mode, clipped to its bounds and an optional corner radius.
// Without a picture it draws nothing.
class ImageView : public QWidget {
    Q_OBJECT
public:
    explicit ImageView(QWidget* parent = nullptr);

    void setImage(ImagePtr image);
    const ImagePtr& image() const { return image_; }

    void setContentMode(ContentMode mode);
    ContentMode contentMode() const { return mode_; }

    void setCornerRadius(double radius);
    double cornerRadius() const { return cornerRadius_; }

    // Where the picture lands inside `bounds` for a content mode; pure, for drawing and tests.
    static QRectF targetRect(const QSizeF& imageSize, const QRectF& bounds, ContentMode mode);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ImagePtr image_;
    QImage upright_;
    ContentMode mode_ = ContentMode::scaleAspectFill;
    double cornerRadius_ = 0.0;
};
