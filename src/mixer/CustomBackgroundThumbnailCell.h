#pragma once

#include "platform/Image.h"

#include <QAbstractButton>

// One stock picture of the catalogue, 88 by 88, aspect-filled and rounded, with a blue ring when it is
// the selected one.
class CustomBackgroundThumbnailCell : public QAbstractButton {
    Q_OBJECT
public:
    explicit CustomBackgroundThumbnailCell(QWidget* parent = nullptr);
    static constexpr int side = 88;

    void configure(ImagePtr image, bool isSelected);
    const ImagePtr& image() const { return image_; }
    bool isRingShown() const { return ringShown_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ImagePtr image_;
    QImage thumbnail_;
    bool ringShown_ = false;
};
