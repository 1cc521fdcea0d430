#include "platform/Image.h"
#include "platform/PictureEncoders.h"

#include <QColorSpace>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

// The files our encoders write, read back by decoders that share no code with ours: djpeg for JPEG, a
// zlib-only Python reader for PNG.
namespace {

constexpr ImageOrientation kAllOrientations[] = {
    ImageOrientation::up,           ImageOrientation::down,          ImageOrientation::left,
    ImageOrientation::right,        ImageOrientation::upMirrored,    ImageOrientation::downMirrored,
    ImageOrientation::leftMirrored, ImageOrientation::rightMirrored,
};

class ImageEncodeTest : public ::testing::Test {
protected:
    QTemporaryDir dir;

    QString write(const QByteArray& bytes, const QString& name) {
        const QString path = dir.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            ADD_FAILURE() << "cannot write " << path.toStdString();
        return path;
    }

    // The pixels djpeg decodes; null when it refuses the file. (The PPM it writes is plain samples.)
    QImage djpeg(const QByteArray& jpeg) {
        const QString in = write(jpeg, QStringLiteral("in.jpg")),
                      out = dir.filePath(QStringLiteral("out.ppm"));
        QFile::remove(out);
        QProcess::execute(QStringLiteral("djpeg"),
                          {QStringLiteral("-pnm"), QStringLiteral("-outfile"), out, in});
        return QImage(out, "PPM");
    }

    // The PNG's colour type and its pixels as Format_RGBA8888 (straight alpha); a null image on failure.
    std::pair<int, QImage> pngPixels(const QByteArray& png) {
        const QString in = write(png, QStringLiteral("in.png")),
                      out = dir.filePath(QStringLiteral("out.rgba"));
        QProcess reader;
        reader.start(QStringLiteral("python3"),
                     {QStringLiteral(LUMIVEX_TEST_DATA_DIR "/../export/pngpixels.py"), in, out});
        if (!reader.waitForFinished(60000) || reader.exitCode() != 0)
            return {-1, {}};
        const QList<QByteArray> header = reader.readAllStandardOutput().simplified().split(' ');
        QFile file(out);
        if (header.size() != 4 || header[3] != "8" || !file.open(QIODevice::ReadOnly))
            return {-1, {}};
        const QByteArray bytes = file.readAll();
        const int width = header[0].toInt(), height = header[1].toInt();
        if (bytes.size() != qsizetype(width) * height * 4)
            return {-1, {}};
        return {header[2].toInt(), QImage(reinterpret_cast<const uchar*>(bytes.constData()), width, height,
                                          QImage::Format_RGBA8888)
                                       .copy()};
    }
};

// Noise that PNG's filters cannot predict, so every byte of every row is checked.
QImage noise(int width, int height, QImage::Format format, bool translucent) {
    std::mt19937 random(7);
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint v = random();
            const int alpha = translucent ? int(v >> 24) : 255;
            image.setPixel(x, y, qRgba(int(v & 255), int(v >> 8 & 255), int(v >> 16 & 255), alpha));
        }
    if (translucent) { // the two values an unpremultiply must get exactly right
        image.setPixel(0, 0, qRgba(10, 20, 30, 0));
        image.setPixel(1, 0, qRgba(10, 20, 30, 255));
    }
    return image.convertToFormat(format);
}

// Smooth in both directions and different in every channel, so JPEG keeps it closely while a turn, a
// mirror or swapped channels move it far.
QImage gradient(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(
                x, y,
                qRgb(40 + 170 * x / width, 30 + 190 * y / height, 200 - 150 * (x + y) / (width + height)));
    return image;
}

// Mean and largest difference of any channel between two pictures of one size.
std::pair<double, int> difference(const QImage& a, const QImage& b) {
    const QImage x = a.convertToFormat(QImage::Format_RGB32), y = b.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    int largest = 0;
    for (int row = 0; row < x.height(); ++row)
        for (int col = 0; col < x.width(); ++col) {
            const QRgb p = x.pixel(col, row), q = y.pixel(col, row);
            for (const int d : {qRed(p) - qRed(q), qGreen(p) - qGreen(q), qBlue(p) - qBlue(q)}) {
                sum += std::abs(d);
                largest = std::max(largest, std::abs(d));
            }
        }
    return {sum / (3.0 * x.width() * x.height()), largest};
}

// Where two pictures first differ, for a readable failure; empty when they are the same.
std::string firstDifference(const QImage& seen, const QImage& expected) {
    if (seen.size() != expected.size() || seen.format() != expected.format())
        return "size or format differs";
    for (int y = 0; y < seen.height(); ++y)
        for (int x = 0; x < seen.width(); ++x)
            if (seen.pixel(x, y) != expected.pixel(x, y))
                return QStringLiteral("at %1,%2: %3 instead of %4")
                    .arg(x)
                    .arg(y)
                    .arg(seen.pixel(x, y), 8, 16)
                    .arg(expected.pixel(x, y), 8, 16)
                    .toStdString();
    return {};
}

TEST_F(ImageEncodeTest, PngHoldsTheUprightPixelsInEveryOrientation) {
    const QImage opaque = noise(23, 9, QImage::Format_RGB32, false);
    const QImage translucent = noise(17, 6, QImage::Format_ARGB32_Premultiplied, true);
    for (const ImageOrientation orientation : kAllOrientations) {
        SCOPED_TRACE(static_cast<int>(orientation));
        const ImagePtr rgb = Image::make(opaque, 1, orientation);
        const auto [rgbType, rgbPixels] = pngPixels(rgb->pngData());
        EXPECT_EQ(rgbType, 2); // RGB: an opaque picture carries no alpha channel
        EXPECT_EQ(firstDifference(rgbPixels, rgb->uprightBitmap().convertToFormat(QImage::Format_RGBA8888)),
                  "");

        // Alpha kept exactly, and the colours straight as PNG wants them. Qt's own unpremultiplying
        // rounds its vector and scalar paths differently (which one a pixel takes depends on the
        // buffer's alignment), so the colours may differ from one conversion to another by a level.
        const ImagePtr rgba = Image::make(translucent, 1, orientation);
        const auto [rgbaType, rgbaPixels] = pngPixels(rgba->pngData());
        EXPECT_EQ(rgbaType, 6);
        const QImage expected = rgba->uprightBitmap().convertToFormat(QImage::Format_RGBA8888);
        ASSERT_EQ(rgbaPixels.size(), expected.size());
        int largest = 0;
        for (int y = 0; y < expected.height(); ++y)
            for (int x = 0; x < expected.width(); ++x) {
                const QRgb p = rgbaPixels.pixel(x, y), q = expected.pixel(x, y);
                ASSERT_EQ(qAlpha(p), qAlpha(q)) << x << "," << y;
                for (const int d : {qRed(p) - qRed(q), qGreen(p) - qGreen(q), qBlue(p) - qBlue(q)})
                    largest = std::max(largest, std::abs(d));
            }
        EXPECT_LE(largest, 1);
    }
}

TEST_F(ImageEncodeTest, PngOfAPhotoDecodesToTheSamePixelsAndIsCompressed) {
    const ImagePtr photo = Image::fromFile(QStringLiteral(LUMIVEX_SAMPLES_DIR "/fruits.jpg"));
    ASSERT_TRUE(photo);
    const QByteArray png = photo->pngData();
    const auto [type, pixels] = pngPixels(png);
    EXPECT_EQ(type, 2);
    EXPECT_EQ(firstDifference(pixels, photo->bitmap().convertToFormat(QImage::Format_RGBA8888)), "");
    EXPECT_LT(png.size(), photo->pixelSize().width() * photo->pixelSize().height() * 3 * 3 / 4);
}

TEST_F(ImageEncodeTest, JpegHoldsTheUprightPixelsInEveryOrientation) {
    const QImage stored = gradient(61, 35); // odd sides: partial blocks at the right and bottom edges
    for (const ImageOrientation orientation : kAllOrientations) {
        SCOPED_TRACE(static_cast<int>(orientation));
        const ImagePtr image = Image::make(stored, 1, orientation);
        const QImage decoded = djpeg(image->jpegData(0.95));
        const QImage upright = image->uprightBitmap();
        ASSERT_EQ(decoded.size(), upright.size());
        const auto [mean, largest] = difference(decoded, upright);
        EXPECT_LT(mean, 1.5);
        EXPECT_LE(largest, 12);
    }
}

TEST_F(ImageEncodeTest, JpegLaysTransparencyOverWhite) {
    // Blocks of 16 pixels, whole chroma blocks, so subsampling blurs nothing across them.
    QImage stored(48, 16, QImage::Format_ARGB32);
    stored.fill(Qt::transparent);
    for (int y = 0; y < 16; ++y)
        for (int x = 16; x < 48; ++x)
            stored.setPixel(x, y, x < 32 ? qRgba(200, 0, 0, 128) : qRgba(0, 0, 90, 255));
    const ImagePtr image =
        Image::make(stored.convertToFormat(QImage::Format_ARGB32_Premultiplied), 1, ImageOrientation::down);
    const QImage decoded = djpeg(image->jpegData(1));
    ASSERT_EQ(decoded.size(), QSize(48, 16));
    // Turned half round: opaque blue on the left, half-covered red in the middle, nothing on the right.
    const auto near = [&](int x, QRgb expected) {
        const QRgb seen = decoded.pixel(x, 8);
        return std::abs(qRed(seen) - qRed(expected)) <= 4 && std::abs(qGreen(seen) - qGreen(expected)) <= 4 &&
               std::abs(qBlue(seen) - qBlue(expected)) <= 4;
    };
    EXPECT_TRUE(near(8, qRgb(0, 0, 90)));
    EXPECT_TRUE(near(24, qRgb(228, 127, 127))); // 200 * 128/255 + 127 of white
    EXPECT_TRUE(near(40, qRgb(255, 255, 255)));
}

TEST_F(ImageEncodeTest, JpegOfAPhotoKeepsItsColoursAndClampsQuality) {
    const ImagePtr photo = Image::fromFile(QStringLiteral(LUMIVEX_SAMPLES_DIR "/fruits.jpg"));
    ASSERT_TRUE(photo);
    const QByteArray lowest = photo->jpegData(0), highest = photo->jpegData(1);
    EXPECT_EQ(photo->jpegData(-0.5), lowest);
    EXPECT_EQ(photo->jpegData(std::numeric_limits<double>::quiet_NaN()), lowest);
    EXPECT_EQ(photo->jpegData(1.5), highest);
    EXPECT_LT(lowest.size() * 4, photo->jpegData(0.5).size());
    EXPECT_LT(photo->jpegData(0.5).size() * 2, highest.size());
    const QImage decoded = djpeg(photo->jpegData(0.9));
    ASSERT_EQ(decoded.size(), photo->pixelSize());
    EXPECT_LT(difference(decoded, photo->bitmap()).first, 3.0);
    EXPECT_EQ(djpeg(lowest).size(), photo->pixelSize()); // the lowest quality is still a whole picture
}

TEST_F(ImageEncodeTest, AColourProfileIsCarriedAndTheFilesStayReadable) {
    QImage stored = gradient(40, 24);
    stored.setColorSpace(QColorSpace::DisplayP3);
    const ImagePtr image = Image::make(stored, 1, ImageOrientation::left);
    const QByteArray jpeg = image->jpegData(0.9), png = image->pngData();
    EXPECT_EQ(djpeg(jpeg).size(), QSize(24, 40));
    EXPECT_EQ(pngPixels(png).second.size(), QSize(24, 40)); // the reader checks every chunk's CRC
    EXPECT_EQ(QImage::fromData(jpeg).colorSpace(), QColorSpace(QColorSpace::DisplayP3));
    EXPECT_EQ(QImage::fromData(png).colorSpace(), QColorSpace(QColorSpace::DisplayP3));
}

TEST_F(ImageEncodeTest, NullOrForeignBitmapsGiveNothing) {
    for (const QImage& bitmap :
         {QImage(), QImage(8, 8, QImage::Format_RGB888), QImage(8, 8, QImage::Format_ARGB32)}) {
        EXPECT_TRUE(encodeJpeg(bitmap, ImageOrientation::up, 90).isEmpty());
        EXPECT_TRUE(encodePng(bitmap, ImageOrientation::up).isEmpty());
    }
}

} // namespace
