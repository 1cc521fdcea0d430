#include "platform/ImageFilters.h"

#include <algorithm>
#include <cmath>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

namespace {

// The format the pixels are worked on in, and whether the result goes back to the caller's format.
struct WorkFormat {
    QImage::Format work;
    bool convertBack;
};

WorkFormat workFormatFor(QImage::Format format) {
    switch (format) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32_Premultiplied:
    case QImage::Format_RGBX8888:
    case QImage::Format_RGBA8888_Premultiplied:
    case QImage::Format_Grayscale8:
    case QImage::Format_Alpha8:
        return {format, false};
    case QImage::Format_ARGB32:
        return {QImage::Format_ARGB32_Premultiplied, true};
    case QImage::Format_RGBA8888:
        return {QImage::Format_RGBA8888_Premultiplied, true};
    default:
        if (QImage::toPixelFormat(format).alphaUsage() == QPixelFormat::UsesAlpha)
            return {QImage::Format_ARGB32_Premultiplied, false};
        return {QImage::Format_RGB32, false};
    }
}

QImage toWorkFormat(const QImage& image, const WorkFormat& format) {
    if (image.format() == format.work)
        return image;
    return image.convertToFormat(format.work);
}

QImage fromWorkFormat(QImage image, QImage::Format original, const WorkFormat& format) {
    if (format.convertBack && !image.isNull())
        image.convertTo(original);
    return image;
}

int cvType(const QImage& image) {
    return image.depth() == 8 ? CV_8UC1 : CV_8UC4;
}

// Headers over Qt's pixels, without copying. OpenCV only reads through the const one.
cv::Mat wrap(const QImage& image) {
    return cv::Mat(image.height(), image.width(), cvType(image), const_cast<uchar*>(image.constBits()),
                   static_cast<std::size_t>(image.bytesPerLine()));
}

cv::Mat wrap(QImage& image) {
    return cv::Mat(image.height(), image.width(), cvType(image), image.bits(),
                   static_cast<std::size_t>(image.bytesPerLine()));
}

} // namespace

namespace ImageFilters {

QImage gaussianBlur(const QImage& image, double sigma) {
    if (image.isNull() || !(sigma > 0))
        return image;
    const WorkFormat format = workFormatFor(image.format());
    const QImage source = toWorkFormat(image, format);
    QImage result(source.size(), source.format());
    if (source.isNull() || result.isNull())
        return {};
    // Beyond the picture's own size a wider kernel changes nothing visible and only costs memory.
    const double limit = std::max(source.width(), source.height());
    sigma = std::min(sigma, limit);
    cv::Mat out = wrap(result);
    cv::GaussianBlur(wrap(source), out, cv::Size(0, 0), sigma, sigma, cv::BORDER_REFLECT_101);
    return fromWorkFormat(std::move(result), image.format(), format);
}

QImage areaScaled(const QImage& image, const QRect& source, const QSize& size) {
    const QRect region = source.intersected(image.rect());
    if (image.isNull() || region.isEmpty() || size.isEmpty())
        return {};
    const WorkFormat format = workFormatFor(image.format());
    const QImage input = toWorkFormat(image, format);
    QImage result(size, input.format());
    if (input.isNull() || result.isNull())
        return {};
    const cv::Mat whole = wrap(input);
    const cv::Mat part = whole(cv::Rect(region.x(), region.y(), region.width(), region.height()));
    cv::Mat out = wrap(result);
    cv::resize(part, out, out.size(), 0, 0, cv::INTER_AREA);
    return fromWorkFormat(std::move(result), image.format(), format);
}

QImage blendWithMaskOverClear(const QImage& image, const QImage& mask) {
    if (image.isNull() || mask.isNull() || image.size() != mask.size() || mask.depth() != 8)
        return {};
    const QImage input = image.hasAlphaChannel() ? image.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                                                 : image.convertToFormat(QImage::Format_RGB32);
    QImage result(input.size(), QImage::Format_ARGB32_Premultiplied);
    if (input.isNull() || result.isNull())
        return {};
    const bool opaque = !input.hasAlphaChannel();
    // Rows are split among the cores; each writes only its own.
    cv::parallel_for_(cv::Range(0, input.height()), [&](const cv::Range& rows) {
        for (int y = rows.start; y < rows.end; ++y) {
            const quint32* in = reinterpret_cast<const quint32*>(input.constScanLine(y));
            const uchar* m = mask.constScanLine(y);
            quint32* out = reinterpret_cast<quint32*>(result.scanLine(y));
            for (int x = 0; x < input.width(); ++x) {
                const quint32 pixel = opaque ? (in[x] | 0xFF000000u) : in[x];
                const quint32 k = m[x];
                // Two channels at a time: (c × k + 128) × 257 >> 16 is c × k / 255 rounded.
                quint32 rb = (pixel & 0x00FF00FFu) * k + 0x00800080u;
                rb = ((rb + ((rb >> 8) & 0x00FF00FFu)) >> 8) & 0x00FF00FFu;
                quint32 ag = ((pixel >> 8) & 0x00FF00FFu) * k + 0x00800080u;
                ag = (ag + ((ag >> 8) & 0x00FF00FFu)) & 0xFF00FF00u;
                out[x] = rb | ag;
            }
        }
    });
    return result;
}

QImage hueAdjust(const QImage& image, double radians) {
    if (image.isNull())
        return image;
    const WorkFormat format = workFormatFor(image.format());
    const QImage input = toWorkFormat(image, format)
                             .convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                      : QImage::Format_RGB32);
    QImage result(input.size(), input.format());
    if (input.isNull() || result.isNull())
        return {};
    // RGB to YIQ, a turn of the I-Q plane, and back, as one matrix. Red, yellow and green lie clockwise
    // in that plane, so a positive angle turns it clockwise: red goes towards yellow, the same way round
    // the wheel as a rising hue in HSB.
    const cv::Matx33d toYiq(0.299, 0.587, 0.114, 0.596, -0.274, -0.322, 0.211, -0.523, 0.312);
    const double c = std::cos(radians), s = std::sin(radians);
    const cv::Matx33d turn(1, 0, 0, 0, c, s, 0, -s, c);
    const cv::Matx33d rgb = toYiq.inv() * turn * toYiq;
    // The pixels are B, G, R, A in memory; alpha passes through (premultiplied colour stays within it
    // up to rounding, and is clamped there).
    cv::Matx44d bgra = cv::Matx44d::zeros();
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            bgra(2 - i, 2 - j) = rgb(i, j);
    bgra(3, 3) = 1.0;
    cv::Mat out = wrap(result);
    cv::transform(wrap(input), out, bgra);
    if (input.hasAlphaChannel()) {
        for (int y = 0; y < result.height(); ++y) {
            uchar* p = result.scanLine(y);
            for (int x = 0; x < result.width(); ++x, p += 4)
                for (int k = 0; k < 3; ++k)
                    p[k] = std::min(p[k], p[3]);
        }
    }
    return fromWorkFormat(std::move(result), image.format(), format);
}

} // namespace ImageFilters
