#include "collage/FeatherMask.h"

#include <QImage>
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

namespace FeatherMask {

namespace {

// A side in pixels, rounded and at least 1; saturates rather than overflow on absurd sizes, whose
// bitmap then simply fails to allocate.
int roundedSide(double points, double scale) {
    const double pixels = std::round(points * scale);
    if (!(pixels >= 1))
        return 1; // also NaN
    return pixels >= INT_MAX ? INT_MAX : static_cast<int>(pixels);
}

long long truncated(double value) {
    if (!std::isfinite(value))
        return 0;
    return static_cast<long long>(std::clamp(std::trunc(value), -9e15, 9e15));
}

// Feathers count in whole points, so a slider's sub-point jitter neither changes the mask nor its key.
double rampPixels(double feather, double scale) {
    const double pixels = std::round(feather) * scale;
    return pixels > 0 ? pixels : 0; // also NaN
}

double rampFactor(int distance, double rampWidth) {
    return rampWidth > 0 ? std::clamp(distance / rampWidth, 0.0, 1.0) : 1.0;
}

// Exactly the per-pixel formula, in double and in this order, so the fast path stays bit-identical.
uchar alphaOf(double fy, double fx) {
    return static_cast<uchar>(std::clamp(static_cast<int>(fy * fx * 255.0), 0, 255));
}

// The mask is symmetric about both centre lines and constant wherever neither ramp applies, so only
// the top ramp rows and the left ramp columns are computed; everything else is a copy or a fill. That
// keeps the cost close to a plain memory write.
template <typename Pixel, typename ToPixel>
void renderRows(uchar* base, qsizetype bytesPerLine, int width, int height, double hp, double vp,
                ToPixel toPixel) {
    if (!base || width <= 0 || height <= 0)
        return;

    // Column factors below 1, from the left edge inwards; they grow with x, so they stop at the first 1.
    constexpr int kMaxStackRamp = 1024;
    double stackRamp[kMaxStackRamp];
    std::vector<double> heapRamp;
    const int halfWidth = (width + 1) / 2;
    int rampColumns = 0;
    while (rampColumns < halfWidth && rampFactor(rampColumns, hp) < 1.0)
        ++rampColumns;
    double* fx = stackRamp;
    if (rampColumns > kMaxStackRamp) {
        heapRamp.resize(rampColumns);
        fx = heapRamp.data();
    }
    for (int x = 0; x < rampColumns; ++x)
        fx[x] = rampFactor(x, hp);

    auto row = [&](int y) {
        return reinterpret_cast<Pixel*>(base + static_cast<qsizetype>(y) * bytesPerLine);
    };
    auto fillRow = [&](Pixel* out, double fy) {
        for (int x = 0; x < rampColumns; ++x) {
            const Pixel value = toPixel(alphaOf(fy, fx[x]));
            out[x] = value;
            out[width - 1 - x] = value;
        }
        if (width - rampColumns > rampColumns)
            std::fill(out + rampColumns, out + (width - rampColumns), toPixel(alphaOf(fy, 1.0)));
    };
    const std::size_t rowBytes = static_cast<std::size_t>(width) * sizeof(Pixel);

    const int halfHeight = (height + 1) / 2;
    int rampRows = 0;
    while (rampRows < halfHeight && rampFactor(rampRows, vp) < 1.0)
        ++rampRows;

    for (int y = 0; y < rampRows; ++y)
        fillRow(row(y), rampFactor(y, vp));
    if (height - rampRows > rampRows) {
        const Pixel* full = row(rampRows);
        fillRow(row(rampRows), 1.0);
        for (int y = rampRows + 1; y < height - rampRows; ++y)
            std::memcpy(row(y), full, rowBytes);
    }
    for (int y = std::max(height - rampRows, halfHeight); y < height; ++y)
        if (height - 1 - y < y)
            std::memcpy(row(y), row(height - 1 - y), rowBytes);
}

} // namespace

QSize pixelSize(double width, double height, double scale) {
    return {roundedSide(width, scale), roundedSide(height, scale)};
}

QString key(double width, double height, double horizontalFeather, double verticalFeather, double scale) {
    return QStringLiteral("%1x%2-%3x%4")
        .arg(truncated(width * scale))
        .arg(truncated(height * scale))
        .arg(truncated(std::round(horizontalFeather) * scale))
        .arg(truncated(std::round(verticalFeather) * scale));
}

std::int64_t cost(double width, double height, double scale) {
    const QSize size = pixelSize(width, height, scale);
    return std::int64_t(size.width()) * size.height() * 4;
}

void render(uchar* alpha, qsizetype bytesPerLine, int width, int height, double hpPixels, double vpPixels) {
    renderRows<uchar>(alpha, bytesPerLine, width, height, hpPixels, vpPixels, [](uchar a) { return a; });
}

ImagePtr make(double width, double height, double horizontalFeather, double verticalFeather, double scale) {
    const QSize size = pixelSize(width, height, scale);
    // Premultiplied white, so the platform image keeps it as is and every channel equals the alpha.
    QImage bitmap(size, QImage::Format_ARGB32_Premultiplied);
    if (bitmap.isNull())
        return nullptr;
    renderRows<quint32>(bitmap.bits(), bitmap.bytesPerLine(), size.width(), size.height(),
                        rampPixels(horizontalFeather, scale), rampPixels(verticalFeather, scale),
                        [](uchar a) { return quint32(a) * 0x01010101u; });
    return Image::make(std::move(bitmap), scale);
}

} // namespace FeatherMask
