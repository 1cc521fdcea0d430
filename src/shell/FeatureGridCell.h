#pragma once

#include "platform/Image.h"

#include <QAbstractButton>

// A card of the home grid: its artwork fitted inside, clipped, darkened while pressed. Until the artwork
// exists the card shows its title instead, so the screen stays usable.
class FeatureGridCell : public QAbstractButton {
    Q_OBJECT
public:
    explicit FeatureGridCell(QWidget* parent = nullptr);

    void configure(ImagePtr image, const QString& title);
    const ImagePtr& image() const { return image_; }
    QString title() const { return text(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ImagePtr image_;
    QImage upright_;
};
