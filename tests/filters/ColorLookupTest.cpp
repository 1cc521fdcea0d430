#include "CubeTestSupport.h"

#include "filters/ColorLookup.h"
#include "resources/AssetNames.h"

#include <QImage>
#include <gtest/gtest.h>

using namespace cubetest;

namespace {

// Whether reading `picture` at `dimension` logged "Invalid colorLUT" and gave no cube.
bool refused(const QImage& picture, int dimension) {
    testing::internal::CaptureStdout();
    const auto cube = filterWithLookupImage(picture, dimension);
    const std::string log = testing::internal::GetCapturedStdout();
    EXPECT_EQ(cube.has_value(), log.empty()) << log;
    return !cube && log == "Invalid colorLUT\n";
}

QImage blank(int w, int h) {
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(Qt::gray);
    return image;
}

} // namespace

TEST(LookupPicture, OnlyAWholeGridOfNTilesIsACube) {
    EXPECT_FALSE(refused(blank(512, 512), 64));
    EXPECT_FALSE(refused(blank(128, 32), 16)); // 8 × 2 tiles: the grid need not be square
    EXPECT_FALSE(refused(blank(1, 1), 1));
    EXPECT_TRUE(refused(blank(512, 256), 64)); // 8 × 4 = 32 tiles for a 64-cube
    EXPECT_TRUE(refused(blank(513, 512), 64));
    EXPECT_TRUE(refused(blank(1, 1), 64));
    EXPECT_TRUE(refused(blank(20000, 64), 64));
    EXPECT_TRUE(refused(blank(512, 512), 0));
    EXPECT_TRUE(refused(blank(512, 512), -64));
    EXPECT_TRUE(refused(QImage(), 64));
}

TEST(LookupPicture, TilesAreReadRedAcrossGreenDownBlueByTileNumber) {
    // Every pixel names its own place, so any mix-up of axes, tiles or rows shows in the entries.
    constexpr int n = 4, columns = 2, rows = 2;
    QImage picture(n * columns, n * rows, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, qRgb(x * 10, y * 10, 200));
    const auto cube = filterWithLookupImage(picture, n);
    ASSERT_TRUE(cube);
    ASSERT_EQ(cube->dimension, n);
    ASSERT_EQ(cube->data.size(), std::size_t(n * n * n * 4));
    for (int b = 0; b < n; ++b)
        for (int g = 0; g < n; ++g)
            for (int r = 0; r < n; ++r) {
                const int x = (b % columns) * n + r, y = (b / columns) * n + g;
                const float* e = cube->data.data() + ((b * n + g) * n + r) * 4;
                EXPECT_FLOAT_EQ(e[0], float(x * 10 / 255.0)) << r << g << b;
                EXPECT_FLOAT_EQ(e[1], float(y * 10 / 255.0)) << r << g << b;
                EXPECT_FLOAT_EQ(e[2], float(200 / 255.0));
                EXPECT_FLOAT_EQ(e[3], 1.0f);
            }
}

TEST(ApplyColorLookup, TheIdentityLookupKeepsThePicture) {
    const ImagePtr photo = Image::make(samplePhoto("baboon.jpg", {301, 217}));
    const ImagePtr identity = Image::make(assetLookup(AssetNames::identityLookup()));
    const ImagePtr identityResult = applyColorLookup(identity, photo);
    ASSERT_TRUE(identityResult);
    EXPECT_LE(worstDifference(identityResult->bitmap(), photo->bitmap()), 1);
}

TEST(ApplyColorLookup, KeepsTheOrientationAtScaleOneAndGivesNothingForBadInput) {
    const QImage bitmap = samplePhoto("fruits.jpg", {40, 30});
    const ImagePtr source = Image::make(bitmap, 3.0, ImageOrientation::leftMirrored);
    const ImagePtr lookup = Image::make(assetLookup("Night"));
    const ImagePtr result = applyColorLookup(lookup, source);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->orientation(), ImageOrientation::leftMirrored);
    EXPECT_EQ(result->scale(), 1.0);
    EXPECT_EQ(result->pixelSize(), bitmap.size()); // the stored pixels, not turned
    EXPECT_NE(result->bitmap(), bitmap);

    EXPECT_FALSE(applyColorLookup(lookup, nullptr));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(applyColorLookup(Image::make(blank(512, 256)), source));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Invalid colorLUT\n");
}
