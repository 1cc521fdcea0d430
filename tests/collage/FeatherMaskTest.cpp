#include "collage/FeatherMask.h"

#include <QImage>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

// The mask written out pixel by pixel in the plainest way, as the fast renderer must reproduce it.
std::vector<uchar> referenceMask(double w, double h, double hf, double vf, double s, int& W, int& H) {
    const double hp = std::max(std::round(hf) * s, 0.0);
    const double vp = std::max(std::round(vf) * s, 0.0);
    W = std::max(static_cast<int>(std::round(w * s)), 1);
    H = std::max(static_cast<int>(std::round(h * s)), 1);
    std::vector<uchar> alpha(std::size_t(W) * H);
    for (int y = 0; y < H; ++y) {
        const double fy = vp > 0 ? std::clamp(std::min(y, H - 1 - y) / vp, 0.0, 1.0) : 1.0;
        for (int x = 0; x < W; ++x) {
            const double fx = hp > 0 ? std::clamp(std::min(x, W - 1 - x) / hp, 0.0, 1.0) : 1.0;
            alpha[std::size_t(y) * W + x] = uchar(std::clamp(int(fy * fx * 255), 0, 255));
        }
    }
    return alpha;
}

int alphaAt(const ImagePtr& mask, int x, int y) {
    return qAlpha(mask->bitmap().pixel(x, y));
}

} // namespace

TEST(FeatherMaskTest, FullInsideAtTheFeatherAndZeroOnTheEdge) {
    const ImagePtr mask = FeatherMask::make(200, 300, 25, 25, 3);
    ASSERT_TRUE(mask);
    EXPECT_EQ(mask->pixelSize(), QSize(600, 900));
    EXPECT_EQ(mask->scale(), 3.0);

    // 75 pixels in from each edge, at the middle of the other axis.
    EXPECT_EQ(alphaAt(mask, 75, 450), 255);
    EXPECT_EQ(alphaAt(mask, 599 - 75, 450), 255);
    EXPECT_EQ(alphaAt(mask, 300, 75), 255);
    EXPECT_EQ(alphaAt(mask, 300, 899 - 75), 255);
    EXPECT_LT(alphaAt(mask, 74, 450), 255);
    EXPECT_LT(alphaAt(mask, 300, 899 - 74), 255);

    EXPECT_EQ(alphaAt(mask, 0, 450), 0);
    EXPECT_EQ(alphaAt(mask, 599, 450), 0);
    EXPECT_EQ(alphaAt(mask, 300, 0), 0);
    EXPECT_EQ(alphaAt(mask, 300, 899), 0);

    // Corners take the product of both ramps; the mask is white, premultiplied.
    EXPECT_EQ(mask->bitmap().pixel(30, 30), qRgba(40, 40, 40, 40)); // 0.4 × 0.4 × 255 = 40.8
}

TEST(FeatherMaskTest, ZeroFeatherRemovesThatAxisFalloff) {
    const ImagePtr horizontalOff = FeatherMask::make(100, 80, 0, 20, 2);
    ASSERT_TRUE(horizontalOff);
    const QImage& bitmap = horizontalOff->bitmap();
    for (int y : {0, 1, 20, 39, 40, 80, 159})
        for (int x = 0; x < bitmap.width(); ++x)
            ASSERT_EQ(qAlpha(bitmap.pixel(x, y)), qAlpha(bitmap.pixel(100, y))) << x << "," << y;
    EXPECT_EQ(qAlpha(bitmap.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(bitmap.pixel(0, 80)), 255);

    const ImagePtr hard = FeatherMask::make(100, 80, 0, 0, 2);
    ASSERT_TRUE(hard);
    for (int y = 0; y < hard->bitmap().height(); ++y)
        for (int x = 0; x < hard->bitmap().width(); ++x)
            ASSERT_EQ(alphaAt(hard, x, y), 255) << x << "," << y;

    // A negative feather is no feather.
    EXPECT_EQ(FeatherMask::make(100, 80, -10, -3, 2)->bitmap(), hard->bitmap());
}

TEST(FeatherMaskTest, FeathersCountInWholePoints) {
    EXPECT_EQ(FeatherMask::key(200, 300, 25.4, 25.49, 3), FeatherMask::key(200, 300, 25, 25, 3));
    EXPECT_EQ(FeatherMask::make(200, 300, 25.4, 25.4, 3)->bitmap(),
              FeatherMask::make(200, 300, 25.49, 25.49, 3)->bitmap());
    // Half a point rounds away from zero, to the next whole point.
    EXPECT_EQ(FeatherMask::key(200, 300, 25.5, 10, 3), QStringLiteral("600x900-78x30"));
    EXPECT_NE(FeatherMask::make(200, 300, 25.5, 25, 3)->bitmap(),
              FeatherMask::make(200, 300, 25, 25, 3)->bitmap());
}

TEST(FeatherMaskTest, KeyTruncatesWhereSizeRounds) {
    EXPECT_EQ(FeatherMask::key(200, 300, 25, 10, 3), QStringLiteral("600x900-75x30"));
    EXPECT_EQ(FeatherMask::cost(200, 300, 3), 600 * 900 * 4);

    EXPECT_EQ(FeatherMask::key(100.9, 10.5, 2.5, 0, 1), QStringLiteral("100x10-3x0"));
    EXPECT_EQ(FeatherMask::pixelSize(100.9, 10.5, 1), QSize(101, 11));
    EXPECT_EQ(FeatherMask::cost(100.9, 10.5, 1), 101 * 11 * 4);
}

TEST(FeatherMaskTest, SubPixelPaneStillGetsOnePixel) {
    EXPECT_EQ(FeatherMask::pixelSize(0.1, 0.16, 3), QSize(1, 1));
    EXPECT_EQ(FeatherMask::pixelSize(0, -4, 3), QSize(1, 1));
    EXPECT_EQ(FeatherMask::cost(0.1, 0.16, 3), 4);
    EXPECT_EQ(FeatherMask::key(0.1, 0.16, 25, 25, 3), QStringLiteral("0x0-75x75"));

    const ImagePtr feathered = FeatherMask::make(0.1, 0.16, 25, 25, 3);
    ASSERT_TRUE(feathered);
    EXPECT_EQ(feathered->pixelSize(), QSize(1, 1));
    EXPECT_EQ(alphaAt(feathered, 0, 0), 0); // the single pixel is the edge ring
    EXPECT_EQ(alphaAt(FeatherMask::make(0.1, 0.16, 0, 0, 3), 0, 0), 255);
}

TEST(FeatherMaskTest, MatchesTheReferenceExactly) {
    const std::vector<std::pair<double, double>> sizes = {{1, 1},        {2, 3},    {5, 17.3},   {100, 37},
                                                          {390.7, 60.2}, {0.2, 50}, {33.5, 33.5}};
    const std::vector<double> feathers = {-5, 0, 0.4, 1, 2.5, 7.49, 25, 60, 1000};
    const std::vector<double> scales = {0, 1, 2, 2.625, 3};
    constexpr uchar kSentinel = 0xA5;

    std::vector<uchar> buffer;
    for (const auto& [w, h] : sizes)
        for (double s : scales)
            for (double hf : feathers)
                for (double vf : feathers) {
                    int W = 0, H = 0;
                    const std::vector<uchar> expected = referenceMask(w, h, hf, vf, s, W, H);
                    ASSERT_EQ(FeatherMask::pixelSize(w, h, s), QSize(W, H));

                    // A reused buffer with stale bytes and padding past each row.
                    const qsizetype stride = W + 7;
                    buffer.assign(std::size_t(stride) * H, kSentinel);
                    FeatherMask::render(buffer.data(), stride, W, H, std::max(std::round(hf) * s, 0.0),
                                        std::max(std::round(vf) * s, 0.0));
                    const ImagePtr mask = s > 0 ? FeatherMask::make(w, h, hf, vf, s) : nullptr;
                    ASSERT_TRUE(mask || s == 0);
                    for (int y = 0; y < H; ++y) {
                        const uchar* row = buffer.data() + std::size_t(y) * stride;
                        ASSERT_TRUE(std::equal(row, row + W, expected.begin() + std::size_t(y) * W))
                            << w << "x" << h << " feathers " << hf << "," << vf << " scale " << s << " row "
                            << y;
                        ASSERT_TRUE(
                            std::all_of(row + W, row + stride, [](uchar b) { return b == kSentinel; }));
                        // The image form: white, premultiplied.
                        for (int x = 0; mask && x < W; ++x)
                            ASSERT_EQ(mask->bitmap().pixel(x, y), qRgba(row[x], row[x], row[x], row[x]));
                    }
                }
}
