#pragma once

#include "platform/Color.h"
#include "platform/ViewController.h"

#include <functional>
#include <optional>

class GradientPreviewView;
class GradientSwatchButton;
class QPushButton;

// The sheet for a two-colour gradient: a preview, a swatch for each end that opens the colour picker on
// its colour, and "Use Gradient", which hands both colours to onConfirm and dismisses the sheet. It
// always opens on system purple and system orange.
class GradientColorPickerViewController : public ViewController {
    Q_OBJECT
public:
    enum class Swatch { start, end };

    explicit GradientColorPickerViewController(QWidget* parent = nullptr);

    std::function<void(Color start, Color end)> onConfirm;

    Color startColor() const { return startColor_; }
    Color endColor() const { return endColor_; }
    std::optional<Swatch> activeSwatch() const { return activeSwatch_; }
    GradientSwatchButton* startSwatchButton() const { return startSwatchButton_; }
    GradientSwatchButton* endSwatchButton() const { return endSwatchButton_; }
    QPushButton* confirmButton() const { return confirmButton_; }
    QWidget* previewView() const;

    void didTapSwatch(Swatch swatch);
    // A colour reported by the picker for the active swatch.
    void colorPicked(const Color& color);
    void didTapConfirm();

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();

    Color startColor_;
    Color endColor_;
    std::optional<Swatch> activeSwatch_;
    GradientPreviewView* previewView_ = nullptr;
    GradientSwatchButton* startSwatchButton_ = nullptr;
    GradientSwatchButton* endSwatchButton_ = nullptr;
    QPushButton* confirmButton_ = nullptr;
};
