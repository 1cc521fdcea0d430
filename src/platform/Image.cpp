#include "platform/Image.h"

#include "platform/HeifDecoder.h"
#include "platform/JpegScaledDecoder.h"
#include "platform/PhotoMemoryBudget.h"
#include "platform/PictureEncoders.h"
#include "platform/PngReducedDecoder.h"

#include <QBuffer>
#include <QFile>
#include <QImageIOHandler>
#include <QImageReader>
#include <QTransform>
#include <QtEndian>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <mutex>

namespace {

using Transformations = QImageIOHandler::Transformations;

struct OrientationInfo {
    ImageOrientation orientation;
    int exif;
    QImageIOHandler::Transformation transformation; // what turns the stored pixels upright
};

// Indexed by the orientation's raw value.
constexpr std::array<OrientationInfo, 8> orientationTable{{
    {ImageOrientation::up, 1, QImageIOHandler::TransformationNone},
    {ImageOrientation::down, 3, QImageIOHandler::TransformationRotate180},
    {ImageOrientation::left, 8, QImageIOHandler::TransformationRotate270},
    {ImageOrientation::right, 6, QImageIOHandler::TransformationRotate90},
    {ImageOrientation::upMirrored, 2, QImageIOHandler::TransformationMirror},
    {ImageOrientation::downMirrored, 4, QImageIOHandler::TransformationFlip},
    {ImageOrientation::leftMirrored, 5, QImageIOHandler::TransformationFlipAndRotate90},
    {ImageOrientation::rightMirrored, 7, QImageIOHandler::TransformationMirrorAndRotate90},
}};

const OrientationInfo& infoFor(ImageOrientation orientation) {
    return orientationTable[static_cast<std::size_t>(orientation) & 7];
}

ImageOrientation orientationFor(Transformations transformations) {
    for (const auto& info : orientationTable)
        if (Transformations(info.transformation) == transformations)
            return info.orientation;
    return ImageOrientation::up;
}

bool swapsSides(ImageOrientation orientation) {
    return infoFor(orientation).transformation & QImageIOHandler::TransformationRotate90;
}

bool isRestartOrStuffing(uchar byte) {
    return byte == 0x00 || (byte >= 0xD0 && byte <= 0xD7);
}

// libjpeg decodes a cut-off file without complaint, padding the missing rows with grey, so the file's
// structure is checked first: every segment must fit and the end-of-image marker must be reached.
bool jpegIsComplete(const QByteArray& data) {
    const auto* p = reinterpret_cast<const uchar*>(data.constData());
    const qsizetype n = data.size();
    if (n < 4 || p[0] != 0xFF || p[1] != 0xD8)
        return false;
    qsizetype i = 2;
    while (i < n) {
        // Tolerate stray bytes between segments, as libjpeg does.
        while (i < n && p[i] != 0xFF)
            ++i;
        while (i < n && p[i] == 0xFF)
            ++i;
        if (i >= n)
            return false;
        const uchar marker = p[i++];
        if (marker == 0xD9)
            return true;
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7))
            continue;
        if (i + 2 > n)
            return false;
        const int length = (p[i] << 8) | p[i + 1];
        if (length < 2 || i + length > n)
            return false;
        i += length;
        if (marker == 0xDA) {
            // Entropy-coded data runs until a marker that is neither a stuffed zero nor a restart.
            for (;;) {
                const void* ff = std::memchr(p + i, 0xFF, static_cast<std::size_t>(n - i));
                if (!ff)
                    return false;
                i = static_cast<const uchar*>(ff) - p;
                if (i + 1 >= n)
                    return false;
                if (!isRestartOrStuffing(p[i + 1]))
                    break;
                i += 2;
            }
        }
    }
    return false;
}

// A PNG is whole when its chunks follow each other up to IEND.
bool pngIsComplete(const QByteArray& data) {
    const auto* p = reinterpret_cast<const uchar*>(data.constData());
    const qsizetype n = data.size();
    qsizetype i = 8;
    while (i + 12 <= n) {
        const quint32 length = qFromBigEndian<quint32>(p + i);
        const bool isEnd = std::memcmp(p + i + 4, "IEND", 4) == 0;
        if (length > 0x7FFFFFFFu || qsizetype(length) > n - i - 12)
            return false;
        i += 12 + qsizetype(length);
        if (isEnd)
            return true;
    }
    return false;
}

// Qt's BMP reader fills in whatever rows are missing, so the pixel array must be all there.
bool bmpIsComplete(const QByteArray& data) {
    const auto* p = reinterpret_cast<const uchar*>(data.constData());
    const qsizetype n = data.size();
    if (n < 26)
        return false;
    const std::int64_t pixelOffset = qFromLittleEndian<quint32>(p + 10);
    const quint32 headerSize = qFromLittleEndian<quint32>(p + 14);
    std::int64_t width, height, bitsPerPixel;
    quint32 compression = 0;
    if (headerSize == 12) { // the old OS/2 header
        width = qFromLittleEndian<quint16>(p + 18);
        height = qFromLittleEndian<quint16>(p + 20);
        bitsPerPixel = qFromLittleEndian<quint16>(p + 24);
    } else {
        if (n < 38)
            return false;
        width = qFromLittleEndian<qint32>(p + 18);
        height = std::abs(std::int64_t(qFromLittleEndian<qint32>(p + 22)));
        bitsPerPixel = qFromLittleEndian<quint16>(p + 28);
        compression = qFromLittleEndian<quint32>(p + 30);
    }
    constexpr quint32 rgb = 0, bitfields = 3, alphaBitfields = 6;
    if (compression != rgb && compression != bitfields && compression != alphaBitfields) {
        // Run-length data has no fixed size; the declared image size is all there is to go by.
        const quint32 imageSize = qFromLittleEndian<quint32>(p + 34);
        return pixelOffset + imageSize <= n;
    }
    const std::int64_t rowBytes = (bitsPerPixel * width + 31) / 32 * 4;
    return pixelOffset + rowBytes * height <= n;
}

// Qt's GIF reader shows a cut-off frame as far as it got. Only the first frame is read, so the file
// must hold that frame's data up to its terminating block.
bool gifIsComplete(const QByteArray& data) {
    const auto* p = reinterpret_cast<const uchar*>(data.constData());
    const qsizetype n = data.size();
    auto colorTableSize = [](uchar flags) { return (flags & 0x80) ? 3 * (2 << (flags & 7)) : 0; };
    // Skips a chain of sub-blocks; answers the position after the terminator, or -1.
    auto skipSubBlocks = [&](qsizetype i) -> qsizetype {
        while (i < n) {
            const uchar length = p[i++];
            if (length == 0)
                return i;
            i += length;
        }
        return -1;
    };
    if (n < 13)
        return false;
    qsizetype i = 13 + colorTableSize(p[10]);
    while (i < n) {
        const uchar block = p[i++];
        if (block == 0x21) { // extension: label, then sub-blocks
            if (++i > n || (i = skipSubBlocks(i)) < 0)
                return false;
        } else if (block == 0x2C) { // image: descriptor, local colours, code size, sub-blocks
            if (i + 9 > n)
                return false;
            i += 9 + colorTableSize(p[i + 8]) + 1;
            return i <= n && skipSubBlocks(i) >= 0;
        } else {
            return false; // the trailer or garbage before any frame
        }
    }
    return false;
}

bool isComplete(const QByteArray& format, const QByteArray& data) {
    if (format == "jpeg" || format == "jpg")
        return jpegIsComplete(data);
    if (format == "png")
        return pngIsComplete(data);
    if (format == "bmp")
        return bmpIsComplete(data);
    if (format == "gif")
        return gifIsComplete(data);
    return true;
}

// Qt refuses by default to allocate more than 128 MB for a decoded picture, which a 40 MP photo already
// exceeds. Our own pixel limit has been checked by now, so make room for what it allows: up to 16 bytes
// per pixel, for float TIFFs. The limit is process-wide, so it is only ever raised.
void ensureAllocationLimit(std::int64_t pixels) {
    static std::mutex mutex;
    const std::int64_t neededMb = pixels * 16 / (1024 * 1024) + 1;
    std::lock_guard lock(mutex);
    const int current = QImageReader::allocationLimit();
    if (current != 0 && current < neededMb)
        QImageReader::setAllocationLimit(static_cast<int>(neededMb));
}

bool isValidScale(double scale) {
    return std::isfinite(scale) && scale > 0;
}

std::int64_t bytesFor(QSize size) {
    return std::int64_t(size.width()) * size.height() * 4;
}

// The fraction of the stored sides a picture needs to cover `box` either way round; 1 for no box.
double coverFactor(QSize stored, QSize box) {
    if (box.isEmpty())
        return 1.0;
    const double longer = std::max(stored.width(), stored.height());
    const double shorter = std::min(stored.width(), stored.height());
    const double factor =
        std::max(std::max(box.width(), box.height()) / longer, std::min(box.width(), box.height()) / shorter);
    return std::min(1.0, factor);
}

bool isJpegFormat(const QByteArray& format) {
    return format == "jpeg" || format == "jpg";
}

// How a picture can be decoded smaller: JPEG in eighths inside its decoder, PNG by whole-number block
// averages a row at a time, WebP and SVG by their Qt readers at any size; anything else is decoded whole
// and then scaled, holding the whole picture for a moment.
enum class Reduction { jpegSteps, pngBlocks, reader, afterDecode };

Reduction reductionFor(const QByteArray& format, const QByteArray& data) {
    if (isJpegFormat(format))
        return Reduction::jpegSteps;
    if (format == "png")
        return PngReducedDecoder::canDecodeRowByRow(data) ? Reduction::pngBlocks : Reduction::afterDecode;
    if (format == "webp" || format == "svg" || format == "svgz")
        return Reduction::reader;
    return Reduction::afterDecode;
}

// The sizes a picture stored at `stored` can be decoded at.
struct SizePlan {
    QSize stored;
    Reduction reduction;

    // Sizes the decoder can give, smallest first, ending with the stored size; empty when any will do.
    std::vector<QSize> steps() const {
        if (reduction == Reduction::jpegSteps)
            return JpegScaledDecoder::stepSizes(stored);
        std::vector<QSize> sizes;
        if (reduction == Reduction::pngBlocks) {
            for (int divisor = std::max(stored.width(), stored.height()); divisor >= 1; --divisor)
                if (sizes.empty() || sizes.back() != PngReducedDecoder::reducedSize(stored, divisor))
                    sizes.push_back(PngReducedDecoder::reducedSize(stored, divisor));
        }
        return sizes;
    }

    // The smallest size whose sides are both at least `factor` of the stored ones.
    QSize covering(double factor) const {
        if (factor >= 1.0)
            return stored;
        for (const QSize size : steps())
            if (size.width() >= stored.width() * factor && size.height() >= stored.height() * factor)
                return size;
        if (reduction == Reduction::jpegSteps || reduction == Reduction::pngBlocks)
            return stored;
        return QSize(std::clamp(int(std::ceil(stored.width() * factor)), 1, stored.width()),
                     std::clamp(int(std::ceil(stored.height() * factor)), 1, stored.height()));
    }

    // The largest size whose pixels, with `extra` bytes beside them, fit in `room` bytes; empty if none.
    QSize largestWithin(std::int64_t room, std::int64_t extra) const {
        const std::vector<QSize> sizes = steps();
        if (!sizes.empty()) {
            for (auto it = sizes.rbegin(); it != sizes.rend(); ++it)
                if (bytesFor(*it) + extra <= room)
                    return *it;
            return {};
        }
        const double factor = std::min(1.0, std::sqrt(double(room - extra) / double(bytesFor(stored))));
        if (!(factor > 0))
            return {};
        const QSize size(int(stored.width() * factor), int(stored.height() * factor));
        return size.isEmpty() ? QSize() : size;
    }

    // The block size that gives `size` (one of the steps) for a PNG.
    int divisorFor(QSize size) const {
        const int longest = std::max(stored.width(), stored.height());
        for (int divisor = std::max(1, stored.width() / size.width() - 1); divisor <= longest; ++divisor)
            if (PngReducedDecoder::reducedSize(stored, divisor) == size)
                return divisor;
        return 1;
    }
};

QString megabytes(std::int64_t bytes) {
    return QString::number((bytes + (1 << 19)) >> 20);
}

struct Decoded {
    QImage bitmap;
    ImageOrientation orientation = ImageOrientation::up;
    QSize storedSize;
    std::optional<PhotoMemoryBudget::Reservation> hold;
};

struct Reserved {
    QSize target;
    std::optional<PhotoMemoryBudget::Reservation> hold;
};

// Charges the budget for decoding a picture planned by `plan` at the size the options want, or at the
// largest smaller size the budget still holds. The file's `fileBytes` are held until the pixels are
// out; `decoderBytes` more are held by the decoder on the way; a decoder that can only give the whole
// picture (`scalesAfter`) holds it whole for a moment before it is scaled. Nothing when there is no
// room, with the reason in `error`.
std::optional<Reserved> reserveRoom(const SizePlan& plan, std::int64_t fileBytes, std::int64_t decoderBytes,
                                    bool scalesAfter, const DecodeOptions& options, QString* error) {
    const QSize size = plan.stored;
    const QSize wanted = plan.covering(coverFactor(size, options.coverSize));
    const std::int64_t fullStep = fileBytes + decoderBytes + (scalesAfter ? bytesFor(size) : 0);
    auto cost = [&](QSize decoded) {
        return bytesFor(decoded) + (decoded == size ? fileBytes + decoderBytes : fullStep);
    };
    Reserved reserved{wanted, {}};
    if (!options.budget)
        return reserved;
    reserved.hold = options.budget->reserve(cost(wanted));
    if (reserved.hold)
        return reserved;
    const std::int64_t held = options.budget->used();
    const QSize reduced = plan.largestWithin(options.budget->available(), fullStep);
    const double smallest = std::clamp(options.smallestFraction, 0.0, 1.0);
    if (!reduced.isEmpty() && reduced.width() >= wanted.width() * smallest &&
        reduced.height() >= wanted.height() * smallest)
        reserved.hold = options.budget->reserve(cost(reduced));
    if (!reserved.hold) {
        if (error)
            *error = QStringLiteral("not enough memory for this picture: the photos already open take "
                                    "%1 MB of the %2 MB allowed for photos, and it needs %3 MB")
                         .arg(megabytes(held), megabytes(options.budget->limit()),
                              megabytes(cost(reduced.isEmpty() ? wanted : reduced)));
        return std::nullopt;
    }
    reserved.target = reduced;
    return reserved;
}

// HEIF and AVIF: libheif turns the picture upright as it decodes, so the flag stays up, and it decodes
// only whole, so a smaller picture is scaled from the whole one.
std::optional<Decoded> decodeHeif(const QByteArray& data, const DecodeOptions& options, QString* error) {
    auto fail = [error](const QString& reason) -> std::optional<Decoded> {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    const std::optional<HeifDecoder::Probe> probe = HeifDecoder::probe(data, error);
    if (!probe)
        return std::nullopt;
    const QSize size = probe->size;
    const std::int64_t pixels = std::int64_t(size.width()) * size.height();
    if (pixels > Image::maxPixelCount)
        return fail(
            QStringLiteral("picture of %1 × %2 pixels is too large").arg(size.width()).arg(size.height()));
    const SizePlan plan{size, Reduction::afterDecode};
    // The whole picture is decoded at any target, so it is always a step on the way when reduced.
    std::optional<Reserved> reserved =
        reserveRoom(plan, data.size(), HeifDecoder::transientBytes(size), true, options, error);
    if (!reserved)
        return std::nullopt;
    QImage bitmap = HeifDecoder::decode(data, error);
    if (bitmap.isNull())
        return std::nullopt;
    if (bitmap.size() != size)
        return fail(QStringLiteral("decoded picture does not match its declared size"));
    if (reserved->target != size)
        bitmap = bitmap.scaled(reserved->target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (reserved->hold)
        reserved->hold->shrinkTo(bytesFor(reserved->target));
    return Decoded{std::move(bitmap), ImageOrientation::up, size, std::move(reserved->hold)};
}

std::optional<Decoded> decode(const QByteArray& data, const DecodeOptions& options, QString* error) {
    auto fail = [error](const QString& reason) -> std::optional<Decoded> {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    if (!isValidScale(options.scale))
        return fail(QStringLiteral("invalid scale"));
    if (data.isEmpty())
        return fail(QStringLiteral("empty file"));
    if (HeifDecoder::recognizes(data.left(64)))
        return decodeHeif(data, options, error);

    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    // The phone keeps pixels as stored and carries the EXIF orientation as a flag; so do we.
    reader.setAutoTransform(false);
    if (!reader.canRead())
        return fail(QStringLiteral("not a picture in a readable format"));

    const QByteArray format = reader.format();
    const QSize size = reader.size();
    if (!size.isValid() || size.isEmpty())
        return fail(QStringLiteral("picture size cannot be read"));
    const std::int64_t pixels = std::int64_t(size.width()) * size.height();
    if (pixels > Image::maxPixelCount)
        return fail(
            QStringLiteral("picture of %1 × %2 pixels is too large").arg(size.width()).arg(size.height()));
    if (!isComplete(format, data))
        return fail(QStringLiteral("truncated %1 file").arg(QString::fromLatin1(format)));

    const SizePlan plan{size, reductionFor(format, data)};
    // Readers that cannot decode reduced hold the whole picture for a moment before it is scaled.
    std::optional<Reserved> reserved =
        reserveRoom(plan, data.size(), 0, plan.reduction == Reduction::afterDecode, options, error);
    if (!reserved)
        return std::nullopt;
    const QSize target = reserved->target;
    std::optional<PhotoMemoryBudget::Reservation> hold = std::move(reserved->hold);

    ensureAllocationLimit(pixels);
    QImage bitmap;
    QString why;
    if (plan.reduction == Reduction::jpegSteps)
        bitmap = JpegScaledDecoder::decode(data, target, &why);
    else if (plan.reduction == Reduction::pngBlocks && target != size)
        bitmap = PngReducedDecoder::decode(data, plan.divisorFor(target), &why);
    // What the JPEG decoder cannot turn into RGB (CMYK) goes to Qt's reader, which reduces as well.
    if (bitmap.isNull() && !(plan.reduction == Reduction::pngBlocks && target != size)) {
        if (target != size && plan.reduction != Reduction::afterDecode)
            reader.setScaledSize(target);
        if (!reader.read(&bitmap) || bitmap.isNull())
            return fail(QStringLiteral("cannot decode picture: %1").arg(reader.errorString()));
        if (bitmap.size() != target && plan.reduction == Reduction::afterDecode && bitmap.size() == size)
            bitmap = bitmap.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    if (bitmap.isNull())
        return fail(why.isEmpty() ? QStringLiteral("cannot decode picture") : why);
    if (bitmap.size() != target)
        return fail(QStringLiteral("decoded picture does not match its declared size"));
    if (hold)
        hold->shrinkTo(bytesFor(target));
    return Decoded{std::move(bitmap), orientationFor(reader.transformation()), size, std::move(hold)};
}

} // namespace

int exifOrientation(ImageOrientation orientation) {
    return infoFor(orientation).exif;
}

std::optional<ImageOrientation> orientationFromExif(int exifValue) {
    for (const auto& info : orientationTable)
        if (info.exif == exifValue)
            return info.orientation;
    return std::nullopt;
}

Image::Image(QImage bitmap, double scale, ImageOrientation orientation)
    : bitmap_(std::move(bitmap)), scale_(scale), orientation_(orientation) {}

struct Image::Provenance {
    ImageSource source;
    std::optional<PhotoMemoryBudget::Reservation> hold;
};

ImagePtr Image::make(QImage bitmap, double scale, ImageOrientation orientation) {
    if (bitmap.isNull() || !isValidScale(scale))
        return nullptr;
    const QImage::Format format =
        bitmap.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    if (bitmap.format() != format)
        bitmap.convertTo(format);
    if (bitmap.isNull())
        return nullptr; // conversion could not allocate
    if (bitmap.devicePixelRatio() != 1.0)
        bitmap.setDevicePixelRatio(1.0);
    return ImagePtr(new Image(std::move(bitmap), scale, orientation));
}

ImagePtr Image::fromFile(const QString& path, double scale, QString* error) {
    DecodeOptions options;
    options.scale = scale;
    return fromFile(path, options, error);
}

ImagePtr Image::fromFile(const QString& path, const DecodeOptions& options, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("cannot open %1: %2").arg(path, file.errorString());
        return nullptr;
    }
    std::optional<Decoded> decoded = decode(file.readAll(), options, error);
    if (!decoded)
        return nullptr;
    ImagePtr made = make(std::move(decoded->bitmap), options.scale, decoded->orientation);
    if (!made) {
        if (error)
            *error = QStringLiteral("cannot decode picture");
        return nullptr;
    }
    auto provenance = std::make_shared<Provenance>();
    provenance->source = ImageSource{path, decoded->storedSize};
    provenance->hold = std::move(decoded->hold);
    std::const_pointer_cast<Image>(made)->provenance_ = std::move(provenance);
    return made;
}

ImagePtr Image::fromData(const QByteArray& data, double scale, QString* error) {
    DecodeOptions options;
    options.scale = scale;
    std::optional<Decoded> decoded = decode(data, options, error);
    if (!decoded)
        return nullptr;
    ImagePtr image = make(std::move(decoded->bitmap), scale, decoded->orientation);
    if (!image && error)
        *error = QStringLiteral("cannot decode picture");
    return image;
}

ImagePtr Image::fullResolution(const ImagePtr& image, PhotoMemoryBudget* budget, QString* error) {
    if (!image || !image->isReduced())
        return image;
    const ImageSource& source = *image->source();
    auto keep = [&](const QString& reason) {
        if (error)
            *error = reason;
        return image;
    };
    DecodeOptions options;
    options.budget = budget;
    options.smallestFraction = 0.0; // anything larger than what is held is worth having
    options.scale = image->scale();
    QString why;
    const ImagePtr reread = fromFile(source.path, options, &why);
    if (!reread)
        return keep(why);
    if (reread->source()->fullPixelSize != source.fullPixelSize)
        return keep(QStringLiteral("%1 has changed since it was opened").arg(source.path));
    if (reread->pixelSize().width() <= image->pixelSize().width())
        return keep(QStringLiteral("not enough memory to read %1 at a larger size").arg(source.path));
    if (reread->isReduced() && error)
        *error = QStringLiteral("not enough memory to read all of %1; it was read at %2 × %3")
                     .arg(source.path)
                     .arg(reread->pixelSize().width())
                     .arg(reread->pixelSize().height());
    if (reread->orientation() == image->orientation())
        return reread;
    return reread->withOrientation(image->orientation(), image->scale());
}

const ImageSource* Image::source() const {
    return provenance_ ? &provenance_->source : nullptr;
}

bool Image::isReduced() const {
    return provenance_ && provenance_->source.fullPixelSize != bitmap_.size();
}

QSizeF Image::size() const {
    QSizeF pixels = bitmap_.size();
    if (swapsSides(orientation_))
        pixels.transpose();
    return pixels / scale_;
}

QImage Image::uprightBitmap() const {
    const auto transformation = infoFor(orientation_).transformation;
    if (transformation == QImageIOHandler::TransformationNone)
        return bitmap_;
    if (transformation == QImageIOHandler::TransformationRotate270)
        return bitmap_.transformed(QTransform().rotate(270));
    // Qt's own order for these flags: mirror or flip first, then turn a quarter clockwise.
    QImage result = bitmap_;
    const bool mirror = transformation & QImageIOHandler::TransformationMirror;
    const bool flip = transformation & QImageIOHandler::TransformationFlip;
    if (mirror || flip)
        result = result.mirrored(mirror, flip);
    if (transformation & QImageIOHandler::TransformationRotate90)
        result = result.transformed(QTransform().rotate(90));
    return result;
}

ImagePtr Image::withOrientation(ImageOrientation orientation, double scale) const {
    ImagePtr made = make(bitmap_, scale, orientation);
    if (made)
        std::const_pointer_cast<Image>(made)->provenance_ = provenance_; // the same pixels, the same file
    return made;
}

QByteArray Image::jpegData(double quality) const {
    const double q = std::isnan(quality) ? 0.0 : std::clamp(quality, 0.0, 1.0);
    return encodeJpeg(bitmap_, orientation_, static_cast<int>(std::lround(q * 100)));
}

QByteArray Image::pngData() const {
    return encodePng(bitmap_, orientation_);
}
