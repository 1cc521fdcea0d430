#include "collage/BackdropBlur.h"

#include "platform/ImageFilters.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace BackdropBlur {

namespace {

// The blur left to do after downscaling, in working pixels. Three is enough for the painter's
// bilinear enlargement to stay invisible under it; coarser would save little and show steps.
constexpr double kWorkingSigma = 3.0;

// Area averaging and the later bilinear enlargement each soften a little, about 1/12 and 1/6 of a
// working pixel squared, so the Gaussian takes that much less.
constexpr double kResamplingVariance = 0.25;

bool swapsSides(ImageOrientation orientation) {
    switch (orientation) {
    case ImageOrientation::left:
    case ImageOrientation::right:
    case ImageOrientation::leftMirrored:
    case ImageOrientation::rightMirrored:
        return true;
    default:
        return false;
    }
}

int atLeastOne(double pixels) {
    return std::max(1, static_cast<int>(std::lround(pixels)));
}

// White laid over premultiplied pixels at opacity `veil`: every channel, alpha included, moves the
// same way towards 255, which keeps opaque pixels opaque and premultiplied pixels valid.
void applyVeil(QImage& image, double veil) {
    if (!(veil > 0) || image.isNull())
        return;
    std::array<uchar, 256> table;
    for (int v = 0; v < 256; ++v)
        table[v] = static_cast<uchar>(std::lround(v * (1.0 - veil) + 255.0 * veil));
    const qsizetype rowBytes = qsizetype(image.width()) * image.depth() / 8;
    for (int y = 0; y < image.height(); ++y) {
        uchar* row = image.scanLine(y);
        for (qsizetype i = 0; i < rowBytes; ++i)
            row[i] = table[row[i]];
    }
}

// Averages the centred `width` × `height` window of the stored pixels down to `size`. Averaging by a
// whole factor takes OpenCV's fast path, about three times quicker on a camera photo, so the window is
// trimmed to a multiple of the whole part of `step` (losing less than a working pixel at the edges),
// and only the remainder is averaged the general way, on a picture already many times smaller.
QImage shrink(const QImage& stored, int width, int height, QSize size, double step) {
    const int factor = static_cast<int>(step);
    if (factor < 2 || width < factor || height < factor) {
        const QRect window((stored.width() - width) / 2, (stored.height() - height) / 2, width, height);
        return ImageFilters::areaScaled(stored, window, size);
    }
    const int trimmedWidth = width / factor * factor;
    const int trimmedHeight = height / factor * factor;
    const QRect window((stored.width() - trimmedWidth) / 2, (stored.height() - trimmedHeight) / 2,
                       trimmedWidth, trimmedHeight);
    const QImage coarse = ImageFilters::areaScaled(stored, window, window.size() / factor);
    if (coarse.isNull() || coarse.size() == size)
        return coarse;
    return ImageFilters::areaScaled(coarse, coarse.rect(), size);
}

} // namespace

QImage make(const Image& photo, QSizeF paneSizePoints, double screenScale, double fraction) {
    const double paneWidth = paneSizePoints.width() * screenScale;
    const double paneHeight = paneSizePoints.height() * screenScale;
    if (!(paneWidth > 0) || !(paneHeight > 0) || !std::isfinite(paneWidth) || !std::isfinite(paneHeight))
        return {};
    const QImage& stored = photo.bitmap();
    if (stored.isNull())
        return {};
    fraction = std::isnan(fraction) ? 0.0 : std::clamp(fraction, 0.0, 1.0);

    // Work in upright pixels; the stored bitmap is read through the same centred window.
    const bool swaps = swapsSides(photo.orientation());
    const double sourceWidth = swaps ? stored.height() : stored.width();
    const double sourceHeight = swaps ? stored.width() : stored.height();

    // Aspect fill: `fill` pane pixels per source pixel, the window centred.
    const double fill = std::max(paneWidth / sourceWidth, paneHeight / sourceHeight);
    const double windowWidth = std::min(sourceWidth, paneWidth / fill);
    const double windowHeight = std::min(sourceHeight, paneHeight / fill);

    // One working pixel spans `step` source pixels: never finer than the source or the pane needs, and
    // as coarse as the blur allows.
    const double sigmaSource = kFullRadius * fraction * screenScale / fill;
    const double step = std::max({1.0, 1.0 / fill, sigmaSource / kWorkingSigma});
    int workWidth = atLeastOne(windowWidth / step);
    int workHeight = atLeastOne(windowHeight / step);

    int windowW = std::clamp(atLeastOne(windowWidth), 1, int(sourceWidth));
    int windowH = std::clamp(atLeastOne(windowHeight), 1, int(sourceHeight));
    if (swaps) {
        std::swap(windowW, windowH);
        std::swap(workWidth, workHeight);
    }
    QImage small = shrink(stored, windowW, windowH, QSize(workWidth, workHeight), step);
    if (small.isNull())
        return {};
    if (photo.orientation() != ImageOrientation::up) {
        const ImagePtr turned = Image::make(std::move(small), 1.0, photo.orientation());
        if (!turned)
            return {};
        small = turned->uprightBitmap();
        if (small.isNull())
            return {};
    }

    const double sigmaWork = sigmaSource * small.width() / windowWidth;
    const double variance = sigmaWork * sigmaWork - (step > 1.0 ? kResamplingVariance : 0.0);
    QImage result = variance > 0 ? ImageFilters::gaussianBlur(small, std::sqrt(variance)) : std::move(small);
    if (result.isNull())
        return {};
    applyVeil(result, kFullVeil * fraction);
    return result;
}

} // namespace BackdropBlur
