#pragma once

#include "ai/FaceSwapService.h"
#include "platform/ViewController.h"

#include <functional>

class BlendSpinnerView;
class ImageView;
class QLabel;

// Runs the two requests of a blend behind the blurred photo, with a spinner and a status line. It has
// no way back: the user waits for the picture or the failure.
class AIBlendProcessingViewController : public ViewController {
    Q_OBJECT
public:
    AIBlendProcessingViewController(ImagePtr sourceImage, ImagePtr targetImage,
                                    const FaceSwapService* service = &FaceSwapService::shared(),
                                    QWidget* parent = nullptr);

    std::function<void(ImagePtr)> onFinished;
    std::function<void(const FaceSwapError&)> onFailed;

    const ImagePtr& sourceImage() const { return sourceImage_; }
    const ImagePtr& targetImage() const { return targetImage_; }
    QLabel* statusLabel() const { return statusLabel_; }
    BlendSpinnerView* spinnerView() const { return spinnerView_; }

    // How long "Optimizing Effect..." stands before the picture is handed on.
    static constexpr double kOptimizingDelay = 0.9;

protected:
    void viewDidLoad() override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setStatus(const QString& text);
    void fail(const FaceSwapError& error);

    ImagePtr sourceImage_;
    ImagePtr targetImage_;
    const FaceSwapService* service_;
    ImageView* backgroundImageView_ = nullptr;
    QWidget* dimOverlayView_ = nullptr;
    QWidget* statusStackView_ = nullptr;
    BlendSpinnerView* spinnerView_ = nullptr;
    QLabel* statusLabel_ = nullptr;
};
