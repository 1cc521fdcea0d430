#include "platform/PngReducedDecoder.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <png.h>
#include <vector>

// libpng is asked for B, G, R, A bytes, which is Format_RGB32 and Format_ARGB32 on this byte order.
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN);

namespace PngReducedDecoder {

namespace {

struct Reader {
    const uchar* data;
    std::size_t size;
    std::size_t position;
    char message[160];
};

void readBytes(png_structp png, png_bytep out, png_size_t length) {
    auto* reader = static_cast<Reader*>(png_get_io_ptr(png));
    if (reader->size - reader->position < length)
        png_error(png, "unexpected end of file");
    std::memcpy(out, reader->data + reader->position, length);
    reader->position += length;
}

void onError(png_structp png, png_const_charp message) {
    auto* reader = static_cast<Reader*>(png_get_error_ptr(png));
    std::snprintf(reader->message, sizeof reader->message, "%s", message);
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

// Everything libpng's jumps may cross: plain values and pointers into buffers owned by decode(), so
// a jump out of libpng skips no destructor.
struct Job {
    int storedWidth = 0;
    int storedHeight = 0;
    bool alpha = false;
    int divisor = 1;
    int width = 0;
    uchar* row = nullptr;
    std::uint64_t* sums = nullptr;
    uchar* out = nullptr;
    qsizetype outStride = 0;
};

// Runs `step` with libpng's error jump armed; false when libpng gave up.
bool guarded(png_structp png, png_infop info, Job* job, void (*step)(png_structp, png_infop, Job*)) {
    if (setjmp(png_jmpbuf(png)))
        return false;
    step(png, info, job);
    return true;
}

void readHeader(png_structp png, png_infop info, Job* job) {
    png_set_user_limits(png, 0x7fffffff, 0x7fffffff);
    png_read_info(png, info);
    job->storedWidth = int(png_get_image_width(png, info));
    job->storedHeight = int(png_get_image_height(png, info));
    const int colorType = png_get_color_type(png, info);
    job->alpha = (colorType & PNG_COLOR_MASK_ALPHA) || png_get_valid(png, info, PNG_INFO_tRNS);
    if (png_get_interlace_type(png, info) != PNG_INTERLACE_NONE)
        png_error(png, "interlaced");
    png_set_expand(png);
    png_set_strip_16(png);
    if (!(colorType & PNG_COLOR_MASK_COLOR))
        png_set_gray_to_rgb(png);
    png_set_bgr(png);
    if (!job->alpha)
        png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
    png_read_update_info(png, info);
    if (png_get_rowbytes(png, info) != png_size_t(job->storedWidth) * 4)
        png_error(png, "unexpected row layout");
}

// Writes one row of block averages; sums are of premultiplied channels when the picture has alpha.
void emitRow(const Job& job, int rows, QRgb* out) {
    for (int ox = 0; ox < job.width; ++ox) {
        const int columns = std::min(job.divisor, job.storedWidth - ox * job.divisor);
        const std::uint64_t count = std::uint64_t(rows) * columns;
        const std::uint64_t* s = job.sums + std::size_t(ox) * 4;
        auto average = [](std::uint64_t sum, std::uint64_t n) { return int((sum + n / 2) / n); };
        if (job.alpha)
            out[ox] = qRgba(average(s[2], count * 255), average(s[1], count * 255),
                            average(s[0], count * 255), average(s[3], count));
        else
            out[ox] = qRgb(average(s[2], count), average(s[1], count), average(s[0], count));
    }
}

void readRows(png_structp png, png_infop, Job* job) {
    const int divisor = job->divisor;
    for (int y = 0; y < job->storedHeight; ++y) {
        png_read_row(png, job->row, nullptr);
        const uchar* p = job->row;
        std::uint64_t* s = job->sums;
        for (int x0 = 0; x0 < job->storedWidth; x0 += divisor, s += 4) {
            const int end = std::min(job->storedWidth, x0 + divisor);
            std::uint64_t b = 0, g = 0, r = 0, a = 0;
            if (job->alpha) {
                for (int x = x0; x < end; ++x, p += 4) {
                    b += unsigned(p[0]) * p[3];
                    g += unsigned(p[1]) * p[3];
                    r += unsigned(p[2]) * p[3];
                    a += p[3];
                }
            } else {
                for (int x = x0; x < end; ++x, p += 4) {
                    b += p[0];
                    g += p[1];
                    r += p[2];
                }
            }
            s[0] += b;
            s[1] += g;
            s[2] += r;
            s[3] += a;
        }
        const int rowsInBlock = y % divisor + 1;
        if (rowsInBlock == divisor || y == job->storedHeight - 1) {
            emitRow(*job, rowsInBlock, reinterpret_cast<QRgb*>(job->out + (y / divisor) * job->outStride));
            std::fill(job->sums, job->sums + std::size_t(job->width) * 4, 0);
        }
    }
    png_read_end(png, nullptr);
}

} // namespace

bool canDecodeRowByRow(const QByteArray& data) {
    // IHDR's interlace method, at a fixed place after the signature and the chunk's header.
    return data.size() > 28 && data[28] == 0;
}

QSize reducedSize(QSize stored, int divisor) {
    divisor = std::max(1, divisor);
    return QSize((stored.width() + divisor - 1) / divisor, (stored.height() + divisor - 1) / divisor);
}

QImage decode(const QByteArray& data, int divisor, QString* error) {
    Reader reader{reinterpret_cast<const uchar*>(data.constData()), std::size_t(data.size()), 0, {}};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reader, onError, onWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    auto fail = [&](const char* reason) {
        if (error)
            *error = QStringLiteral("cannot decode PNG: %1").arg(QString::fromUtf8(reason));
        png_destroy_read_struct(&png, &info, nullptr);
        return QImage();
    };
    if (!png || !info)
        return fail("out of memory");
    png_set_read_fn(png, &reader, readBytes);
    Job job;
    if (!guarded(png, info, &job, readHeader))
        return fail(reader.message);

    job.divisor = std::max(1, divisor);
    const QSize size = reducedSize(QSize(job.storedWidth, job.storedHeight), job.divisor);
    job.width = size.width();
    QImage image(size, job.alpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (image.isNull())
        return fail("out of memory");
    std::vector<uchar> row(std::size_t(job.storedWidth) * 4);
    std::vector<std::uint64_t> sums(std::size_t(size.width()) * 4);
    job.row = row.data();
    job.sums = sums.data();
    job.out = image.bits();
    job.outStride = image.bytesPerLine();
    if (!guarded(png, info, &job, readRows))
        return fail(reader.message);
    png_destroy_read_struct(&png, &info, nullptr);
    return image;
}

} // namespace PngReducedDecoder
