#include "mirror/CaptionLabelView.h"

#include "overlay/FontList.h"

#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

namespace {
constexpr double smallestPointSize = 4.0;
constexpr int wrapFlags = Qt::TextWordWrap;
} // namespace

CaptionLabelView::CaptionLabelView(int tag, QGraphicsItem* parent) : QGraphicsWidget(parent), tag_(tag) {
    setAcceptedMouseButtons(Qt::NoButton);
}

void CaptionLabelView::setText(const QString& text) {
    text_ = text;
    update();
}

void CaptionLabelView::setFont(const QFont& font) {
    font_ = font;
    update();
}

void CaptionLabelView::setFont(const QString& name, double size) {
    fontName_ = name;
    setFont(FontList::font(name, size));
}

void CaptionLabelView::setTextColor(const QColor& color) {
    textColor_ = color;
    update();
}

void CaptionLabelView::setTextAlignment(Qt::Alignment alignment) {
    alignment_ = alignment;
    update();
}

double CaptionLabelView::fittedPointSize() const {
    const QRectF frame(QPointF(), size());
    QFont font = font_;
    // The caption fonts are sized in pixels of the window, which are the phone's points.
    int points = font.pixelSize() > 0 ? font.pixelSize() : int(std::lround(font.pointSizeF()));
    while (points > smallestPointSize) {
        font.setPixelSize(points);
        const QRectF needed = QFontMetricsF(font).boundingRect(QRectF(0, 0, frame.width(), 1e6),
                                                               int(alignment_) | wrapFlags, text_);
        if (needed.height() <= frame.height() + 0.5 && needed.width() <= frame.width() + 0.5)
            break;
        points = std::max(int(smallestPointSize), int(points * 0.92));
    }
    return points;
}

void CaptionLabelView::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) {
    if (text_.isEmpty())
        return;
    QFont font = font_;
    font.setPixelSize(int(fittedPointSize()));
    painter->setRenderHint(QPainter::TextAntialiasing);
    painter->setFont(font);
    painter->setPen(textColor_);
    painter->drawText(QRectF(QPointF(), size()), int(alignment_ | Qt::AlignVCenter) | wrapFlags, text_);
}
