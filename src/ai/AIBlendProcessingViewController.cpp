#include "ai/AIBlendProcessingViewController.h"

#include "ai/AIBlendViews.h"
#include "platform/Animations.h"
#include "platform/Dispatch.h"
#include "platform/ImageView.h"

#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QVBoxLayout>

namespace {

// A dark, heavily blurred copy for the veil; blurred small and scaled back, which looks the same and
// costs a fraction.
ImagePtr darkBlurred(const ImagePtr& image) {
    if (!image)
        return nullptr;
    QImage small = image->uprightBitmap().scaled(120, 120, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    for (int pass = 0; pass < 3; ++pass)
        small = small
                    .scaled(small.width() / 2 + 1, small.height() / 2 + 1, Qt::IgnoreAspectRatio,
                            Qt::SmoothTransformation)
                    .scaled(small.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QPainter painter(&small);
    painter.fillRect(small.rect(), QColor(0, 0, 0, 90)); // the dark style of the blur
    painter.end();
    return Image::make(small);
}

} // namespace

AIBlendProcessingViewController::AIBlendProcessingViewController(ImagePtr sourceImage, ImagePtr targetImage,
                                                                 const FaceSwapService* service,
                                                                 QWidget* parent)
    : ViewController(parent), sourceImage_(std::move(sourceImage)), targetImage_(std::move(targetImage)),
      service_(service) {}

void AIBlendProcessingViewController::viewDidLoad() {
    backgroundImageView_ = new ImageView(this);
    backgroundImageView_->setContentMode(ContentMode::scaleAspectFill);
    backgroundImageView_->setImage(darkBlurred(sourceImage_));
    dimOverlayView_ = new QWidget(this);
    dimOverlayView_->setStyleSheet(QStringLiteral("background: rgba(0, 0, 0, 64);"));

    statusStackView_ = new QWidget(this);
    auto* stack = new QVBoxLayout(statusStackView_);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(16);
    spinnerView_ = new BlendSpinnerView(statusStackView_);
    stack->addWidget(spinnerView_, 0, Qt::AlignHCenter);
    statusLabel_ = new QLabel(statusStackView_);
    QFont font;
    font.setPixelSize(15);
    font.setWeight(QFont::DemiBold);
    statusLabel_->setFont(font);
    statusLabel_->setStyleSheet(QStringLiteral("color: rgba(255, 255, 255, 230);"));
    statusLabel_->setAlignment(Qt::AlignCenter);
    stack->addWidget(statusLabel_);

    setStatus(QStringLiteral("Uploading..."));
    QPointer<AIBlendProcessingViewController> self(this);
    service_->swapFaces(sourceImage_, targetImage_, [self](FaceSwapService::SwapResult submitted) {
        if (!self)
            return;
        if (const auto* error = std::get_if<FaceSwapError>(&submitted))
            return self->fail(*error);
        self->setStatus(QStringLiteral("Download Effect..."));
        self->service_->fetchResult(std::get<QString>(submitted),
                                    [self](FaceSwapService::FetchResult fetched) {
                                        if (!self)
                                            return;
                                        if (const auto* error = std::get_if<FaceSwapError>(&fetched))
                                            return self->fail(*error);
                                        const ImagePtr picture = std::get<ImagePtr>(fetched);
                                        self->setStatus(QStringLiteral("Optimizing Effect..."));
                                        Dispatch::main().asyncAfter(kOptimizingDelay, [self, picture] {
                                            if (self && self->onFinished)
                                                self->onFinished(picture);
                                        });
                                    });
    });
}

void AIBlendProcessingViewController::fail(const FaceSwapError& error) {
    if (onFailed)
        onFailed(error);
}

void AIBlendProcessingViewController::setStatus(const QString& text) {
    statusLabel_->setText(text);
    auto* fade = new QGraphicsOpacityEffect(statusLabel_);
    statusLabel_->setGraphicsEffect(fade);
    QPointer<QGraphicsOpacityEffect> guard(fade);
    Animations::animate(
        statusLabel_, 0.25,
        [guard](double progress) {
            if (guard)
                guard->setOpacity(progress);
        },
        [label = QPointer<QLabel>(statusLabel_)](bool) {
            if (label)
                label->setGraphicsEffect(nullptr);
        });
}

void AIBlendProcessingViewController::viewDidAppear(bool) {
    spinnerView_->startAnimating();
}

void AIBlendProcessingViewController::viewWillDisappear(bool) {
    spinnerView_->stopAnimating();
}

void AIBlendProcessingViewController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    if (!isViewLoaded())
        return;
    backgroundImageView_->setGeometry(rect());
    dimOverlayView_->setGeometry(rect());
    const QSize stackSize(width(), statusStackView_->sizeHint().height());
    statusStackView_->setGeometry(QRect(QPoint(0, (height() - stackSize.height()) / 2), stackSize));
}

void AIBlendProcessingViewController::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Qt::black);
}
