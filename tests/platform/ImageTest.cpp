#include "platform/Image.h"

#include "support/TestSupport.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QByteArray encoded(const QImage& image, const char* format, int quality = -1, bool progressive = false) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    writer.setProgressiveScanWrite(progressive);
    EXPECT_TRUE(writer.write(image)) << format;
    return bytes;
}

// Grey, with a red top-left and a green top-right corner, in blocks big enough to survive JPEG.
QImage markedCorners(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::gray);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
            image.setPixel(x, y, qRgb(255, 0, 0));
            image.setPixel(width - 1 - x, y, qRgb(0, 255, 0));
        }
    return image;
}

// A JPEG with an EXIF orientation tag where a camera puts it: an APP1 segment right after SOI, holding
// a big-endian TIFF header and one IFD entry (tag 0x0112, SHORT, count 1).
QByteArray jpegWithExifOrientation(const QImage& image, int orientation) {
    QByteArray app1("\xFF\xE1\x00\x22"
                    "Exif\0\0MM\0\x2a\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\0\0\0\0\0\0\0",
                    36);
    app1[29] = char(orientation);
    return encoded(image, "jpeg", 90).insert(2, app1);
}

bool isRed(QRgb c) {
    return qRed(c) > 200 && qGreen(c) < 60 && qBlue(c) < 60;
}
bool isGreen(QRgb c) {
    return qGreen(c) > 200 && qRed(c) < 60 && qBlue(c) < 60;
}

} // namespace

TEST(ImageTest, OrientationsMapToExifAndSizeInPointsFollowsThem) {
    const int exif[] = {1, 3, 8, 6, 2, 4, 5, 7};
    const QImage bitmap(300, 200, QImage::Format_RGB32);
    for (int raw = 0; raw < 8; ++raw) {
        const auto orientation = static_cast<ImageOrientation>(raw);
        EXPECT_EQ(exifOrientation(orientation), exif[raw]);
        EXPECT_EQ(orientationFromExif(exif[raw]), orientation);
        const bool sideways = raw == 2 || raw == 3 || raw == 6 || raw == 7;
        for (double scale : {1.0, 2.0, 3.0}) {
            const ImagePtr image = Image::make(bitmap, scale, orientation);
            const QSizeF points = sideways ? QSizeF(200, 300) / scale : QSizeF(300, 200) / scale;
            EXPECT_EQ(image->size(), points) << "orientation " << raw << " scale " << scale;
            EXPECT_EQ(image->uprightBitmap().size(), (points * scale).toSize());
        }
    }
    EXPECT_FALSE(orientationFromExif(0));
    EXPECT_EQ(Image::make(bitmap, 2, ImageOrientation::right)->size(), QSizeF(100, 150));
}

TEST(ImageTest, MakeRefusesBadInputNormalisesFormatAndSharesPixels) {
    EXPECT_FALSE(Image::make(QImage()));
    for (double scale : {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity()})
        EXPECT_FALSE(Image::make(QImage(4, 4, QImage::Format_RGB32), scale));
    EXPECT_EQ(Image::make(QImage(4, 4, QImage::Format_Grayscale8))->bitmap().format(), QImage::Format_RGB32);
    EXPECT_EQ(Image::make(QImage(4, 4, QImage::Format_ARGB32))->bitmap().format(),
              QImage::Format_ARGB32_Premultiplied);

    const ImagePtr image = Image::make(markedCorners(40, 20));
    const ImagePtr turned = image->withOrientation(ImageOrientation::left, 2);
    EXPECT_NE(turned, image);
    EXPECT_EQ(turned->bitmap().constBits(), image->bitmap().constBits());
    EXPECT_EQ(turned->size(), QSizeF(10, 20));
    EXPECT_EQ(image->orientation(), ImageOrientation::up);
}

TEST(ImageTest, UprightBitmapTurnsTheCornersWhereTheyAreSeen) {
    // Where the stored top-left (red) and top-right (green) corners are seen, in up…rightMirrored order;
    // corners numbered 0 top-left, 1 top-right, 2 bottom-left, 3 bottom-right.
    const int red[] = {0, 3, 2, 1, 1, 2, 0, 3};
    const int green[] = {1, 2, 0, 3, 0, 3, 2, 1};
    for (int raw = 0; raw < 8; ++raw) {
        const QImage upright =
            Image::make(markedCorners(60, 40), 1, static_cast<ImageOrientation>(raw))->uprightBitmap();
        auto at = [&](int corner) {
            return upright.pixel(corner % 2 ? upright.width() - 1 : 0, corner / 2 ? upright.height() - 1 : 0);
        };
        EXPECT_TRUE(isRed(at(red[raw]))) << "orientation " << raw;
        EXPECT_TRUE(isGreen(at(green[raw]))) << "orientation " << raw;
    }
}

TEST(ImageTest, ExifOrientationBecomesTheFlagAndPixelsStayAsStored) {
    for (int exif = 1; exif <= 8; ++exif) {
        const ImagePtr image = Image::fromData(jpegWithExifOrientation(markedCorners(60, 40), exif), 2);
        ASSERT_TRUE(image) << exif;
        EXPECT_EQ(image->orientation(), orientationFromExif(exif));
        EXPECT_EQ(image->pixelSize(), QSize(60, 40));
        EXPECT_TRUE(isRed(image->bitmap().pixel(0, 0)));
    }
}

TEST(ImageTest, DecodesCommonFormatsIntoThirtyTwoBitPixels) {
    QImage translucent(30, 20, QImage::Format_ARGB32);
    translucent.fill(qRgba(0, 0, 255, 100));
    for (const char* format : {"jpeg", "png", "tiff", "webp", "bmp"}) {
        const ImagePtr image = Image::fromData(encoded(markedCorners(30, 20), format));
        ASSERT_TRUE(image) << format;
        EXPECT_EQ(image->pixelSize(), QSize(30, 20));
        EXPECT_EQ(image->bitmap().format(), QImage::Format_RGB32);
    }
    EXPECT_EQ(Image::fromData(encoded(translucent, "png"))->bitmap().format(),
              QImage::Format_ARGB32_Premultiplied);
    const ImagePtr gif = Image::fromFile(testsupport::dataPath("stripes.gif"));
    ASSERT_TRUE(gif);
    EXPECT_EQ(gif->bitmap().pixel(47, 31), qRgb(0, 0, 255));
    // Unusual but whole files: a progressive JPEG and bytes after the end, as some cameras append.
    EXPECT_TRUE(Image::fromData(encoded(markedCorners(64, 48), "jpeg", 80, true)));
    EXPECT_TRUE(Image::fromData(encoded(markedCorners(64, 48), "jpeg", 80) + QByteArray(300, '\x55')));
}

TEST(ImageTest, JpegQualityTradesSizeAndWritesUprightPixels) {
    const QString photo = QStringLiteral(LUMIVEX_SAMPLES_DIR "/baboon.jpg");
    const ImagePtr stored = Image::fromFile(photo);
    if (!stored)
        FAIL() << "the bundled sample photograph is missing";
    const ImagePtr image = stored->withOrientation(ImageOrientation::right, 1);
    const QByteArray low = image->jpegData(0.1), middle = image->jpegData(0.5), high = image->jpegData(0.95);
    EXPECT_LT(low.size(), middle.size());
    EXPECT_LT(middle.size(), high.size());
    EXPECT_EQ(image->jpegData(-3), image->jpegData(0));
    EXPECT_EQ(image->jpegData(7), image->jpegData(1));
    const ImagePtr decoded = Image::fromData(middle);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->pixelSize(), stored->pixelSize().transposed());
    EXPECT_EQ(decoded->orientation(), ImageOrientation::up);
}

TEST(ImageTest, JpegFlattensTransparencyOntoWhiteAndPngKeepsIt) {
    QImage source(20, 10, QImage::Format_ARGB32);
    source.fill(Qt::transparent);
    source.setPixel(19, 0, qRgba(255, 0, 0, 128));
    const ImagePtr image = Image::make(source, 1, ImageOrientation::down);

    const ImagePtr jpeg = Image::fromData(image->jpegData(1));
    ASSERT_TRUE(jpeg);
    EXPECT_GT(qGray(jpeg->bitmap().pixel(10, 5)), 245);
    const ImagePtr png = Image::fromData(image->pngData());
    ASSERT_TRUE(png);
    const QColor turned = png->bitmap().pixelColor(0, 9); // the top-right pixel, turned half round
    EXPECT_NEAR(turned.alpha(), 128, 1);
    EXPECT_NEAR(turned.red(), 255, 2);
    EXPECT_EQ(png->bitmap().pixelColor(19, 0).alpha(), 0);
}

TEST(ImageTest, BrokenFilesGiveNullWithAReason) {
    const QImage source = markedCorners(120, 80);
    const QByteArray jpeg = encoded(source, "jpeg", 90), png = encoded(source, "png"),
                     bmp = encoded(source, "bmp");
    QFile gif(testsupport::dataPath("stripes.gif"));
    ASSERT_TRUE(gif.open(QIODevice::ReadOnly));
    const std::pair<const char*, QByteArray> broken[] = {
        {"empty", {}},
        {"text", "This is a shopping list, not a picture.\n"},
        {"half a JPEG", jpeg.left(jpeg.size() / 2)},
        {"JPEG without its end marker", jpeg.left(jpeg.size() - 2)},
        {"half a PNG", png.left(png.size() / 2)},
        {"PNG without its end chunk", png.left(png.size() - 12)},
        {"half a BMP", bmp.left(bmp.size() / 2)},
        {"half a GIF", gif.readAll().chopped(600)},
        {"PNG signature and garbage", QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(64, '\x07')},
    };
    for (const auto& [what, bytes] : broken) {
        QString error;
        EXPECT_FALSE(Image::fromData(bytes, 1, &error)) << what;
        EXPECT_FALSE(error.isEmpty()) << what;
    }
    QTemporaryDir dir;
    QFile(dir.filePath("empty.jpg")).open(QIODevice::WriteOnly);
    EXPECT_FALSE(Image::fromFile(dir.filePath("empty.jpg")));
    QString error;
    EXPECT_FALSE(Image::fromFile(dir.filePath("missing.png"), 1, &error));
    EXPECT_TRUE(error.contains("missing.png"));
}

TEST(ImageTest, PictureSizeIsCheckedAgainstOurLimitNotQts) {
    // The header declares 20000 × 20000 pixels that are not there.
    QString error;
    EXPECT_FALSE(Image::fromFile(testsupport::dataPath("huge-header.png"), 1, &error));
    EXPECT_TRUE(error.contains("too large")) << error.toStdString();

    // Qt's default limit would refuse a 40 MP photo; here a 1 MB limit stands in against a 4 MB picture.
    QImage picture(1000, 1000, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    const QByteArray png = encoded(picture, "png");
    const int saved = QImageReader::allocationLimit();
    QImageReader::setAllocationLimit(1);
    const ImagePtr image = Image::fromData(png);
    QImageReader::setAllocationLimit(saved);
    EXPECT_TRUE(image);
}
