#include "collage/AspectRatioOptionCell.h"

#include "collage/CollageCellStyle.h"
#include "collage/SymbolIconView.h"

#include <QPainter>
#include <algorithm>

using namespace CollageCellStyle;

namespace {

constexpr double kBadgeInset = 3.0;
constexpr double kBadgeCornerRadius = 4.0;
constexpr double kTitleHeight = 14.0;
constexpr double kTitleBottomInset = 6.0;
constexpr double kSideInset = 4.0;
constexpr double kOutlineGap = 4.0;

class BadgeView : public QWidget {
public:
    explicit BadgeView(QWidget* parent) : QWidget(parent) { setAttribute(Qt::WA_TransparentForMouseEvents); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(white(0.16));
        painter.drawRoundedRect(QRectF(rect()), kBadgeCornerRadius, kBadgeCornerRadius);
    }
};

} // namespace

AspectRatioOptionCell::AspectRatioOptionCell(QWidget* parent)
    : CollageCell(parent), brandBadgeView_(new BadgeView(this)),
      brandIconView_(new SymbolIconView(brandBadgeView_)) {
    brandBadgeView_->setObjectName(QStringLiteral("brandBadgeView"));
    brandIconView_->setObjectName(QStringLiteral("brandIconView"));
    brandIconView_->setFallback(SymbolFallback::initialLetter);
    brandIconView_->setDrawsBrandMark(true);
    brandBadgeView_->hide();
    placeBadge();
}

QSizeF AspectRatioOptionCell::outlineSize(std::optional<double> ratio) {
    const double r = ratio.value_or(1.0);
    double width = maxOutlineDimension;
    double height = maxOutlineDimension;
    if (r >= 1.0)
        height = maxOutlineDimension / r;
    else
        width = maxOutlineDimension * r;
    return {std::max(width, minOutlineDimension), std::max(height, minOutlineDimension)};
}

void AspectRatioOptionCell::configure(CollageAspectRatioOption option, bool isSelected) {
    title_ = displayName(option);
    setAccessibleName(title_);
    setSelected(isSelected);
    outlineSize_ = outlineSize(ratio(option));
    const std::optional<QString> brand = brandIconName(option);
    brandIconView_->setSymbolName(brand.value_or(QString()));
    brandBadgeView_->setHidden(!brand);
    placeBadge(); // a cell sized while hidden gets its resize event only when shown
    update();
}

QColor AspectRatioOptionCell::titleColor() const {
    return isSelected() ? systemBlue() : QColor(Qt::white);
}

QColor AspectRatioOptionCell::cardBackgroundColor() const {
    if (!isSelected())
        return white(0.05);
    QColor tint = systemBlue();
    tint.setAlphaF(0.16f);
    return tint;
}

double AspectRatioOptionCell::borderWidth() const {
    return isSelected() ? 2.0 : 1.0;
}

QColor AspectRatioOptionCell::borderColor() const {
    return isSelected() ? systemBlue() : white(0.08);
}

QRectF AspectRatioOptionCell::titleRect() const {
    return {kSideInset, height() - kTitleBottomInset - kTitleHeight, width() - 2 * kSideInset, kTitleHeight};
}

QRectF AspectRatioOptionCell::outlineRect() const {
    // Centred in a box of the largest outline just above the title, clear of the badge.
    QRectF outline(QPointF(0, 0), outlineSize_);
    outline.moveCenter(QPointF(width() / 2.0, titleRect().top() - kOutlineGap - maxOutlineDimension / 2.0));
    return outline;
}

void AspectRatioOptionCell::placeBadge() {
    const int side = static_cast<int>(badgeSide);
    brandBadgeView_->setGeometry(width() - static_cast<int>(kBadgeInset) - side,
                                 static_cast<int>(kBadgeInset), side, side);
    brandIconView_->setGeometry(0, 0, side, side);
}

void AspectRatioOptionCell::resizeEvent(QResizeEvent* event) {
    CollageCell::resizeEvent(event);
    placeBadge();
}

void AspectRatioOptionCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(contentOpacity());
    painter.setRenderHint(QPainter::Antialiasing);
    paintCard(painter, QRectF(rect()), cardBackgroundColor(), borderWidth(), borderColor());
    painter.setPen(QPen(titleColor(), 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(outlineRect(), 2.0, 2.0);
    QFont titleFont = font();
    titleFont.setPixelSize(11);
    titleFont.setWeight(QFont::Medium);
    painter.setFont(titleFont);
    const QRectF textRect = titleRect();
    painter.drawText(textRect, Qt::AlignCenter,
                     QFontMetricsF(titleFont).elidedText(title_, Qt::ElideRight, textRect.width()));
}
