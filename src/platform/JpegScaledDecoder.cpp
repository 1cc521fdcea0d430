#include "platform/JpegScaledDecoder.h"

#include <QtGlobal>
#include <algorithm>
#include <memory>
#include <turbojpeg.h>

// TJPF_BGRA lays pixels out as B, G, R, A bytes with A = 255, which is Format_RGB32 on this byte order.
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN);

namespace JpegScaledDecoder {

namespace {

struct HandleDeleter {
    void operator()(void* handle) const { tjDestroy(handle); }
};
using Handle = std::unique_ptr<void, HandleDeleter>;

QSize sizeAt(QSize stored, tjscalingfactor factor) {
    return QSize(TJSCALED(stored.width(), factor), TJSCALED(stored.height(), factor));
}

} // namespace

std::vector<QSize> stepSizes(QSize stored) {
    std::vector<QSize> sizes;
    if (stored.isEmpty())
        return sizes;
    int count = 0;
    const tjscalingfactor* factors = tjGetScalingFactors(&count);
    for (int i = 0; factors && i < count; ++i) {
        const tjscalingfactor f = factors[i];
        if (f.num > f.denom)
            continue; // enlargements are never wanted
        const QSize size = sizeAt(stored, f);
        if (std::find(sizes.begin(), sizes.end(), size) == sizes.end())
            sizes.push_back(size);
    }
    std::sort(sizes.begin(), sizes.end(), [](QSize a, QSize b) { return a.width() < b.width(); });
    if (sizes.empty() || sizes.back() != stored)
        sizes.push_back(stored);
    return sizes;
}

QSize scaledSize(QSize stored, double factor) {
    for (const QSize size : stepSizes(stored))
        if (size.width() >= stored.width() * factor && size.height() >= stored.height() * factor)
            return size;
    return stored;
}

QImage decode(const QByteArray& data, QSize size, QString* error) {
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return QImage();
    };
    const Handle handle(tjInitDecompress());
    if (!handle)
        return fail(QStringLiteral("cannot start the JPEG decoder"));
    const auto* bytes = reinterpret_cast<const unsigned char*>(data.constData());
    const auto length = static_cast<unsigned long>(data.size());
    int width = 0, height = 0, subsampling = 0, colorspace = 0;
    if (tjDecompressHeader3(handle.get(), bytes, length, &width, &height, &subsampling, &colorspace) != 0)
        return fail(QString::fromUtf8(tjGetErrorStr2(handle.get())));
    if (colorspace == TJCS_CMYK || colorspace == TJCS_YCCK)
        return fail(QStringLiteral("CMYK JPEG"));
    // The decoder would quietly pick the largest step inside the box; a size that is no step is the
    // caller's mistake and must not come back as some other size.
    const std::vector<QSize> steps = stepSizes(QSize(width, height));
    const bool isStep = std::find(steps.begin(), steps.end(), size) != steps.end();
    if (!isStep)
        return fail(QStringLiteral("no decoder step gives %1 × %2").arg(size.width()).arg(size.height()));

    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return fail(
            QStringLiteral("not enough memory for a %1 × %2 picture").arg(size.width()).arg(size.height()));
    // Warnings (a damaged entropy segment in a file whose structure is whole) still give a picture,
    // as they do in every libjpeg-based viewer.
    if (tjDecompress2(handle.get(), bytes, length, image.bits(), size.width(), int(image.bytesPerLine()),
                      size.height(), TJPF_BGRA, 0) != 0 &&
        tjGetErrorCode(handle.get()) == TJERR_FATAL)
        return fail(QString::fromUtf8(tjGetErrorStr2(handle.get())));
    return image;
}

} // namespace JpegScaledDecoder
