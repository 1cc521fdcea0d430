#pragma once

#include "platform/Image.h"

#include <QAbstractButton>
#include <QSizeF>
#include <QString>
#include <optional>

class ImageView;
class QLabel;
class QPushButton;
class QSlider;
class QVBoxLayout;
class QWidget;

// Small pieces the format sheets are built of, so the four sheets look and behave as one family.
namespace SheetControls {

// The unticked and ticked check box artwork; a missing picture is a programmer's error.
ImagePtr checkboxImage(bool ticked);

// A check box's tap: showing "ic_checkbox" it turns to "ic_checkbox1" and answers true; showing anything
// else it turns to "ic_checkbox" and answers false.
bool toggleCheck(ImageView* check);

// The title line with the sheet's back button on the right.
QWidget* makeHeader(const QString& title, QPushButton** backButton, QWidget* parent);

QPushButton* makeDownloadButton(QWidget* parent);

// A slider over 0…1 in thousandths; `value` reads it as the single-precision value a slider gives.
QSlider* makeSlider(double minimum, double start, const QString& name, QWidget* parent);
float sliderValue(const QSlider* slider);

// A caption with a small grey box holding `valueLabel` on the right: the title line of a slider.
QWidget* makeValueRow(const QString& caption, QLabel* valueLabel, QWidget** valueView, QWidget* parent);

// A grey secondary line (pixel size, file size words).
QLabel* makeNote(const QString& name, QWidget* parent);

// The size part of a raster sheet: "Size" with its "1.0" value box, the slider from 0.1 and the pixel
// size line below it, added to `content`.
struct SizeRows {
    QLabel* valueLabel = nullptr;
    QWidget* valueView = nullptr;
    QSlider* slider = nullptr;
    QLabel* pixelLabel = nullptr;
};
SizeRows addSizeRows(QVBoxLayout* content, const QString& valueLabelName, QWidget* parent);

// What a move of the size slider shows: the value, and with a picture the scaled size in its label.
// Answers the scaled size in points, or nothing without a picture.
std::optional<QSizeF> showSliderSize(QLabel* valueLabel, QLabel* pixelLabel, const ImagePtr& picture,
                                     float value);

} // namespace SheetControls

// A row with a check box and a caption; a tap anywhere on it is one tap on the check box.
class CheckRowView : public QAbstractButton {
    Q_OBJECT
public:
    CheckRowView(const QString& caption, const QString& name, QWidget* parent = nullptr);
    ImageView* check() const { return check_; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ImageView* check_ = nullptr;
    QLabel* caption_ = nullptr;
};
