#include "CubeTestSupport.h"

#include "filters/CubeKernel.h"
#include "resources/AssetNames.h"

#include <QImage>
#include <cmath>
#include <gtest/gtest.h>

using namespace cubetest;

namespace {

const CubeApplyOptions plain{CubeInterpolation::trilinear, KernelPath::plain, false};
const CubeApplyOptions avx2{CubeInterpolation::trilinear, KernelPath::avx2, false};
const CubeApplyOptions plainTetrahedral{CubeInterpolation::tetrahedral, KernelPath::plain, false};
const CubeApplyOptions avx2Tetrahedral{CubeInterpolation::tetrahedral, KernelPath::avx2, false};

using Reference = Rgb (*)(const ColorCube&, int, int, int);

// Largest distance of `result` from the reference, over the colour channels of opaque pixels.
int worstAgainst(Reference reference, const ColorCube& cube, const QImage& source, const QImage& result) {
    int worst = 0;
    for (int y = 0; y < source.height(); ++y)
        for (int x = 0; x < source.width(); ++x) {
            const QRgb in = source.pixel(x, y), out = result.pixel(x, y);
            const Rgb expected = reference(cube, qRed(in), qGreen(in), qBlue(in));
            worst = std::max({worst, std::abs(qRed(out) - int(std::lround(expected[0]))),
                              std::abs(qGreen(out) - int(std::lround(expected[1]))),
                              std::abs(qBlue(out) - int(std::lround(expected[2])))});
        }
    return worst;
}

// Two real photos side by side: skin, fur, foliage, saturated fruit, deep shadows.
QImage photos() {
    const QImage a = samplePhoto("baboon.jpg", {131, 97}), b = samplePhoto("fruits.jpg", {130, 97});
    QImage both(a.width() + b.width(), a.height(), QImage::Format_RGB32);
    for (int y = 0; y < both.height(); ++y)
        for (int x = 0; x < both.width(); ++x)
            both.setPixel(x, y, x < a.width() ? a.pixel(x, y) : b.pixel(x - a.width(), y));
    return both;
}

void requireAvx2() {
    if (!cpuHasAvx2())
        GTEST_SKIP() << "this processor has no AVX2: only the plain kernel runs";
}

} // namespace

TEST(CubeKernel, EveryLookMatchesTheTrilinearReferenceOnRealPhotos) {
    const QImage photo = photos();
    for (const QString& name : AssetNames::filterLookups()) {
        const ColorCube cube = cubeOf(assetLookup(name));
        const auto packed = packCube(cube);
        ASSERT_TRUE(packed) << name.toStdString();
        EXPECT_LE(worstAgainst(trilinearReference, cube, photo, applyCube(*packed, photo, plain)), 1)
            << name.toStdString();
        if (cpuHasAvx2()) {
            EXPECT_LE(worstAgainst(trilinearReference, cube, photo, applyCube(*packed, photo, avx2)), 1)
                << name.toStdString();
        }
    }
}

TEST(CubeKernel, TetrahedralMatchesItsReferenceOnRealPhotos) {
    const QImage photo = photos();
    for (const char* name : {"Chemical", "Duetone", "Neon", "Variance"}) {
        const ColorCube cube = cubeOf(assetLookup(name));
        const auto packed = packCube(cube);
        EXPECT_LE(
            worstAgainst(tetrahedralReference, cube, photo, applyCube(*packed, photo, plainTetrahedral)), 1)
            << name;
        if (cpuHasAvx2()) {
            EXPECT_LE(
                worstAgainst(tetrahedralReference, cube, photo, applyCube(*packed, photo, avx2Tetrahedral)),
                1)
                << name;
        }
    }
}

TEST(CubeKernel, IdentityKeepsEveryColourAndBothPathsAgreeOnEveryColour) {
    const QImage all = everyColour();
    const auto identity = packedOf(identityPicture());
    for (CubeInterpolation interpolation : {CubeInterpolation::trilinear, CubeInterpolation::tetrahedral})
        EXPECT_LE(
            worstDifference(applyCube(*identity, all, {interpolation, KernelPath::automatic, true}), all), 1);

    requireAvx2();
    const auto look = packedOf(assetLookup("Glamour"));
    for (CubeInterpolation interpolation : {CubeInterpolation::trilinear, CubeInterpolation::tetrahedral}) {
        const QImage scalar = applyCube(*look, all, {interpolation, KernelPath::plain, true});
        const QImage vector = applyCube(*look, all, {interpolation, KernelPath::avx2, true});
        EXPECT_LE(worstDifference(scalar, vector), 1);
    }
}

TEST(CubeKernel, TransparentPixelsAreLookedUpStraightAndKeepTheirAlpha) {
    // 13 wide, so every row has a vector part and a tail; transparency falls in both.
    const QImage photo = samplePhoto("fruits.jpg", {13, 11});
    QImage premultiplied(photo.size(), QImage::Format_ARGB32_Premultiplied);
    const int alphas[] = {255, 255, 254, 128, 255, 0, 77, 255, 1, 255, 255, 200, 255};
    for (int y = 0; y < photo.height(); ++y)
        for (int x = 0; x < photo.width(); ++x) {
            const int a = (y % 3 == 0) ? 255 : alphas[(x + y) % 13];
            const QRgb p = photo.pixel(x, y);
            premultiplied.setPixel(x, y, qPremultiply(qRgba(qRed(p), qGreen(p), qBlue(p), a)));
        }
    const ColorCube cube = cubeOf(assetLookup("Folger"));
    const auto packed = packCube(cube);
    for (const CubeApplyOptions& options : {plain, avx2}) {
        const QImage result = applyCube(*packed, premultiplied, options);
        ASSERT_EQ(result.format(), QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < result.height(); ++y)
            for (int x = 0; x < result.width(); ++x) {
                const QRgb in = premultiplied.pixel(x, y), out = result.pixel(x, y);
                const int a = qAlpha(in);
                ASSERT_EQ(qAlpha(out), a) << x << "," << y;
                if (a == 0) {
                    EXPECT_EQ(out, 0u);
                    continue;
                }
                const QRgb straight = qUnpremultiply(in);
                const Rgb expected =
                    trilinearReference(cube, qRed(straight), qGreen(straight), qBlue(straight));
                // Un-premultiplying a faint pixel loses its colour; only the reasonably opaque are exact.
                const int tolerance = a >= 128 ? 1 : 255 / a + 1;
                EXPECT_NEAR(qRed(out), expected[0] * a / 255, tolerance) << x << "," << y << " alpha " << a;
                EXPECT_NEAR(qGreen(out), expected[1] * a / 255, tolerance) << x << "," << y;
                EXPECT_NEAR(qBlue(out), expected[2] * a / 255, tolerance) << x << "," << y;
            }
    }
}

TEST(CubeKernel, TheWorkerPoolGivesTheSameBytesAsOneThread) {
    const QImage photo = samplePhoto("building.jpg", {1001, 777});
    const auto packed = packedOf(assetLookup("Lenox"));
    for (CubeInterpolation interpolation : {CubeInterpolation::trilinear, CubeInterpolation::tetrahedral}) {
        const QImage single = applyCube(*packed, photo, {interpolation, KernelPath::automatic, false});
        const QImage pooled = applyCube(*packed, photo, {interpolation, KernelPath::automatic, true});
        EXPECT_EQ(single, pooled);
    }
}

TEST(CubeKernel, ExtremeShapesAndCubes) {
    const auto look = packedOf(assetLookup("Exposure"));
    // One pixel, and one row of 20000 pixels: both paths, nothing read or written outside.
    for (QSize size : {QSize(1, 1), QSize(20000, 1), QSize(1, 300)}) {
        const QImage source = samplePhoto("orange.jpg", size);
        const QImage scalar = applyCube(*look, source, plain);
        ASSERT_EQ(scalar.size(), size);
        EXPECT_LE(worstDifference(scalar, applyCube(*look, source, avx2)), 1);
    }
    EXPECT_TRUE(applyCube(*look, QImage()).isNull());

    // A 1-cube is one colour for everything.
    QImage single(1, 1, QImage::Format_RGB32);
    single.setPixel(0, 0, qRgb(12, 200, 99));
    const auto constant = packedOf(single, 1);
    ASSERT_TRUE(constant);
    const QImage result = applyCube(*constant, samplePhoto("apple.jpg", {37, 5}), avx2);
    for (int y = 0; y < result.height(); ++y)
        for (int x = 0; x < result.width(); ++x)
            ASSERT_EQ(result.pixel(x, y), qRgb(12, 200, 99));
}
