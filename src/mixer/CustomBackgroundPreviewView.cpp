#include "mixer/CustomBackgroundPreviewView.h"

#include "platform/ImageFilters.h"
#include "platform/ImageView.h"

#include <QLinearGradient>
#include <QPainter>
#include <algorithm>

namespace {
// At full strength the light blur spreads about this many points and lays a pale veil over the picture.
constexpr double kFullBlurPoints = 14.0;
constexpr double kFullVeil = 0.3;
} // namespace

// Draws what lies under it (the preview's own picture), blurred by the preview's fraction. The blur is
// made on a copy at one pixel per point and kept until the picture, the size or the fraction changes.
class PreviewBlurView : public QWidget {
public:
    explicit PreviewBlurView(CustomBackgroundPreviewView* preview) : QWidget(preview), preview_(preview) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        const double fraction = preview_->blurFraction();
        if (fraction <= 0.0)
            return;
        const ImagePtr& image = preview_->imageView()->image();
        if (image != source_ || size() != cachedSize_ || fraction != cachedFraction_) {
            source_ = image;
            cachedSize_ = size();
            cachedFraction_ = fraction;
            QImage under(size(), QImage::Format_ARGB32_Premultiplied);
            under.fill(Qt::transparent);
            {
                QPainter painter(&under);
                painter.setRenderHint(QPainter::SmoothPixmapTransform);
                painter.fillRect(under.rect(), preview_->backgroundColor());
                if (image)
                    painter.drawImage(ImageView::targetRect(image->size(), QRectF(under.rect()),
                                                            ContentMode::scaleAspectFill),
                                      image->uprightBitmap());
            }
            blurred_ = ImageFilters::gaussianBlur(under, fraction * kFullBlurPoints / 2.0);
        }
        QPainter painter(this);
        painter.drawImage(rect(), blurred_);
        painter.fillRect(rect(), QColor::fromRgbF(1, 1, 1, kFullVeil * fraction));
    }

private:
    CustomBackgroundPreviewView* preview_;
    ImagePtr source_;
    QSize cachedSize_;
    double cachedFraction_ = -1;
    QImage blurred_;
};

CustomBackgroundPreviewView::CustomBackgroundPreviewView(QWidget* parent)
    : QWidget(parent), background_(QColor::fromRgbF(0.15, 0.15, 0.15)) {
    setObjectName(QStringLiteral("previewContainerView"));
    imageView_ = new ImageView(this);
    imageView_->setContentMode(ContentMode::scaleAspectFill);
    imageView_->setVisible(false);
    blurView_ = new PreviewBlurView(this);
}

void CustomBackgroundPreviewView::setBackgroundColor(const QColor& color) {
    background_ = color;
    update();
}

void CustomBackgroundPreviewView::setGradient(std::optional<std::pair<QColor, QColor>> colors) {
    gradient_ = std::move(colors);
    update();
}

void CustomBackgroundPreviewView::setBlurFraction(double fraction) {
    blurFraction_ = std::clamp(fraction, 0.0, 1.0);
    blurView_->update();
}

void CustomBackgroundPreviewView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    imageView_->setGeometry(rect());
    blurView_->setGeometry(rect());
}

void CustomBackgroundPreviewView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), background_);
    if (gradient_) {
        QLinearGradient gradient(QPointF(0, 0), QPointF(width(), height()));
        gradient.setColorAt(0, gradient_->first);
        gradient.setColorAt(1, gradient_->second);
        painter.fillRect(rect(), gradient);
    }
}
