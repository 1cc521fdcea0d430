// Uploaded photos: the size read from each format's header, refusals with reasons, and reduced decoding that
// gives what a full decode and an area resize would.

#include "ImageDecode.h"

#include <gtest/gtest.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

using namespace lumivex::faceswap;

namespace {

std::string encode(const cv::Mat& image, const std::string& ext, const std::vector<int>& params = {}) {
    std::vector<uchar> bytes;
    EXPECT_TRUE(cv::imencode(ext, image, bytes, params)) << ext;
    return {bytes.begin(), bytes.end()};
}

// Smooth colour ramps with some texture: what resampling errors would show in.
cv::Mat testPicture(int width, int height) {
    cv::Mat image(height, width, CV_8UC3);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.at<cv::Vec3b>(y, x) = cv::Vec3b(uchar(255 * x / width), uchar(255 * y / height),
                                                  uchar(128 + 100 * std::sin(x * 0.05) * std::cos(y * 0.07)));
    return image;
}

// A PNG whose header claims a size; the data that follows is never reached.
std::string pngClaiming(std::uint32_t width, std::uint32_t height) {
    std::string bytes("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR", 16);
    for (std::uint32_t v : {width, height})
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += char((v >> shift) & 0xFF);
    bytes += std::string("\x08\x02\0\0\0", 5);
    return bytes + std::string(64, '\0');
}

} // namespace

TEST(ImageDecode, HeadersGiveFormatAndSizeWithoutDecoding) {
    const cv::Mat picture = testPicture(37, 23);
    const struct {
        std::string bytes;
        ImageFormat format;
        bool progressive;
    } cases[] = {
        {encode(picture, ".jpg"), ImageFormat::Jpeg, false},
        {encode(picture, ".jpg", {cv::IMWRITE_JPEG_PROGRESSIVE, 1}), ImageFormat::Jpeg, true},
        {encode(picture, ".png"), ImageFormat::Png, false},
        {encode(picture, ".webp", {cv::IMWRITE_WEBP_QUALITY, 101}), ImageFormat::WebP, false},
        {encode(picture, ".webp", {cv::IMWRITE_WEBP_QUALITY, 80}), ImageFormat::WebP, false},
        {encode(picture, ".bmp"), ImageFormat::Bmp, false},
        {encode(picture, ".tiff"), ImageFormat::Tiff, false},
    };
    for (const auto& c : cases) {
        const ImageHeader h = readImageHeader(c.bytes);
        EXPECT_EQ(h.format, c.format);
        EXPECT_EQ(h.width, 37);
        EXPECT_EQ(h.height, 23);
        EXPECT_EQ(h.progressive, c.progressive);
        // Cut short before the size: no header, rather than a made-up size.
        EXPECT_FALSE(readImageHeader(std::string_view(c.bytes).substr(0, 12)).valid());
    }
    EXPECT_FALSE(readImageHeader("plain words").valid());
    const ImageHeader claimed = readImageHeader(pngClaiming(20000, 20000));
    EXPECT_EQ(claimed.pixels(), 400'000'000);
}

TEST(ImageDecode, PhotosBeyondTheLimitsAreRefusedWithTheirSize) {
    const DecodeLimits limits{200'000'000, 4'000'000, 1'000'000};
    const DecodedImage bomb = decodeLimited(pngClaiming(20000, 20000), limits, "source photo");
    EXPECT_TRUE(bomb.bgr.empty());
    EXPECT_EQ(bomb.reason,
              "The source photo is 20000 × 20000 pixels (400 MP); photos up to 200 MP are accepted");

    // Formats that can only be decoded whole have the lower limit.
    const std::string tiff = encode(testPicture(1200, 1000), ".tiff");
    const DecodedImage whole = decodeLimited(tiff, limits, "target photo");
    EXPECT_TRUE(whole.bgr.empty());
    EXPECT_EQ(whole.reason,
              "The target photo is 1200 × 1000 pixels (1 MP); in this format (WebP, BMP or TIFF) "
              "photos up to 1 MP are accepted");

    // A header that promises more than the file holds is unreadable, not a crash.
    const DecodedImage cut = decodeLimited(pngClaiming(3000, 3000), limits, "target photo");
    EXPECT_EQ(cut.reason, "The target photo could not be read");
}

TEST(ImageDecode, LargePhotosAreDecodedReducedLikeAFullDecodeResized) {
    const cv::Mat picture = testPicture(2400, 1700);
    const DecodeLimits limits{200'000'000, 500'000, 40'000'000};
    for (const std::string& ext : {std::string(".png"), std::string(".jpg")}) {
        SCOPED_TRACE(ext);
        const std::string bytes = encode(picture, ext, {cv::IMWRITE_JPEG_QUALITY, 95});
        const DecodedImage reduced = decodeLimited(bytes, limits, "source photo");
        ASSERT_TRUE(reduced.reason.empty()) << reduced.reason;
        EXPECT_LE(reduced.bgr.total(), 500'000u);
        EXPECT_GE(reduced.bgr.total(), 400'000u);
        EXPECT_NEAR(double(reduced.bgr.cols) / reduced.bgr.rows, 2400.0 / 1700, 0.01);
        cv::Mat expected, diff;
        cv::resize(picture, expected, reduced.bgr.size(), 0, 0, cv::INTER_AREA);
        cv::absdiff(expected, reduced.bgr, diff);
        const cv::Scalar mean = cv::mean(diff);
        EXPECT_LT((mean[0] + mean[1] + mean[2]) / 3, 2.0);
    }
    // Small photos are decoded as they are.
    const DecodedImage small = decodeLimited(encode(picture(cv::Rect(0, 0, 300, 200)), ".png"), limits, "x");
    EXPECT_EQ(small.bgr.size(), cv::Size(300, 200));
}
