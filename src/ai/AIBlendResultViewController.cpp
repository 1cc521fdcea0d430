#include "ai/AIBlendResultViewController.h"

#include "ai/AIBlendViews.h"
#include "export/RateShareController.h"
#include "platform/Animations.h"
#include "platform/Dispatch.h"
#include "platform/ImageView.h"
#include "platform/NavigationController.h"
#include "platform/Storyboard.h"

#include <QEvent>
#include <QGraphicsEffect>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPointer>

namespace {

// The card's frame: a blue border over the picture, drawn above it so the picture never covers it.
class CardBorder : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(blendBlue(0.9), 1.5));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), 20, 20);
    }
};

} // namespace

AIBlendResultViewController::AIBlendResultViewController(ImagePtr resultImage, ImagePtr originalImage,
                                                         QWidget* parent)
    : ViewController(parent), resultImage_(std::move(resultImage)), originalImage_(std::move(originalImage)) {
}

QRectF AIBlendResultViewController::cardRect(const QRectF& guide, const QSizeF& pictureSize) {
    const double ratio = pictureSize.width() > 0 ? pictureSize.height() / pictureSize.width() : 1.0;
    const double width = guide.width();
    // The shape gives way to the guide: a tall picture gets a card as tall as the guide.
    const double height = std::clamp(width * ratio, 0.0, std::max(0.0, guide.height()));
    return QRectF(guide.left(), guide.center().y() - height / 2, width, height);
}

void AIBlendResultViewController::viewDidLoad() {
    backButton_ = makeBlendBackButton(this);
    connect(backButton_, &QAbstractButton::clicked, this, [this] {
        if (NavigationController* navigation = navigationController())
            navigation->popViewController(true);
    });

    titleStackView_ = new QWidget(this);
    auto* titleRow = new QHBoxLayout(titleStackView_);
    titleRow->setContentsMargins(0, 0, 0, 0);
    titleRow->setSpacing(0);
    QFont titleFont;
    titleFont.setPixelSize(21);
    titleFont.setWeight(QFont::Bold);
    titlePrefixLabel_ = new QLabel(QStringLiteral("AI "), titleStackView_);
    titlePrefixLabel_->setFont(titleFont);
    titlePrefixLabel_->setStyleSheet(QStringLiteral("color: white;"));
    titleGradientLabel_ = new GradientLabel(QStringLiteral("Blend"), titleStackView_);
    titleGradientLabel_->setFont(titleFont);
    titleRow->addWidget(titlePrefixLabel_);
    titleRow->addWidget(titleGradientLabel_);

    applyButton_ = new GradientPillButton(QStringLiteral("APPLY"), QString(), this);
    connect(applyButton_, &QAbstractButton::clicked, this, &AIBlendResultViewController::applyClick);

    compareButton_ = new GradientPillButton(QStringLiteral("Compare"), QStringLiteral("sparkles"), this);
    // Held down shows the photo; any end of the touch, inside or out, brings the blend back.
    connect(compareButton_, &QAbstractButton::pressed, this, [this] { showPicture(originalImage_); });
    connect(compareButton_, &QAbstractButton::released, this, [this] { showPicture(resultImage_); });
    // A release outside the button emits no signal when the pointer did not move first.
    compareButton_->installEventFilter(this);

    imageCardView_ = new QWidget(this);
    auto* glow = new QGraphicsDropShadowEffect(imageCardView_);
    glow->setColor(blendBlue(0.5));
    glow->setBlurRadius(24);
    glow->setOffset(0, 0);
    imageCardView_->setGraphicsEffect(glow);
    resultImageView_ = new ImageView(imageCardView_);
    resultImageView_->setContentMode(ContentMode::scaleAspectFit);
    resultImageView_->setCornerRadius(20);
    resultImageView_->setImage(resultImage_);
    new CardBorder(imageCardView_);
}

void AIBlendResultViewController::showPicture(const ImagePtr& picture) {
    if (resultImageView_->image() == picture)
        return;
    auto* fade = new QGraphicsOpacityEffect(resultImageView_);
    resultImageView_->setGraphicsEffect(fade);
    resultImageView_->setImage(picture);
    QPointer<QGraphicsOpacityEffect> guard(fade);
    Animations::animate(
        resultImageView_, 0.15,
        [guard](double progress) {
            if (guard)
                guard->setOpacity(0.3 + 0.7 * progress);
        },
        [view = QPointer<ImageView>(resultImageView_)](bool) {
            if (view)
                view->setGraphicsEffect(nullptr);
        });
}

void AIBlendResultViewController::applyClick() {
    // No advertisement is ever loaded here, so the share step runs at once.
    auto* share = Storyboard::instantiate<RateShareController>(QStringLiteral("Main"),
                                                               QStringLiteral("RateShareController"));
    share->shareImage = resultImage_;
    share->fetchData = SavingtypeMethod::JPG;
    share->setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
    present(share, true);
}

void AIBlendResultViewController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    if (!isViewLoaded())
        return;
    const int w = width();
    backButton_->move(16, 8);
    const QSize titleSize = titleStackView_->sizeHint();
    titleStackView_->setGeometry((w - titleSize.width()) / 2, 8 + (32 - titleSize.height()) / 2,
                                 titleSize.width(), titleSize.height());
    const int applyWidth = applyButton_->sizeHint().width();
    applyButton_->setGeometry(w - 16 - applyWidth, 8 - 2, applyWidth, 36);
    compareButton_->setGeometry(20, height() - 20 - 52, std::max(0, w - 40), 52);

    const QRectF guide(20, 8 + 32 + 24, w - 40, compareButton_->y() - 24 - (8 + 32 + 24));
    const QSizeF pictureSize = resultImage_ ? resultImage_->size() : QSizeF();
    imageCardView_->setGeometry(cardRect(guide, pictureSize).toRect());
    for (QWidget* layer : imageCardView_->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        layer->setGeometry(imageCardView_->rect());
}

bool AIBlendResultViewController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == compareButton_ &&
        (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::TouchCancel))
        Dispatch::main().async([self = QPointer<AIBlendResultViewController>(this)] {
            if (self)
                self->showPicture(self->resultImage_);
        });
    return ViewController::eventFilter(watched, event);
}

void AIBlendResultViewController::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Qt::black);
}
