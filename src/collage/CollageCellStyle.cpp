#include "collage/CollageCellStyle.h"

#include "platform/Assets.h"
#include "platform/ImageView.h"

#include <QFont>
#include <QImage>
#include <QPainter>
#include <cmath>

namespace CollageCellStyle {

namespace {

void drawFallback(QPainter& painter, const QString& symbolName, const QRectF& rect, const QColor& tint,
                  SymbolFallback fallback) {
    switch (fallback) {
    case SymbolFallback::nothing:
        return;
    case SymbolFallback::outline: {
        const double side = std::min(rect.width(), rect.height()) * 0.6;
        QRectF square(0, 0, side, side);
        square.moveCenter(rect.center());
        QColor muted = tint;
        muted.setAlphaF(tint.alphaF() * 0.6f);
        painter.setPen(QPen(muted, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(square, side * 0.25, side * 0.25);
        return;
    }
    case SymbolFallback::initialLetter: {
        if (symbolName.isEmpty())
            return;
        QFont font = painter.font();
        font.setPixelSize(std::max(1, static_cast<int>(std::lround(rect.height() * 0.8))));
        font.setWeight(QFont::Bold);
        painter.setFont(font);
        painter.setPen(tint);
        painter.drawText(rect, Qt::AlignCenter, symbolName.left(1).toUpper());
        return;
    }
    }
}

} // namespace

void paintCard(QPainter& painter, const QRectF& bounds, const QColor& fill, double borderWidth,
               const QColor& borderColor) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(bounds, cardCornerRadius, cardCornerRadius);
    const double half = borderWidth / 2;
    const QRectF line = bounds.adjusted(half, half, -half, -half);
    painter.setPen(QPen(borderColor, borderWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(line, cardCornerRadius - half, cardCornerRadius - half);
    painter.restore();
}

bool drawSymbol(QPainter& painter, const QString& symbolName, const QRectF& rect, const QColor& tint,
                SymbolFallback fallback) {
    const ImagePtr symbol = symbolName.isEmpty() ? nullptr : Assets::image(symbolName);
    painter.save();
    if (!symbol || rect.isEmpty()) {
        drawFallback(painter, symbolName, rect, tint, fallback);
        painter.restore();
        return false;
    }
    // Tint on a scratch bitmap at device resolution: keep the symbol's coverage, replace its colour.
    const QRectF target = ImageView::targetRect(symbol->size(), rect, ContentMode::scaleAspectFit);
    const double dpr = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    QImage tinted(std::max(1, static_cast<int>(std::ceil(target.width() * dpr))),
                  std::max(1, static_cast<int>(std::ceil(target.height() * dpr))),
                  QImage::Format_ARGB32_Premultiplied);
    tinted.fill(Qt::transparent);
    {
        QPainter scratch(&tinted);
        scratch.setRenderHint(QPainter::SmoothPixmapTransform);
        scratch.drawImage(QRectF(QPointF(0, 0), QSizeF(tinted.size())), symbol->uprightBitmap());
        scratch.setCompositionMode(QPainter::CompositionMode_SourceIn);
        scratch.fillRect(tinted.rect(), tint);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, tinted);
    painter.restore();
    return true;
}

} // namespace CollageCellStyle
