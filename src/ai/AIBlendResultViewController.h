#pragma once

#include "platform/Image.h"
#include "platform/ViewController.h"

class GradientLabel;
class GradientPillButton;
class ImageView;
class QAbstractButton;
class QLabel;

// The finished blend on a glowing card; hold "Compare" to see the photo, "APPLY" to share it.
class AIBlendResultViewController : public ViewController {
    Q_OBJECT
public:
    AIBlendResultViewController(ImagePtr resultImage, ImagePtr originalImage, QWidget* parent = nullptr);

    const ImagePtr& resultImage() const { return resultImage_; }
    const ImagePtr& originalImage() const { return originalImage_; }

    // The card inside its guide: the guide's width, the picture's shape (square for a picture without
    // width), never taller than the guide, centred in it.
    static QRectF cardRect(const QRectF& guide, const QSizeF& pictureSize);

    void applyClick();

    QAbstractButton* backButton() const { return backButton_; }
    GradientPillButton* applyButton() const { return applyButton_; }
    GradientPillButton* compareButton() const { return compareButton_; }
    QWidget* imageCardView() const { return imageCardView_; }
    ImageView* resultImageView() const { return resultImageView_; }

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showPicture(const ImagePtr& picture);

    ImagePtr resultImage_;
    ImagePtr originalImage_;
    QAbstractButton* backButton_ = nullptr;
    QLabel* titlePrefixLabel_ = nullptr;
    GradientLabel* titleGradientLabel_ = nullptr;
    QWidget* titleStackView_ = nullptr;
    GradientPillButton* applyButton_ = nullptr;
    GradientPillButton* compareButton_ = nullptr;
    QWidget* imageCardView_ = nullptr;
    ImageView* resultImageView_ = nullptr;
};
