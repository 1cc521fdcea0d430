#include "platform/ImageFilters.h"

#include <algorithm>
#include <cmath>
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

} // namespace ImageFilters
