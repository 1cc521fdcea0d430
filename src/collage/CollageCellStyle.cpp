#include "collage/CollageCellStyle.h"

#include "platform/Assets.h"
#include "platform/ImageView.h"

#include <QFont>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
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

namespace {

void drawMarkText(QPainter& painter, const QRectF& rect, const QString& text, double heightFraction) {
    QFont font = painter.font();
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(rect.height() * heightFraction))));
    font.setWeight(QFont::Black);
    font.setHintingPreference(QFont::PreferFullHinting);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(rect, Qt::AlignCenter, text);
}

} // namespace

bool drawBrandMark(QPainter& painter, const QString& symbolName, const QRectF& rect) {
    struct Brand {
        const char* symbol;
        QColor fill;
        const char* letters; // null for a drawn sign
    };
    static const Brand brands[] = {
        {"f.square.fill", QColor(24, 119, 242), "f"},
        {"x.square.fill", QColor(0, 0, 0), "X"},
        {"l.square.fill", QColor(10, 102, 194), "in"},
        {"p.square.fill", QColor(215, 0, 33), "P"},
        {"play.rectangle.fill", QColor(235, 0, 0), nullptr},
        {"camera.aperture", QColor(214, 41, 118), nullptr},
    };
    const Brand* brand = nullptr;
    for (const Brand& candidate : brands) {
        if (symbolName == QLatin1String(candidate.symbol))
            brand = &candidate;
    }
    if (!brand || rect.isEmpty())
        return false;

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    const double side = std::min(rect.width(), rect.height());
    QRectF square(0, 0, side, side);
    square.moveCenter(rect.center());
    const double radius = side * 0.25;
    painter.setPen(Qt::NoPen);
    if (symbolName == QLatin1String("camera.aperture")) {
        QLinearGradient gradient(square.bottomLeft(), square.topRight());
        gradient.setColorAt(0.0, QColor(240, 120, 40));
        gradient.setColorAt(0.5, brand->fill);
        gradient.setColorAt(1.0, QColor(120, 55, 180));
        painter.setBrush(gradient);
    } else {
        painter.setBrush(brand->fill);
    }
    painter.drawRoundedRect(square, radius, radius);
    if (brand->fill.lightnessF() < 0.1) {
        // A black mark on the dark sheet needs an edge to be seen.
        painter.setPen(QPen(QColor(255, 255, 255, 110), 1.0));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(square.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    }

    if (brand->letters) {
        const QString letters = QString::fromLatin1(brand->letters);
        drawMarkText(painter, square, letters, letters.size() > 1 ? 0.62 : 0.8);
    } else if (symbolName == QLatin1String("play.rectangle.fill")) {
        // A play sign, pointing right.
        const QPointF c = square.center();
        const double h = side * 0.46;
        QPainterPath triangle;
        triangle.moveTo(c.x() - h * 0.38, c.y() - h / 2);
        triangle.lineTo(c.x() + h * 0.55, c.y());
        triangle.lineTo(c.x() - h * 0.38, c.y() + h / 2);
        triangle.closeSubpath();
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawPath(triangle);
    } else {
        // A camera: a rounded outline, a lens and a small flash.
        const double stroke = std::max(1.2, side * 0.09);
        painter.setPen(QPen(Qt::white, stroke));
        painter.setBrush(Qt::NoBrush);
        const QRectF body = square.adjusted(side * 0.2, side * 0.2, -side * 0.2, -side * 0.2);
        painter.drawRoundedRect(body, side * 0.15, side * 0.15);
        painter.drawEllipse(body.center(), side * 0.15, side * 0.15);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(QPointF(body.right() - side * 0.13, body.top() + side * 0.13), side * 0.05,
                            side * 0.05);
    }
    painter.restore();
    return true;
}

} // namespace CollageCellStyle
