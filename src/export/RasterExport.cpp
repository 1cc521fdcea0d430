#include "export/RasterExport.h"

#include "platform/Log.h"
#include "platform/Screen.h"

#include <QPainter>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string>

namespace RasterExport {

QString decimalDescription(double value) {
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-inf") : QStringLiteral("inf");
    char buffer[64];
    const double magnitude = std::abs(value);
    const bool exponent = magnitude != 0 && (magnitude > 0x1.0p53 || magnitude < 1e-4);
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value,
                                      exponent ? std::chars_format::scientific : std::chars_format::fixed);
    std::string text(buffer, result.ptr);
    // The exponent form stays as it is ("1e+16", "1e-05"); a whole number gains its fraction.
    if (!exponent && text.find('.') == std::string::npos)
        text += ".0";
    return QString::fromStdString(text);
}

QString pixelLabelAtLoad(double width, double height) {
    return decimalDescription(width) + QStringLiteral(" x ") + decimalDescription(height) +
           QStringLiteral(" px");
}

namespace {
// The C library's formatting, not Qt's: it rounds an exact tie to even ("100.25" to "100.2").
QString printed(const char* format, double a, double b = 0) {
    char buffer[128];
    std::snprintf(buffer, sizeof buffer, format, a, b);
    return QString::fromLatin1(buffer);
}
} // namespace

QString pixelLabel(double width, double height) {
    return printed("%.1f x %.1f px", width, height);
}

QString sizeValueText(float value) {
    return printed("%.1f", static_cast<double>(value));
}

QString qualityValueText(float value) {
    const float product = value * 10.0f;
    if (!std::isfinite(product))
        fatalError("Float value cannot be converted to Int because it is either infinite or NaN");
    return QString::number(static_cast<long long>(product));
}

QString fileSizeText(float value) {
    if (0.1f <= value && value < 0.3f)
        return QStringLiteral("File size: Small");
    if (0.3f <= value && value < 0.7f)
        return QStringLiteral("File size: Medium");
    return QStringLiteral("File size: Large");
}

double fitFactor(double targetWidth, double targetHeight, const QSizeF& size) {
    return std::min(targetWidth / size.width(), targetHeight / size.height());
}

ImagePtr drawInContext(const QSizeF& points, const std::function<void(QPainter&)>& draw) {
    const double scale = Screen::main().scale();
    // A context rounds its pixel size up; the small allowance keeps 300 × 3 from becoming 901.
    const auto pixels = [scale](double side) {
        const double p = std::ceil(side * scale - 1e-6);
        return std::isfinite(p) && p > 0 ? p : 0.0;
    };
    const double w = pixels(points.width());
    const double h = pixels(points.height());
    if (w < 1 || h < 1 || w * h > static_cast<double>(Image::maxPixelCount))
        return nullptr;
    QImage canvas(static_cast<int>(w), static_cast<int>(h), QImage::Format_ARGB32_Premultiplied);
    if (canvas.isNull())
        return nullptr;
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    draw(painter);
    painter.end();
    return Image::make(std::move(canvas), scale);
}

ImagePtr renderScaled(const ImagePtr& image, double factor) {
    if (!image || !std::isfinite(factor) || factor <= 0)
        return nullptr;
    const QSizeF drawn = image->size() * factor;
    const QImage upright = image->uprightBitmap();
    return drawInContext(
        drawn, [&](QPainter& painter) { painter.drawImage(QRectF(QPointF(0, 0), drawn), upright); });
}

} // namespace RasterExport
