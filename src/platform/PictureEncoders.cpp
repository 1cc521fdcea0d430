#include "platform/PictureEncoders.h"

#include <QColorSpace>
#include <QRgb>
#include <QtEndian>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <libdeflate.h>
#include <limits>
#include <memory>
#include <turbojpeg.h>
#include <vector>

namespace {

// Where the upright picture's pixels lie in the stored bitmap: the byte offset of its top-left pixel and
// the byte steps to the next pixel of a row and to the next row. Turning a picture is then only a walk.
struct UprightWalk {
    int width = 0, height = 0; // upright
    std::ptrdiff_t origin = 0, alongRow = 0, nextRow = 0;
};

UprightWalk walkFor(const QImage& bitmap, ImageOrientation orientation) {
    const int w = bitmap.width(), h = bitmap.height();
    const std::ptrdiff_t pixel = 4, line = bitmap.bytesPerLine();
    const auto at = [&](int x, int y) { return y * line + x * pixel; };
    switch (orientation) {
    case ImageOrientation::up:
        break;
    case ImageOrientation::down:
        return {w, h, at(w - 1, h - 1), -pixel, -line};
    case ImageOrientation::upMirrored:
        return {w, h, at(w - 1, 0), -pixel, line};
    case ImageOrientation::downMirrored:
        return {w, h, at(0, h - 1), pixel, -line};
    // The quarter turns: an upright row is a stored column.
    case ImageOrientation::right:
        return {h, w, at(0, h - 1), -line, pixel};
    case ImageOrientation::left:
        return {h, w, at(w - 1, 0), line, -pixel};
    case ImageOrientation::leftMirrored:
        return {h, w, 0, line, pixel};
    case ImageOrientation::rightMirrored:
        return {h, w, at(w - 1, h - 1), -line, -pixel};
    }
    return {w, h, 0, pixel, line};
}

bool isEncodable(const QImage& bitmap) {
    return !bitmap.isNull() && (bitmap.format() == QImage::Format_RGB32 ||
                                bitmap.format() == QImage::Format_ARGB32_Premultiplied);
}

// The stored rows already are the upright rows, in order, so the bitmap can be read as it is.
bool rowsInPlace(const UprightWalk& walk) {
    return walk.alongRow == std::ptrdiff_t(sizeof(QRgb)) && walk.nextRow > 0;
}

// Copies upright row `y` into `out` (`walk.width` pixels).
void copyUprightRow(const QImage& bitmap, const UprightWalk& walk, int y, QRgb* out) {
    const uchar* start = bitmap.constBits() + walk.origin + y * walk.nextRow;
    if (walk.alongRow == std::ptrdiff_t(sizeof(QRgb))) {
        std::memcpy(out, start, std::size_t(walk.width) * sizeof(QRgb));
        return;
    }
    for (int x = 0; x < walk.width; ++x)
        out[x] = *reinterpret_cast<const QRgb*>(start + x * walk.alongRow);
}

// A premultiplied pixel laid over opaque white: each channel gains what the pixel's alpha leaves
// uncovered, which cannot carry since a premultiplied channel never exceeds its alpha.
inline QRgb overWhite(QRgb premultiplied) {
    const QRgb uncovered = 255 - qAlpha(premultiplied);
    return (premultiplied + uncovered * 0x010101u) | 0xff000000u;
}

template <typename T> std::unique_ptr<T[]> uninitialized(std::size_t count) {
    return std::unique_ptr<T[]>(new (std::nothrow) T[count]);
}

struct TurboCompressor {
    tjhandle handle = tjInitCompress();
    ~TurboCompressor() {
        if (handle)
            tjDestroy(handle);
    }
};

// The colour profile as APP2 segments, after the JFIF header, split where a segment is full.
void insertIccProfile(QByteArray& jpeg, const QByteArray& profile) {
    constexpr qsizetype perSegment = 65535 - 2 - 14;
    const qsizetype count = (profile.size() + perSegment - 1) / perSegment;
    if (profile.isEmpty() || count > 255 || jpeg.size() < 4)
        return;
    QByteArray segments;
    for (qsizetype i = 0; i < count; ++i) {
        const QByteArray part = profile.mid(i * perSegment, perSegment);
        const qsizetype length = 2 + 14 + part.size();
        segments += "\xff\xe2";
        segments += char(length >> 8);
        segments += char(length & 0xff);
        segments += QByteArray("ICC_PROFILE", 12); // with its terminating zero
        segments += char(i + 1);
        segments += char(count);
        segments += part;
    }
    qsizetype at = 2; // after the start of image
    if (uchar(jpeg[2]) == 0xff && uchar(jpeg[3]) == 0xe0 && jpeg.size() >= 6)
        at = 4 + (uchar(jpeg[4]) << 8 | uchar(jpeg[5]));
    jpeg.insert(at, segments);
}

// PNG writing ------------------------------------------------------------------------------------

// The "up" filter: each byte less the one above it. On photos and canvases it leaves deflate nearly as
// little to do as choosing a filter per row would, at a fraction of the cost.
void filterUp(const uint8_t* row, const uint8_t* above, std::size_t bytes, uint8_t* out) {
    *out++ = 2;
    for (std::size_t i = 0; i < bytes; ++i)
        out[i] = uint8_t(row[i] - above[i]);
}

uint8_t* putBigEndian(uint8_t* out, uint32_t value) {
    qToBigEndian(value, out);
    return out + 4;
}

// Length, type, the data already in place after them, and the CRC of type and data.
uint8_t* closeChunk(uint8_t* chunk, const char type[4], std::size_t length) {
    putBigEndian(chunk, uint32_t(length));
    std::memcpy(chunk + 4, type, 4);
    const uint32_t crc = libdeflate_crc32(0, chunk + 4, 4 + length);
    return putBigEndian(chunk + 8 + length, crc);
}

struct DeflateCompressor {
    libdeflate_compressor* handle;
    explicit DeflateCompressor(int level) : handle(libdeflate_alloc_compressor(level)) {}
    ~DeflateCompressor() {
        if (handle)
            libdeflate_free_compressor(handle);
    }
};

// The fastest level: against zlib's level 1 it still gives the smaller file.
constexpr int kDeflateLevel = 1;

} // namespace

QByteArray encodeJpeg(const QImage& bitmap, ImageOrientation orientation, int quality) {
    if (!isEncodable(bitmap))
        return {};
    const UprightWalk walk = walkFor(bitmap, orientation);
    const uchar* pixels = bitmap.constBits();
    int pitch = int(bitmap.bytesPerLine());
    // An opaque upright bitmap goes to the codec as it is; anything else is laid out upright, over
    // white, in one pass.
    std::unique_ptr<QRgb[]> upright;
    if (bitmap.hasAlphaChannel() || !rowsInPlace(walk)) {
        upright = uninitialized<QRgb>(std::size_t(walk.width) * std::size_t(walk.height));
        if (!upright)
            return {};
        for (int y = 0; y < walk.height; ++y) {
            QRgb* row = upright.get() + std::size_t(y) * std::size_t(walk.width);
            copyUprightRow(bitmap, walk, y, row);
            if (bitmap.hasAlphaChannel())
                for (int x = 0; x < walk.width; ++x)
                    row[x] = overWhite(row[x]);
        }
        pixels = reinterpret_cast<const uchar*>(upright.get());
        pitch = walk.width * int(sizeof(QRgb));
    }

    TurboCompressor compressor;
    if (!compressor.handle)
        return {};
    // The worst case is reserved but only the pages written are ever touched.
    unsigned long size = tjBufSize(walk.width, walk.height, TJSAMP_420);
    if (size == static_cast<unsigned long>(-1) ||
        size > static_cast<unsigned long>(std::numeric_limits<qsizetype>::max()))
        return {};
    QByteArray jpeg(qsizetype(size), Qt::Uninitialized);
    if (jpeg.isNull())
        return {};
    auto* out = reinterpret_cast<unsigned char*>(jpeg.data());
    constexpr int format = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? TJPF_BGRX : TJPF_XRGB;
    if (tjCompress2(compressor.handle, pixels, walk.width, pitch, walk.height, format, &out, &size,
                    TJSAMP_420, std::clamp(quality, 1, 100), TJFLAG_NOREALLOC) != 0)
        return {};
    jpeg.resize(qsizetype(size));
    if (bitmap.colorSpace().isValid())
        insertIccProfile(jpeg, bitmap.colorSpace().iccProfile());
    return jpeg;
}

QByteArray encodePng(const QImage& bitmap, ImageOrientation orientation) {
    if (!isEncodable(bitmap))
        return {};
    const UprightWalk walk = walkFor(bitmap, orientation);
    const bool alpha = bitmap.hasAlphaChannel();
    const int bpp = alpha ? 4 : 3;
    const std::size_t rowBytes = std::size_t(walk.width) * std::size_t(bpp);
    const std::size_t filteredSize = (rowBytes + 1) * std::size_t(walk.height);

    // Rows become file bytes a strip at a time through Qt's own conversion, so straight alpha comes out
    // exactly as QImage::convertToFormat makes it. Deflate wants all the filtered rows at once.
    auto filtered = uninitialized<uint8_t>(filteredSize);
    if (!filtered)
        return {};
    constexpr int stripRows = 16;
    std::vector<QRgb> gathered(rowsInPlace(walk) ? 0 : std::size_t(walk.width) * stripRows);
    std::vector<uint8_t> previous(rowBytes, 0); // the row above the strip, zero above the first
    for (int top = 0; top < walk.height; top += stripRows) {
        const int count = std::min(stripRows, walk.height - top);
        QImage strip;
        if (gathered.empty()) {
            strip = QImage(bitmap.constBits() + walk.origin + top * walk.nextRow, walk.width, count,
                           qsizetype(walk.nextRow), bitmap.format());
        } else {
            for (int r = 0; r < count; ++r)
                copyUprightRow(bitmap, walk, top + r, gathered.data() + std::size_t(r) * walk.width);
            strip = QImage(reinterpret_cast<const uchar*>(gathered.data()), walk.width, count,
                           qsizetype(walk.width) * qsizetype(sizeof(QRgb)), bitmap.format());
        }
        const QImage bytes = strip.convertToFormat(alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
        if (bytes.isNull())
            return {};
        const uint8_t* above = previous.data();
        for (int r = 0; r < count; ++r) {
            const uint8_t* row = bytes.constScanLine(r);
            filterUp(row, above, rowBytes, filtered.get() + std::size_t(top + r) * (rowBytes + 1));
            above = row;
        }
        std::memcpy(previous.data(), above, rowBytes);
    }

    DeflateCompressor compressor(kDeflateLevel);
    if (!compressor.handle)
        return {};
    const std::size_t bound = libdeflate_zlib_compress_bound(compressor.handle, filteredSize);
    constexpr std::size_t signatureSize = 8, headerSize = 12 + 13, chunkOverhead = 12;
    // The colour profile, when the picture has one, goes in an iCCP chunk before the pixels.
    QByteArray profile;
    if (bitmap.colorSpace().isValid()) {
        const QByteArray icc = bitmap.colorSpace().iccProfile();
        profile = QByteArray("ICC Profile\0\0", 13); // name, its terminating zero, deflate
        const std::size_t iccBound =
            libdeflate_zlib_compress_bound(compressor.handle, std::size_t(icc.size()));
        profile.resize(13 + qsizetype(iccBound));
        const std::size_t packed = libdeflate_zlib_compress(
            compressor.handle, icc.constData(), std::size_t(icc.size()), profile.data() + 13, iccBound);
        profile.resize(packed && !icc.isEmpty() ? 13 + qsizetype(packed) : 0);
    }
    const std::size_t profileSize = profile.isEmpty() ? 0 : chunkOverhead + std::size_t(profile.size());
    const std::size_t total =
        signatureSize + headerSize + profileSize + chunkOverhead + bound + chunkOverhead;
    if (total > std::size_t(std::numeric_limits<qsizetype>::max()))
        return {};
    QByteArray png(qsizetype(total), Qt::Uninitialized);
    if (png.isNull())
        return {};
    auto* start = reinterpret_cast<uint8_t*>(png.data());
    std::memcpy(start, "\x89PNG\r\n\x1a\n", signatureSize);

    uint8_t* header = start + signatureSize;
    uint8_t* fields = putBigEndian(putBigEndian(header + 8, uint32_t(walk.width)), uint32_t(walk.height));
    // 8 bits a sample, RGBA or RGB, deflate, adaptive filtering, not interlaced.
    const uint8_t rest[] = {8, uint8_t(alpha ? 6 : 2), 0, 0, 0};
    std::memcpy(fields, rest, sizeof rest);
    uint8_t* idat = closeChunk(header, "IHDR", 13);
    if (!profile.isEmpty()) {
        std::memcpy(idat + 8, profile.constData(), std::size_t(profile.size()));
        idat = closeChunk(idat, "iCCP", std::size_t(profile.size()));
    }

    const std::size_t compressed =
        libdeflate_zlib_compress(compressor.handle, filtered.get(), filteredSize, idat + 8, bound);
    // A chunk holds at most 2^31 - 1 bytes, far more than a picture within Image's pixel limit needs.
    if (compressed == 0 || compressed > 0x7fffffff)
        return {};
    uint8_t* end = closeChunk(idat, "IDAT", compressed);
    end = closeChunk(end, "IEND", 0);
    png.resize(qsizetype(end - start));
    return png;
}
