#include "ImageDecode.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <png.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <vector>

namespace lumivex::faceswap {

namespace {

std::uint32_t be16(std::string_view b, std::size_t at) {
    return (std::uint32_t(std::uint8_t(b[at])) << 8) | std::uint8_t(b[at + 1]);
}
std::uint32_t be32(std::string_view b, std::size_t at) {
    return (be16(b, at) << 16) | be16(b, at + 2);
}
std::uint32_t le16(std::string_view b, std::size_t at) {
    return (std::uint32_t(std::uint8_t(b[at + 1])) << 8) | std::uint8_t(b[at]);
}
std::uint32_t le32(std::string_view b, std::size_t at) {
    return (le16(b, at + 2) << 16) | le16(b, at);
}

bool startsWith(std::string_view bytes, std::string_view magic, std::size_t at = 0) {
    return bytes.size() >= at + magic.size() && bytes.substr(at, magic.size()) == magic;
}

ImageHeader jpegHeader(std::string_view b) {
    ImageHeader h;
    std::size_t at = 2;
    while (at + 4 <= b.size()) {
        if (std::uint8_t(b[at]) != 0xFF)
            return h;
        const std::uint8_t marker = std::uint8_t(b[at + 1]);
        if (marker == 0xFF) { // fill byte
            ++at;
            continue;
        }
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
            at += 2;
            continue;
        }
        if (marker == 0xD9 || marker == 0xDA) // end of image or start of scan before any frame header
            return h;
        const std::size_t length = be16(b, at + 2);
        const bool frame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (frame) {
            if (at + 9 > b.size() || length < 7)
                return h;
            h.format = ImageFormat::Jpeg;
            h.height = be16(b, at + 5);
            h.width = be16(b, at + 7);
            h.progressive = marker == 0xC2 || marker == 0xC6 || marker == 0xCA || marker == 0xCE;
            return h;
        }
        at += 2 + length;
    }
    return h;
}

ImageHeader webpHeader(std::string_view b) {
    ImageHeader h;
    if (b.size() < 30)
        return h;
    const std::string_view chunk = b.substr(12, 4);
    if (chunk == "VP8X") {
        h.width = 1 + std::int64_t(le16(b, 24) | (std::uint32_t(std::uint8_t(b[26])) << 16));
        h.height = 1 + std::int64_t(le16(b, 27) | (std::uint32_t(std::uint8_t(b[29])) << 16));
    } else if (chunk == "VP8L") {
        if (std::uint8_t(b[20]) != 0x2F)
            return h;
        const std::uint32_t bits = le32(b, 21);
        h.width = 1 + std::int64_t(bits & 0x3FFF);
        h.height = 1 + std::int64_t((bits >> 14) & 0x3FFF);
    } else if (chunk == "VP8 ") {
        if (!startsWith(b, "\x9D\x01\x2A", 23))
            return h;
        h.width = le16(b, 26) & 0x3FFF;
        h.height = le16(b, 28) & 0x3FFF;
    } else {
        return h;
    }
    h.format = ImageFormat::WebP;
    return h;
}

ImageHeader bmpHeader(std::string_view b) {
    ImageHeader h;
    if (b.size() < 26)
        return h;
    const std::uint32_t infoSize = le32(b, 14);
    if (infoSize == 12) {
        h.width = le16(b, 18);
        h.height = le16(b, 20);
    } else {
        h.width = std::int32_t(le32(b, 18));
        h.height = std::abs(std::int64_t(std::int32_t(le32(b, 22)))); // negative: rows top-down
    }
    h.format = ImageFormat::Bmp;
    return h;
}

ImageHeader tiffHeader(std::string_view b) {
    ImageHeader h;
    const bool little = b[0] == 'I';
    auto u16 = [&](std::size_t at) { return little ? le16(b, at) : be16(b, at); };
    auto u32 = [&](std::size_t at) { return little ? le32(b, at) : be32(b, at); };
    if (b.size() < 8)
        return h;
    const std::size_t ifd = u32(4);
    if (ifd + 2 > b.size())
        return h;
    const std::size_t count = u16(ifd);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = ifd + 2 + 12 * i;
        if (entry + 12 > b.size())
            return h;
        const std::uint32_t tag = u16(entry), type = u16(entry + 2);
        const std::uint32_t value = type == 3 ? u16(entry + 8) : u32(entry + 8);
        if (tag == 256)
            h.width = value;
        else if (tag == 257)
            h.height = value;
    }
    h.format = ImageFormat::Tiff;
    return h;
}

std::string megapixels(std::int64_t pixels) {
    return std::to_string((pixels + 500'000) / 1'000'000) + " MP";
}

std::string sizeText(const ImageHeader& h) {
    return std::to_string(h.width) + " × " + std::to_string(h.height) + " pixels (" + megapixels(h.pixels()) +
           ")";
}

// The smallest whole reduction factor that brings the picture to the working size.
int reductionFor(std::int64_t pixels, std::int64_t working) {
    int factor = 1;
    while (pixels / (std::int64_t(factor) * factor) > working)
        ++factor;
    return factor;
}

cv::Mat shrinkTo(cv::Mat image, std::int64_t working) {
    const double pixels = double(image.total());
    if (pixels <= double(working))
        return image;
    const double scale = std::sqrt(double(working) / pixels);
    cv::Mat out;
    cv::resize(image, out, cv::Size(), scale, scale, cv::INTER_AREA);
    return out;
}

struct PngSource {
    std::string_view bytes;
    std::size_t at = 0;
};

void pngRead(png_structp png, png_bytep out, png_size_t length) {
    auto* src = static_cast<PngSource*>(png_get_io_ptr(png));
    if (src->bytes.size() - src->at < length)
        png_error(png, "truncated");
    std::memcpy(out, src->bytes.data() + src->at, length);
    src->at += length;
}

void pngWarning(png_structp, png_const_charp) {}

// Row-by-row PNG decoding, each `factor` × `factor` block averaged into one pixel, so memory is a row and
// the output. Only plain C objects live across the setjmp: libpng reports errors by longjmp.
bool decodePngReduced(std::string_view bytes, int factor, cv::Mat& out) {
    PngSource source{bytes, 0};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, pngWarning);
    if (!png)
        return false;
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return false;
    }
    png_bytep volatile row = nullptr;
    std::uint32_t* volatile sums = nullptr;
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_read_struct(&png, &info, nullptr);
        std::free(row);
        std::free(sums);
        return false;
    }
    png_set_read_fn(png, &source, pngRead);
    png_set_user_limits(png, 0x7fffffff, 0x7fffffff);
    png_read_info(png, info);
    const png_uint_32 width = png_get_image_width(png, info);
    const png_uint_32 height = png_get_image_height(png, info);
    png_set_expand(png);
    png_set_strip_16(png);
    png_set_gray_to_rgb(png);
    png_set_strip_alpha(png);
    png_set_bgr(png);
    png_read_update_info(png, info);
    if (png_get_channels(png, info) != 3)
        png_error(png, "unexpected channel count");

    const int outWidth = int((width + factor - 1) / factor);
    const int outHeight = int((height + factor - 1) / factor);
    out.create(outHeight, outWidth, CV_8UC3);
    row = static_cast<png_bytep>(std::malloc(png_get_rowbytes(png, info)));
    sums = static_cast<std::uint32_t*>(std::calloc(std::size_t(outWidth) * 3, sizeof(std::uint32_t)));
    if (!row || !sums)
        png_error(png, "out of memory");
    for (png_uint_32 y = 0; y < height; ++y) {
        png_read_row(png, row, nullptr);
        for (png_uint_32 x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c)
                sums[(x / factor) * 3 + c] += row[x * 3 + c];
        const bool lastOfBlock = (y + 1) % factor == 0 || y + 1 == height;
        if (!lastOfBlock)
            continue;
        const png_uint_32 rowsInBlock = y % factor + 1;
        std::uint8_t* dst = out.ptr<std::uint8_t>(int(y / factor));
        for (int ox = 0; ox < outWidth; ++ox) {
            const png_uint_32 cols = std::min<png_uint_32>(factor, width - png_uint_32(ox) * factor);
            const png_uint_32 count = cols * rowsInBlock;
            for (int c = 0; c < 3; ++c)
                dst[ox * 3 + c] = std::uint8_t((sums[ox * 3 + c] + count / 2) / count);
        }
        std::memset(sums, 0, std::size_t(outWidth) * 3 * sizeof(std::uint32_t));
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::free(row);
    std::free(sums);
    return true;
}

cv::Mat imdecodeSafely(std::string_view bytes, int flags) {
    try {
        return cv::imdecode(cv::Mat(1, int(bytes.size()), CV_8U, const_cast<char*>(bytes.data())), flags);
    } catch (const cv::Exception&) {
        return {};
    }
}

} // namespace

ImageHeader readImageHeader(std::string_view b) {
    if (startsWith(b, "\xFF\xD8\xFF"))
        return jpegHeader(b);
    if (startsWith(b, "\x89PNG\r\n\x1A\n")) {
        ImageHeader h;
        if (b.size() < 29 || b.substr(12, 4) != "IHDR")
            return h;
        h.format = ImageFormat::Png;
        h.width = be32(b, 16);
        h.height = be32(b, 20);
        h.interlaced = b[28] != 0;
        return h;
    }
    if (startsWith(b, "RIFF") && startsWith(b, "WEBP", 8))
        return webpHeader(b);
    if (startsWith(b, "BM"))
        return bmpHeader(b);
    if (startsWith(b, std::string_view("II*\0", 4)) || startsWith(b, std::string_view("MM\0*", 4)))
        return tiffHeader(b);
    return {};
}

DecodedImage decodeLimited(std::string_view bytes, const DecodeLimits& limits, const std::string& what) {
    DecodedImage out;
    out.header = readImageHeader(bytes);
    const ImageHeader& h = out.header;
    if (!h.valid()) {
        out.reason = "The " + what + " could not be read";
        return out;
    }
    if (h.pixels() > limits.maxPixels) {
        out.reason = "The " + what + " is " + sizeText(h) + "; photos up to " + megapixels(limits.maxPixels) +
                     " are accepted";
        return out;
    }
    const bool streams =
        (h.format == ImageFormat::Jpeg && !h.progressive) || (h.format == ImageFormat::Png && !h.interlaced);
    if (!streams && h.pixels() > limits.fullDecodePixels) {
        out.reason = "The " + what + " is " + sizeText(h) + "; in this format (" +
                     std::string(h.format == ImageFormat::Jpeg  ? "progressive JPEG"
                                 : h.format == ImageFormat::Png ? "interlaced PNG"
                                                                : "WebP, BMP or TIFF") +
                     ") photos up to " + megapixels(limits.fullDecodePixels) + " are accepted";
        return out;
    }

    cv::Mat image;
    const int factor = reductionFor(h.pixels(), limits.workingPixels);
    if (h.format == ImageFormat::Jpeg && factor > 1) {
        // libjpeg scales by 1/2, 1/4 or 1/8 while decoding; the rest is done by resizing.
        const int flags = factor >= 8   ? cv::IMREAD_REDUCED_COLOR_8
                          : factor >= 4 ? cv::IMREAD_REDUCED_COLOR_4
                                        : cv::IMREAD_REDUCED_COLOR_2;
        image = imdecodeSafely(bytes, flags);
    } else if (h.format == ImageFormat::Png && !h.interlaced) {
        if (!decodePngReduced(bytes, factor, image))
            image.release();
    } else {
        image = imdecodeSafely(bytes, cv::IMREAD_COLOR);
    }
    if (image.empty()) {
        out.reason = "The " + what + " could not be read";
        return out;
    }
    out.bgr = shrinkTo(image, limits.workingPixels);
    return out;
}

} // namespace lumivex::faceswap
