#include "collage/LayoutThumbnailView.h"

#include <QPainter>

namespace {
// Pane edges this close to the border lie on it and are covered by the outline.
constexpr double kBorderLow = 0.001;
constexpr double kBorderHigh = 0.999;
} // namespace

LayoutThumbnailView::LayoutThumbnailView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setAutoFillBackground(false);
}

std::optional<LayoutThumbnailView::Strokes>
LayoutThumbnailView::strokes(std::optional<CollageLayoutOption> option, const QRectF& bounds) {
    if (!option)
        return std::nullopt;
    Strokes result;
    const QRectF r = bounds.adjusted(1, 1, -1, -1);
    result.outline = r;
    for (const QRectF& pane : paneRects(*option)) {
        const double left = r.left() + pane.left() * r.width();
        const double right = r.left() + pane.right() * r.width();
        const double top = r.top() + pane.top() * r.height();
        const double bottom = r.top() + pane.bottom() * r.height();
        if (pane.left() > kBorderLow)
            result.edges.emplace_back(left, top, left, bottom);
        if (pane.right() < kBorderHigh)
            result.edges.emplace_back(right, top, right, bottom);
        if (pane.top() > kBorderLow)
            result.edges.emplace_back(left, top, right, top);
        if (pane.bottom() < kBorderHigh)
            result.edges.emplace_back(left, bottom, right, bottom);
    }
    return result;
}

void LayoutThumbnailView::setOption(std::optional<CollageLayoutOption> option) {
    option_ = option;
    update();
}

void LayoutThumbnailView::setLineColor(const QColor& color) {
    lineColor_ = color;
    update();
}

void LayoutThumbnailView::setLineWidth(double width) {
    lineWidth_ = width;
    update();
}

void LayoutThumbnailView::setOuterCornerRadius(double radius) {
    outerCornerRadius_ = radius;
    update();
}

void LayoutThumbnailView::paintEvent(QPaintEvent*) {
    const auto lines = strokes(option_, QRectF(rect()));
    if (!lines)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(lineColor_, lineWidth_);
    pen.setCapStyle(Qt::FlatCap);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(lines->outline, outerCornerRadius_, outerCornerRadius_);
    painter.drawLines(lines->edges.data(), static_cast<int>(lines->edges.size()));
}
