#include "ai/AIBlendViews.h"

#include "platform/Animations.h"
#include "platform/Assets.h"
#include "platform/ImageView.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVariantAnimation>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

QFont systemFont(int pointSize, QFont::Weight weight) {
    QFont font;
    font.setPixelSize(pointSize);
    font.setWeight(weight);
    return font;
}

QLinearGradient horizontalGradient(const QRectF& rect, const QList<QColor>& colors) {
    QLinearGradient gradient(rect.left(), rect.center().y(), rect.right(), rect.center().y());
    for (int i = 0; i < colors.size(); ++i)
        gradient.setColorAt(colors.size() == 1 ? 0.0 : double(i) / (colors.size() - 1), colors[i]);
    return gradient;
}

QImage whiteSymbol(const QString& name, int side) {
    const ImagePtr symbol = Assets::image(name);
    if (!symbol)
        return {};
    QImage glyph = symbol->uprightBitmap().scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    glyph = glyph.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&glyph);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(glyph.rect(), Qt::white);
    return glyph;
}

} // namespace

QColor blendBlue(double alpha) {
    return QColor::fromRgbF(0.0, 122 / 255.0, 1.0, float(alpha));
}
QColor blendPurple(double alpha) {
    return QColor::fromRgbF(175 / 255.0, 82 / 255.0, 222 / 255.0, float(alpha));
}

GenderPillButton::GenderPillButton(const QString& title, QWidget* parent) : QAbstractButton(parent) {
    setText(title);
    setFont(systemFont(16, QFont::DemiBold));
    setCursor(Qt::PointingHandCursor);
}

void GenderPillButton::setActive(bool active) {
    if (active == isActive_)
        return;
    isActive_ = active;
    update();
}

void GenderPillButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bounds = rect();
    const double radius = 22.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgbF(1, 1, 1, isActive_ ? 0.06f : 0.05f));
    painter.drawRoundedRect(bounds, radius, radius);
    if (isActive_) {
        // The gradient shows only through a stroked outline, inset so the whole line stays inside.
        const double line = 1.5;
        const QRectF outline = bounds.adjusted(line / 2, line / 2, -line / 2, -line / 2);
        const double outlineRadius = outline.height() / 2;
        painter.setPen(QPen(QBrush(horizontalGradient(bounds, {blendBlue(), blendPurple()})), line));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(outline, outlineRadius, outlineRadius);
    } else {
        painter.setPen(QPen(QColor::fromRgbF(1, 1, 1, 0.12f), 1.0));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(bounds.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    }
    painter.setPen(isActive_ ? QColor(Qt::white) : QColor::fromRgbF(1, 1, 1, 0.45f));
    painter.setFont(font());
    painter.drawText(bounds, Qt::AlignCenter, text());
}

AIBlendingThumbnailCell::AIBlendingThumbnailCell(QWidget* parent) : QAbstractButton(parent) {
    setCursor(Qt::PointingHandCursor);
}

void AIBlendingThumbnailCell::setImage(ImagePtr image) {
    image_ = std::move(image);
    update();
}

void AIBlendingThumbnailCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF bounds = rect();
    QPainterPath clip;
    clip.addRoundedRect(bounds, 14, 14);
    painter.fillPath(clip, QColor::fromRgbF(0.16f, 0.16f, 0.16f));
    if (image_) {
        painter.save();
        painter.setClipPath(clip);
        painter.drawImage(ImageView::targetRect(image_->size(), bounds, ContentMode::scaleAspectFill),
                          image_->uprightBitmap());
        painter.restore();
    }
    painter.setPen(QPen(blendBlue(0.8), 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(bounds.adjusted(0.75, 0.75, -0.75, -0.75), 14, 14);
}

BlendSpinnerView::BlendSpinnerView(QWidget* parent) : QWidget(parent) {
    setFixedSize(44, 44);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void BlendSpinnerView::startAnimating() {
    if (isAnimating())
        return;
    spin_ = new QVariantAnimation(this);
    spin_->setStartValue(0.0);
    spin_->setEndValue(2 * std::numbers::pi);
    spin_->setDuration(int(kPeriod * 1000));
    spin_->setLoopCount(-1);
    connect(spin_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        rotation_ = value.toDouble();
        update();
    });
    spin_->start(QAbstractAnimation::DeleteWhenStopped);
}

void BlendSpinnerView::stopAnimating() {
    if (spin_)
        spin_->stop();
    spin_ = nullptr;
}

bool BlendSpinnerView::isAnimating() const {
    return spin_ && spin_->state() == QAbstractAnimation::Running;
}

void BlendSpinnerView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF center = QRectF(rect()).center();
    const double radius = std::min(width(), height()) / 2.0 - kLineWidth / 2;
    painter.translate(center);
    painter.rotate(rotation_ * 180.0 / std::numbers::pi);
    QPen pen(QColor::fromRgbF(1, 1, 1, 0.95f), kLineWidth);
    pen.setCapStyle(Qt::RoundCap);
    painter.setPen(pen);
    // From the top, clockwise; Qt counts angles anticlockwise in sixteenths of a degree.
    painter.drawArc(QRectF(-radius, -radius, 2 * radius, 2 * radius), 90 * 16, -int(360 * 16 * kStrokeEnd));
}

GradientLabel::GradientLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
    gradientColors = {blendBlue(), blendPurple()};
}

void GradientLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    const QFontMetricsF metrics(font());
    const QRectF bounds = contentsRect();
    const double x = bounds.left();
    const double y = bounds.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    path.addText(QPointF(x, y), font(), text());
    painter.fillPath(path, horizontalGradient(bounds, gradientColors));
}

GradientPillButton::GradientPillButton(const QString& title, const QString& symbolName, QWidget* parent)
    : QAbstractButton(parent) {
    buttonColors = {blendBlue(), blendPurple()};
    setText(title);
    setFont(systemFont(15, QFont::DemiBold));
    setCursor(Qt::PointingHandCursor);
    if (!symbolName.isEmpty())
        icon_ = whiteSymbol(symbolName, 18);
    connect(this, &QAbstractButton::pressed, this, [this] { animateOpacity(0.8); });
    connect(this, &QAbstractButton::released, this, [this] { animateOpacity(1.0); });
}

QSize GradientPillButton::sizeHint() const {
    const QFontMetrics metrics(font());
    int width = metrics.horizontalAdvance(text());
    int height = metrics.height();
    if (hasIcon()) {
        width += icon_.width() + 8;
        height = std::max(height, icon_.height());
    }
    return QSize(width + 40, height + 20);
}

void GradientPillButton::animateOpacity(double to) {
    if (highlight_)
        highlight_->stop();
    const double from = gradientOpacity_;
    highlight_ = Animations::animate(this, 0.15, [this, from, to](double progress) {
        gradientOpacity_ = Animations::interpolate(from, to, progress);
        update();
    });
}

void GradientPillButton::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange) {
        gradientOpacity_ = isEnabled() ? 1.0 : 0.4;
        update();
    }
    QAbstractButton::changeEvent(event);
}

void GradientPillButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bounds = rect();
    const double radius = bounds.height() / 2;
    painter.setOpacity(gradientOpacity_);
    painter.setPen(Qt::NoPen);
    painter.setBrush(horizontalGradient(bounds, buttonColors));
    painter.drawRoundedRect(bounds, radius, radius);
    painter.setOpacity(1.0);

    const QFontMetricsF metrics(font());
    const double textWidth = metrics.horizontalAdvance(text());
    const double contentWidth = textWidth + (hasIcon() ? icon_.width() + 8 : 0);
    double x = bounds.center().x() - contentWidth / 2;
    if (hasIcon()) {
        painter.drawImage(QPointF(x, bounds.center().y() - icon_.height() / 2.0), icon_);
        x += icon_.width() + 8;
    }
    painter.setPen(Qt::white);
    painter.setFont(font());
    painter.drawText(QRectF(x, bounds.top(), textWidth + 1, bounds.height()),
                     Qt::AlignVCenter | Qt::AlignLeft, text());
}

QAbstractButton* makeBlendBackButton(QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setFixedSize(32, 32);
    button->setCursor(Qt::PointingHandCursor);
    button->setStyleSheet(QStringLiteral("QPushButton { background: rgba(0, 0, 0, 89); border: none; "
                                         "border-radius: 16px; }"));
    const QIcon chevron = Assets::symbol(QStringLiteral("chevron.left"), 16);
    if (!chevron.isNull()) {
        button->setIcon(chevron);
        button->setIconSize(QSize(16, 16));
    } else {
        button->setText(QStringLiteral("‹"));
    }
    return button;
}
