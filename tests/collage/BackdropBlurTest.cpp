#include "collage/BackdropBlur.h"

#include <QImage>
#include <QPainter>
#include <cmath>
#include <gtest/gtest.h>

namespace {

// Fine 2-pixel checks over a colour gradient: plenty of detail for a blur to remove.
QImage detailedPicture(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool check = ((x / 2) + (y / 2)) % 2 == 0;
            const int base = 40 + 120 * x / width;
            image.setPixel(x, y, qRgb(base + (check ? 60 : 0), 80 + (check ? 80 : 0), 200 - base / 2));
        }
    return image;
}

// Mean absolute difference between horizontal neighbours of the green channel.
double detail(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 1; x < image.width(); ++x)
            sum += std::abs(qGreen(image.pixel(x, y)) - qGreen(image.pixel(x - 1, y)));
    return sum / (double(image.height()) * std::max(image.width() - 1, 1));
}

double meanLuma(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            sum += qGray(image.pixel(x, y));
    return sum / (double(image.width()) * image.height());
}

int maxChannelDifference(const QImage& a, const QImage& b) {
    int worst = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            worst = std::max({worst, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                              std::abs(qBlue(p) - qBlue(q)), std::abs(qAlpha(p) - qAlpha(q))});
        }
    return worst;
}

class BackdropBlurTest : public ::testing::Test {
protected:
    // 600 × 900 pixels fill a 200 × 300 point pane at 3× exactly.
    QImage picture = detailedPicture(600, 900);
    ImagePtr photo = Image::make(picture, 1.0);
    QSizeF pane{200, 300};
};

} // namespace

TEST_F(BackdropBlurTest, NoFractionKeepsThePictureSharp) {
    const QImage result = BackdropBlur::make(*photo, pane, 3, 0);
    ASSERT_EQ(result.size(), QSize(600, 900));
    EXPECT_GT(detail(result), 0.95 * detail(picture));
    EXPECT_NEAR(meanLuma(result), meanLuma(picture), 1.0); // no veil either
}

TEST_F(BackdropBlurTest, FullFractionIsSmoothAndLighter) {
    const QImage result = BackdropBlur::make(*photo, pane, 3, 1);
    ASSERT_FALSE(result.isNull());
    EXPECT_LT(result.width(), 600); // a strong blur needs far fewer pixels
    // Measured at the pane's size, as it will be seen.
    const QImage shown = result.scaled(600, 900, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    EXPECT_LT(detail(shown), 0.05 * detail(picture));
    EXPECT_GT(meanLuma(shown), meanLuma(picture) + 20);

    // Part way is part blurred.
    const QImage partial = BackdropBlur::make(*photo, pane, 3, 0.35)
                               .scaled(600, 900, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    EXPECT_LT(detail(partial), 0.2 * detail(picture));
    EXPECT_GT(meanLuma(partial), meanLuma(picture) + 3);
    EXPECT_LT(meanLuma(partial), meanLuma(shown));
}

TEST_F(BackdropBlurTest, FractionIsClampedAndResultDeterministic) {
    EXPECT_EQ(BackdropBlur::make(*photo, pane, 3, 1.7), BackdropBlur::make(*photo, pane, 3, 1.0));
    EXPECT_EQ(BackdropBlur::make(*photo, pane, 3, -0.2), BackdropBlur::make(*photo, pane, 3, 0.0));
    EXPECT_EQ(BackdropBlur::make(*photo, pane, 3, std::nan("")), BackdropBlur::make(*photo, pane, 3, 0.0));
    EXPECT_EQ(BackdropBlur::make(*photo, pane, 3, 0.35), BackdropBlur::make(*photo, pane, 3, 0.35));
}

TEST_F(BackdropBlurTest, KeepsThePaneAspectRatio) {
    const ImagePtr landscape = Image::make(detailedPicture(1600, 900));
    const ImagePtr small = Image::make(detailedPicture(90, 40));
    for (const ImagePtr& source : {photo, landscape, small})
        for (QSizeF size : {QSizeF(200, 300), QSizeF(390, 120.5), QSizeF(50, 50)})
            for (double fraction : {0.0, 0.35, 1.0}) {
                const QImage result = BackdropBlur::make(*source, size, 3, fraction);
                ASSERT_FALSE(result.isNull());
                // The pane's shape up to rounding each side to whole pixels, and never more pixels
                // than the pane has.
                const double aspect = size.width() / size.height();
                EXPECT_NEAR(result.width(), result.height() * aspect, 0.5 * (1 + aspect))
                    << result.width() << "x" << result.height() << " for " << size.width() << "x"
                    << size.height();
                EXPECT_LE(result.width(), std::lround(size.width() * 3));
                EXPECT_LE(result.height(), std::lround(size.height() * 3));
            }
}

TEST_F(BackdropBlurTest, TurnedPhotoBlursAsItsUprightPicture) {
    // A red block marks the upright top left, so a wrongly turned window or result shows.
    QImage upright = detailedPicture(900, 600);
    QPainter(&upright).fillRect(0, 0, 300, 200, Qt::red);
    const QImage stored = upright.transformed(QTransform().rotate(-90)); // turned back a quarter
    const ImagePtr turned = Image::make(stored, 1.0, ImageOrientation::right);
    ASSERT_EQ(turned->uprightBitmap(), upright);

    for (double fraction : {0.0, 0.35}) {
        const QImage expected = BackdropBlur::make(*Image::make(upright), QSizeF(150, 150), 2, fraction);
        const QImage actual = BackdropBlur::make(*turned, QSizeF(150, 150), 2, fraction);
        ASSERT_EQ(actual.size(), expected.size());
        EXPECT_LE(maxChannelDifference(actual, expected), 2) << fraction;
    }
}

TEST_F(BackdropBlurTest, TransparentAreasGetAValidVeil) {
    QImage clear(60, 60, QImage::Format_ARGB32_Premultiplied);
    clear.fill(Qt::transparent);
    const QImage result = BackdropBlur::make(*Image::make(clear), QSizeF(20, 20), 3, 1);
    ASSERT_FALSE(result.isNull());
    const int veil = int(std::lround(255 * 0.3));                 // a milky veil of 30 % white
    EXPECT_EQ(result.pixel(0, 0), qRgba(veil, veil, veil, veil)); // white, premultiplied
}

TEST_F(BackdropBlurTest, DegenerateInputsDoNotFail) {
    QImage dot(1, 1, QImage::Format_RGB32);
    dot.fill(qRgb(10, 201, 30));
    const ImagePtr tiny = Image::make(dot);
    for (double fraction : {0.0, 0.35, 1.0}) {
        const QImage result = BackdropBlur::make(*tiny, pane, 3, fraction);
        ASSERT_EQ(result.size(), QSize(1, 1));
        EXPECT_EQ(qGreen(result.pixel(0, 0)), std::lround(201 + (255 - 201) * 0.3 * fraction));
    }
    EXPECT_EQ(BackdropBlur::make(*photo, QSizeF(0.1, 0.1), 3, 1).size(), QSize(1, 1));

    EXPECT_TRUE(BackdropBlur::make(*photo, QSizeF(0, 300), 3, 1).isNull());
    EXPECT_TRUE(BackdropBlur::make(*photo, QSizeF(200, -1), 3, 1).isNull());
    EXPECT_TRUE(BackdropBlur::make(*photo, pane, 0, 1).isNull());
    EXPECT_TRUE(BackdropBlur::make(*photo, QSizeF(std::nan(""), 300), 3, 1).isNull());
}
