#pragma once

// Reading uploaded photos without trusting them: the pixel size comes from the file's header before any
// decoding, anything beyond a limit is refused with a reason, and large photos are decoded reduced (JPEG
// through libjpeg's DCT scaling, PNG row by row with area averaging) so memory follows the working size,
// not the file's.

#include <opencv2/core.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace lumivex::faceswap {

enum class ImageFormat { Unknown, Jpeg, Png, WebP, Bmp, Tiff };

struct ImageHeader {
    ImageFormat format = ImageFormat::Unknown;
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool progressive = false; // JPEG: the decoder must hold every coefficient at full size
    bool interlaced = false;  // PNG (Adam7): rows cannot be reduced as they arrive
    bool valid() const { return format != ImageFormat::Unknown && width > 0 && height > 0; }
    std::int64_t pixels() const { return width * height; }
};

// The format and pixel size as the header states them; invalid when the bytes are no photo format read
// here or the header is cut short.
ImageHeader readImageHeader(std::string_view bytes);

struct DecodeLimits {
    std::int64_t maxPixels = 200'000'000;       // refused beyond this
    std::int64_t workingPixels = 4'000'000;     // decoded at about this size at most
    std::int64_t fullDecodePixels = 40'000'000; // formats read only whole (WebP, BMP, TIFF, progressive JPEG,
                                                // interlaced PNG) are refused beyond this
};

struct DecodedImage {
    cv::Mat bgr;        // 8-bit BGR, at most about workingPixels
    std::string reason; // why nothing was decoded; empty on success
    ImageHeader header;
};

// `what` names the photo in reasons ("source photo").
DecodedImage decodeLimited(std::string_view bytes, const DecodeLimits& limits, const std::string& what);

} // namespace lumivex::faceswap
