#include "mixer/GradientColorPickerViewController.h"

#include "mixer/GradientSwatchButton.h"
#include "platform/ColorPicker.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>

namespace {
// The phone's system purple and system orange.
constexpr Color kSystemPurple = Color::rgb(175 / 255.0, 82 / 255.0, 222 / 255.0);
constexpr Color kSystemOrange = Color::rgb(1.0, 149 / 255.0, 0.0);
} // namespace

// The gradient from the top-left corner to the bottom-right one, rounded by 16.
class GradientPreviewView : public QWidget {
public:
    using QWidget::QWidget;
    Color start, end;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QLinearGradient gradient(QPointF(0, 0), QPointF(width(), height()));
        gradient.setColorAt(0, start.toQColor());
        gradient.setColorAt(1, end.toQColor());
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()), 16, 16);
        painter.fillPath(path, gradient);
    }
};

GradientColorPickerViewController::GradientColorPickerViewController(QWidget* parent)
    : ViewController(parent), startColor_(kSystemPurple), endColor_(kSystemOrange) {
    setObjectName(QStringLiteral("gradientColorPicker"));
    setModalPresentationStyle(ModalPresentationStyle::pageSheet);
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("#gradientColorPicker { background: #1c1c1e; }"));
}

QWidget* GradientColorPickerViewController::previewView() const {
    return previewView_;
}

void GradientColorPickerViewController::viewDidLoad() {
    previewView_ = new GradientPreviewView(this);
    startSwatchButton_ = new GradientSwatchButton(QStringLiteral("Color 1"), this);
    endSwatchButton_ = new GradientSwatchButton(QStringLiteral("Color 2"), this);
    confirmButton_ = new QPushButton(QStringLiteral("Use Gradient"), this);
    confirmButton_->setObjectName(QStringLiteral("useGradientButton"));
    confirmButton_->setFixedSize(200, 48);
    confirmButton_->setCursor(Qt::PointingHandCursor);
    confirmButton_->setStyleSheet(
        QStringLiteral("QPushButton { color: white; background: #0a84ff; border: none; "
                       "border-radius: 24px; font-size: 17px; font-weight: 600; }"));
    connect(startSwatchButton_, &QPushButton::clicked, this, [this]() { didTapSwatch(Swatch::start); });
    connect(endSwatchButton_, &QPushButton::clicked, this, [this]() { didTapSwatch(Swatch::end); });
    connect(confirmButton_, &QPushButton::clicked, this, &GradientColorPickerViewController::didTapConfirm);
    refresh();
}

void GradientColorPickerViewController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    if (!previewView_)
        return;
    const int w = width();
    previewView_->setGeometry(24, 24, w - 48, 140);
    const int swatchWidth = (w - 48 - 16) / 2;
    startSwatchButton_->setGeometry(24, 24 + 140 + 24, swatchWidth, 56);
    endSwatchButton_->setGeometry(24 + swatchWidth + 16, 24 + 140 + 24, swatchWidth, 56);
    confirmButton_->move((w - 200) / 2, startSwatchButton_->geometry().bottom() + 1 + 32);
}

void GradientColorPickerViewController::refresh() {
    if (!previewView_)
        return;
    startSwatchButton_->setSwatchColor(startColor_);
    endSwatchButton_->setSwatchColor(endColor_);
    previewView_->start = startColor_;
    previewView_->end = endColor_;
    previewView_->update();
}

void GradientColorPickerViewController::didTapSwatch(Swatch swatch) {
    activeSwatch_ = swatch;
    auto* picker = new ColorPicker(swatch == Swatch::start ? startColor_ : endColor_);
    QPointer<GradientColorPickerViewController> self(this);
    picker->onColorChanged = [self](const Color& color) {
        if (self)
            self->colorPicked(color);
    };
    present(picker, true);
}

void GradientColorPickerViewController::colorPicked(const Color& color) {
    if (!activeSwatch_)
        return;
    (*activeSwatch_ == Swatch::start ? startColor_ : endColor_) = color;
    refresh();
}

void GradientColorPickerViewController::didTapConfirm() {
    if (onConfirm)
        onConfirm(startColor_, endColor_);
    dismiss(true);
}
