#include "platform/ImageFilters.h"

#include <gtest/gtest.h>

TEST(ImageFiltersTest, BlurSpreadsEvenlyAndKeepsTheFormat) {
    for (QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied,
                                  QImage::Format_Grayscale8, QImage::Format_RGB888}) {
        QImage image(21, 21, format);
        image.fill(Qt::black);
        image.setPixel(10, 10, qRgb(255, 255, 255));
        const QImage blurred = ImageFilters::gaussianBlur(image, 2.0);
        ASSERT_EQ(blurred.size(), image.size());
        const QImage::Format expected = format == QImage::Format_RGB888 ? QImage::Format_RGB32 : format;
        EXPECT_EQ(blurred.format(), expected);

        const int centre = qGreen(blurred.pixel(10, 10));
        EXPECT_GT(centre, 0);
        EXPECT_LT(centre, 255);
        EXPECT_EQ(qGreen(blurred.pixel(8, 10)), qGreen(blurred.pixel(12, 10)));
        EXPECT_EQ(qGreen(blurred.pixel(10, 8)), qGreen(blurred.pixel(10, 12)));
        EXPECT_EQ(qGreen(blurred.pixel(0, 0)), 0);
    }
}

TEST(ImageFiltersTest, BlurOfStraightAlphaDoesNotBleedHiddenColour) {
    // Left half fully transparent but red underneath, right half opaque blue.
    QImage image(20, 4, QImage::Format_ARGB32);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 20; ++x)
            image.setPixel(x, y, x < 10 ? qRgba(255, 0, 0, 0) : qRgba(0, 0, 255, 255));
    const QImage blurred = ImageFilters::gaussianBlur(image, 3.0);
    EXPECT_EQ(blurred.format(), QImage::Format_ARGB32);
    for (int x = 8; x < 14; ++x) {
        const QRgb p = blurred.pixel(x, 2);
        EXPECT_EQ(qRed(p), 0) << x;
        EXPECT_GT(qAlpha(p), 0) << x;
    }
}

TEST(ImageFiltersTest, BlurEdgeCases) {
    QImage dot(1, 1, QImage::Format_RGB32);
    dot.fill(qRgb(1, 2, 3));
    EXPECT_EQ(ImageFilters::gaussianBlur(dot, 500.0).pixel(0, 0), qRgb(1, 2, 3));
    EXPECT_EQ(ImageFilters::gaussianBlur(dot, 0.0), dot);
    EXPECT_EQ(ImageFilters::gaussianBlur(dot, -1.0), dot);
    EXPECT_TRUE(ImageFilters::gaussianBlur(QImage(), 2.0).isNull());
}

TEST(ImageFiltersTest, AreaScalingAveragesCoveredPixels) {
    QImage image(6, 4, QImage::Format_RGB32);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 6; ++x)
            image.setPixel(x, y, qRgb(10 * x, 20 * y, 0));

    // The 4 × 4 block at x 2…5, in 2 × 2 averages.
    const QImage half = ImageFilters::areaScaled(image, QRect(2, 0, 4, 4), QSize(2, 2));
    ASSERT_EQ(half.size(), QSize(2, 2));
    EXPECT_EQ(half.pixel(0, 0), qRgb(25, 10, 0));
    EXPECT_EQ(half.pixel(1, 1), qRgb(45, 50, 0));

    // The region is clipped to the picture; nothing left gives nothing.
    EXPECT_EQ(ImageFilters::areaScaled(image, QRect(-10, -10, 100, 100), QSize(1, 1)).pixel(0, 0),
              ImageFilters::areaScaled(image, image.rect(), QSize(1, 1)).pixel(0, 0));
    EXPECT_TRUE(ImageFilters::areaScaled(image, QRect(10, 10, 5, 5), QSize(2, 2)).isNull());
    EXPECT_TRUE(ImageFilters::areaScaled(image, image.rect(), QSize(0, 2)).isNull());
}

// Turning the hue of a see-through picture keeps every colour channel within its alpha, as a
// premultiplied picture must be; the turn alone would push a saturated channel past it.
TEST(ImageFiltersTest, HueTurnsKeepPremultipliedColourWithinAlpha) {
    QImage picture(3, 1, QImage::Format_ARGB32_Premultiplied);
    picture.setPixel(0, 0, qRgba(120, 8, 8, 128));
    picture.setPixel(1, 0, qRgba(10, 90, 100, 100));
    picture.setPixel(2, 0, qRgba(255, 0, 0, 255));
    for (const double turn : {2.0, -2.0}) {
        const QImage turned = ImageFilters::hueAdjust(picture, turn);
        ASSERT_EQ(turned.format(), QImage::Format_ARGB32_Premultiplied);
        for (int x = 0; x < 3; ++x) {
            const QRgb p = turned.pixel(x, 0);
            EXPECT_EQ(qAlpha(p), qAlpha(picture.pixel(x, 0))) << x;
            EXPECT_LE(std::max({qRed(p), qGreen(p), qBlue(p)}), qAlpha(p)) << x << " turn " << turn;
        }
    }
}
