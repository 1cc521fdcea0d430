#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QImage>

// A button of the filter strip: the look's thumbnail aspect-filled and clipped to rounded corners, with a
// border that marks the chosen look.
class FilterThumbnailButton : public QAbstractButton {
    Q_OBJECT
public:
    static constexpr double cornerRadius = 5.0;

    explicit FilterThumbnailButton(int tag, QImage thumbnail, QWidget* parent = nullptr);

    int tag() const { return tag_; }
    const QImage& thumbnail() const { return thumbnail_; }

    double borderWidth() const { return borderWidth_; }
    QColor borderColor() const { return borderColor_; }
    void setBorder(double width, const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int tag_;
    QImage thumbnail_;
    double borderWidth_ = 1.0;
    QColor borderColor_ = Qt::transparent;
};
