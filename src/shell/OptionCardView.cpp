#include "shell/OptionCardView.h"

#include "platform/Animations.h"
#include "platform/Assets.h"
#include "platform/ImageView.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace {
constexpr double kCornerRadius = 20.0;
constexpr double kPressedScale = 0.97;
constexpr double kPressedAlpha = 0.75;

QColor blend(const QColor& a, const QColor& b, double t) {
    return QColor::fromRgbF(static_cast<float>(Animations::interpolate(a.redF(), b.redF(), t)),
                            static_cast<float>(Animations::interpolate(a.greenF(), b.greenF(), t)),
                            static_cast<float>(Animations::interpolate(a.blueF(), b.blueF(), t)),
                            static_cast<float>(Animations::interpolate(a.alphaF(), b.alphaF(), t)));
}
} // namespace

OptionCardView::OptionCardView(int index, const QString& imageName, const QString& title,
                               const QString& subtitle, QWidget* parent)
    : QWidget(parent), index_(index), title_(title), subtitle_(subtitle),
      background_(Assets::image(imageName)) {
    setObjectName(QStringLiteral("optionCard%1").arg(index));
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumHeight(150);
    setAccessibleName(title);
    if (background_)
        backgroundUpright_ = background_->uprightBitmap();
}

void OptionCardView::setCardSelected(bool selected, bool animated) {
    selected_ = selected;
    const double startWidth = borderWidth_;
    const QColor startColor = borderColor_;
    const double startOverlay = overlayAlpha_;
    const double endWidth = selected ? 2.0 : 1.0;
    const QColor endColor = selected ? selectionColor() : QColor(255, 255, 255, 20);
    const double endOverlay = selected ? 1.0 : 0.0;
    auto step = [=, this](double p) {
        borderWidth_ = Animations::interpolate(startWidth, endWidth, p);
        borderColor_ = blend(startColor, endColor, p);
        overlayAlpha_ = Animations::interpolate(startOverlay, endOverlay, p);
        update();
    };
    if (animated)
        Animations::animate(this, 0.2, step);
    else
        step(1.0);
}

void OptionCardView::setPressed(bool pressed) {
    pressed_ = pressed;
    update();
}

void OptionCardView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        setPressed(true);
}

void OptionCardView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressed_)
        return;
    setPressed(false);
    // Like a button: letting go outside the card cancels the tap.
    if (rect().contains(event->position().toPoint()) && onTap)
        onTap(index_);
}

void OptionCardView::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
        onTap) {
        onTap(index_);
        return;
    }
    QWidget::keyPressEvent(event);
}

void OptionCardView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (pressed_) {
        painter.setOpacity(kPressedAlpha);
        const QPointF c = QRectF(rect()).center();
        painter.translate(c);
        painter.scale(kPressedScale, kPressedScale);
        painter.translate(-c);
    }
    const QRectF bounds = QRectF(rect()).adjusted(1, 1, -1, -1);
    QPainterPath shape;
    shape.addRoundedRect(bounds, kCornerRadius, kCornerRadius);
    painter.save();
    painter.setClipPath(shape);
    painter.fillPath(shape, QColor(255, 255, 255, 15));
    if (!backgroundUpright_.isNull()) {
        painter.drawImage(ImageView::targetRect(background_->size(), bounds, ContentMode::scaleAspectFill),
                          backgroundUpright_);
    }
    QLinearGradient gradient(bounds.topLeft(), bounds.bottomLeft());
    gradient.setColorAt(0.4, QColor(0, 0, 0, 0));
    gradient.setColorAt(1.0, QColor(0, 0, 0, 204));
    painter.fillRect(bounds, gradient);
    if (overlayAlpha_ > 0.0) {
        QColor overlay = selectionColor();
        overlay.setAlphaF(static_cast<float>(0.28 * overlayAlpha_));
        painter.fillRect(bounds, overlay);
    }
    // Title and subtitle sit at the bottom left, over the dark end of the gradient.
    QFont titleFont = font();
    titleFont.setPixelSize(15);
    titleFont.setWeight(QFont::DemiBold);
    QFont subtitleFont = font();
    subtitleFont.setPixelSize(12);
    const QRectF textArea = bounds.adjusted(12, 0, -12, -12);
    const QFontMetricsF subtitleMetrics(subtitleFont);
    const QFontMetricsF titleMetrics(titleFont);
    const QRectF subtitleRect(textArea.left(), textArea.bottom() - 2 * subtitleMetrics.height(),
                              textArea.width(), 2 * subtitleMetrics.height());
    const QRectF titleRect(textArea.left(), subtitleRect.top() - titleMetrics.height() - 2, textArea.width(),
                           titleMetrics.height());
    painter.setPen(Qt::white);
    painter.setFont(titleFont);
    painter.drawText(titleRect, Qt::AlignLeft | Qt::AlignBottom, title_);
    painter.setPen(QColor(255, 255, 255, 204));
    painter.setFont(subtitleFont);
    painter.drawText(subtitleRect, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, subtitle_);
    painter.restore();
    QPen border(borderColor_, borderWidth_);
    painter.setPen(border);
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(shape);
}
