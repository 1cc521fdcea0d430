#include "platform/Image.h"
#include "platform/ItemProvider.h"
#include "platform/PhotoMemoryBudget.h"
#include "platform/PngReducedDecoder.h"

#include "platform/MarkedCorners.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QTemporaryDir>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace {

std::int64_t bytesOf(QSize size) {
    return std::int64_t(size.width()) * size.height() * 4;
}

// A JPEG file with an EXIF orientation tag in an APP1 segment right after SOI, as a camera writes it.
QString writeJpeg(const QTemporaryDir& dir, const QString& name, const QImage& image,
                  int exifOrientation = 1) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(90);
    EXPECT_TRUE(writer.write(image));
    QByteArray app1("\xFF\xE1\x00\x22"
                    "Exif\0\0MM\0\x2a\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\0\0\0\0\0\0\0",
                    36);
    app1[29] = char(exifOrientation);
    bytes.insert(2, app1);
    const QString path = dir.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return path;
}

// A two-colour PNG of any size. The test holds it at one bit a pixel, a 32nd of what a decode to 32-bit
// pixels needs.
QString writeTwoColourPng(const QTemporaryDir& dir, int width, int height) {
    const QString path = dir.filePath(QStringLiteral("two-colour-%1x%2.png").arg(width).arg(height));
    QImage image(width, height, QImage::Format_Mono);
    image.setColorTable({qRgb(40, 120, 150), qRgb(255, 255, 255)});
    image.fill(0);
    for (int y = 0; y < height / 10; ++y)
        for (int x = 0; x < width / 10; ++x)
            image.setPixel(x, y, 1);
    EXPECT_TRUE(image.save(path, "png"));
    return path;
}

// The process's resident high-water mark, which the kernel lets us reset (Linux 4.0 and later).
std::optional<long> residentHighWaterKb() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmHWM:", 0) == 0)
            return std::stol(line.substr(6));
    return std::nullopt;
}
bool resetResidentHighWater() {
    std::ofstream clear("/proc/self/clear_refs");
    clear << "5";
    clear.flush();
    return bool(clear);
}

DecodeOptions coverOptions(QSize box, PhotoMemoryBudget* budget = nullptr) {
    DecodeOptions options;
    options.coverSize = box;
    options.budget = budget;
    return options;
}

} // namespace

TEST(PhotoDecode, ReducedJpegKeepsItsOrientationFlagStoredPixelsAndAspect) {
    QTemporaryDir dir;
    const QImage camera = markedCorners(4000, 3000);
    for (const int exif : {1, 6, 8, 3}) {
        const QString path = writeJpeg(dir, QStringLiteral("camera-%1.jpg").arg(exif), camera, exif);
        QString error;
        const ImagePtr image = Image::fromFile(path, coverOptions(ItemProvider::displayPixelSize), &error);
        ASSERT_TRUE(image) << error.toStdString();
        // 3/4 is the smallest eighth whose longer side reaches 2532 (5/8 gives 2500).
        EXPECT_EQ(image->pixelSize(), QSize(3000, 2250)) << exif;
        EXPECT_EQ(image->orientation(), orientationFromExif(exif));
        EXPECT_TRUE(image->isReduced());
        ASSERT_TRUE(image->source());
        EXPECT_EQ(image->source()->fullPixelSize, QSize(4000, 3000));
        const bool sideways = exif == 6 || exif == 8;
        EXPECT_EQ(image->size(), sideways ? QSizeF(2250, 3000) : QSizeF(3000, 2250)) << exif;
        // Pixels stay as stored: the marks sit where the camera put them, only fewer.
        EXPECT_TRUE(isRed(image->bitmap().pixel(20, 20))) << exif;
        EXPECT_TRUE(isGreen(image->bitmap().pixel(2979, 20))) << exif;
    }

    // A portrait frame is reduced by the same rule; one already smaller than the box is read whole.
    const ImagePtr portrait = Image::fromFile(writeJpeg(dir, "portrait.jpg", markedCorners(3000, 4000)),
                                              coverOptions(ItemProvider::displayPixelSize));
    ASSERT_TRUE(portrait);
    EXPECT_EQ(portrait->pixelSize(), QSize(2250, 3000));
    const ImagePtr small = Image::fromFile(writeJpeg(dir, "small.jpg", markedCorners(1600, 1200)),
                                           coverOptions(ItemProvider::displayPixelSize));
    ASSERT_TRUE(small);
    EXPECT_EQ(small->pixelSize(), QSize(1600, 1200));
    EXPECT_FALSE(small->isReduced());
}

TEST(PhotoDecode, ReducedDecodeKeepsTheFileChecks) {
    QTemporaryDir dir;
    const QString whole = writeJpeg(dir, "whole.jpg", markedCorners(1200, 900));
    QFile file(whole);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QFile cut(dir.filePath("cut.jpg"));
    ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
    cut.write(bytes.left(bytes.size() * 2 / 3));
    cut.close();
    PhotoMemoryBudget budget;
    QString error;
    EXPECT_FALSE(Image::fromFile(cut.fileName(), coverOptions(QSize(300, 400), &budget), &error));
    EXPECT_TRUE(error.contains("truncated")) << error.toStdString();
    EXPECT_FALSE(Image::fromFile(testsupport::dataPath("huge-header.png"),
                                 coverOptions(QSize(300, 400), &budget), &error));
    EXPECT_TRUE(error.contains("too large")) << error.toStdString();
    EXPECT_EQ(budget.used(), 0);
}

TEST(PhotoDecode, HugePngIsReadReducedWithoutEverHoldingItWhole) {
    QTemporaryDir dir;
    const QString path = writeTwoColourPng(dir, 14000, 14000); // 784 MB at 32 bits a pixel
    PhotoMemoryBudget budget(std::int64_t(100) << 20);
    const std::optional<long> before = residentHighWaterKb();
    const bool measured = before && resetResidentHighWater();
    const long baseline = measured ? *residentHighWaterKb() : 0;
    QString error;
    const ImagePtr image =
        Image::fromFile(path, coverOptions(ItemProvider::displayPixelSize, &budget), &error);
    ASSERT_TRUE(image) << error.toStdString();
    // Blocks of 5 × 5: the largest whole-number reduction that still covers 2532.
    EXPECT_EQ(image->pixelSize(), QSize(2800, 2800));
    EXPECT_EQ(image->source()->fullPixelSize, QSize(14000, 14000));
    EXPECT_EQ(image->bitmap().pixel(1266, 1266), qRgb(40, 120, 150));
    EXPECT_EQ(image->bitmap().pixel(100, 100), qRgb(255, 255, 255));
    EXPECT_EQ(budget.used(), bytesOf(QSize(2800, 2800)));
    if (measured) {
        EXPECT_LT(*residentHighWaterKb() - baseline, 200 * 1024)
            << "the decode held far more than its result";
    }
}

TEST(PhotoMemoryBudget, ReservationsAddUpShrinkAndComeBack) {
    PhotoMemoryBudget budget(1000);
    auto a = budget.reserve(600);
    ASSERT_TRUE(a);
    EXPECT_FALSE(budget.reserve(401));
    auto b = budget.reserve(400);
    ASSERT_TRUE(b);
    EXPECT_EQ(budget.available(), 0);
    a->shrinkTo(100);
    a->shrinkTo(900); // never grows
    EXPECT_EQ(budget.used(), 500);
    {
        PhotoMemoryBudget::Reservation moved = std::move(*b);
        EXPECT_EQ(budget.used(), 500);
    }
    EXPECT_EQ(budget.used(), 100);
    a.reset();
    EXPECT_EQ(budget.used(), 0);
}

TEST(PhotoDecode, PastTheBudgetPhotosComeSmallerThenAreRefusedUntilOneIsDropped) {
    QTemporaryDir dir;
    const QString path = writeJpeg(dir, "photo.jpg", markedCorners(1600, 1200));
    const QSize box(600, 800); // 1600 × 1200 covers it at 1/2: 800 × 600
    const std::int64_t wanted = bytesOf(QSize(800, 600));
    // The file's bytes count while it is decoded.
    const std::int64_t file = QFileInfo(path).size();
    // Room for two, then for a 3/8 step, and a little that no step fits in.
    PhotoMemoryBudget budget(wanted * 2 + bytesOf(QSize(600, 450)) + file + 1000);

    std::vector<ImagePtr> held;
    for (int i = 0; i < 2; ++i) {
        held.push_back(Image::fromFile(path, coverOptions(box, &budget)));
        ASSERT_TRUE(held.back());
        EXPECT_EQ(held.back()->pixelSize(), QSize(800, 600));
    }
    // The next one takes the largest step that fits, above half the wanted sides.
    const ImagePtr third = Image::fromFile(path, coverOptions(box, &budget));
    ASSERT_TRUE(third);
    EXPECT_EQ(third->pixelSize(), QSize(600, 450));
    EXPECT_LE(budget.used(), budget.limit());

    QString error;
    EXPECT_FALSE(Image::fromFile(path, coverOptions(box, &budget), &error));
    EXPECT_TRUE(error.startsWith("not enough memory for this picture")) << error.toStdString();
    EXPECT_TRUE(
        error.contains(QStringLiteral("of the %1 MB allowed").arg((budget.limit() + (1 << 19)) >> 20)))
        << error.toStdString();

    // A step below half the wanted sides is not worth having: room for an eighth still refuses.
    PhotoMemoryBudget scant(bytesOf(QSize(200, 150)) + file + 1000);
    EXPECT_FALSE(Image::fromFile(path, coverOptions(box, &scant)));
    EXPECT_EQ(scant.used(), 0);

    // Pictures that share pixels keep them charged until the last of them goes.
    ImagePtr turned = held.front()->withOrientation(ImageOrientation::right, 1);
    held.erase(held.begin());
    EXPECT_FALSE(Image::fromFile(path, coverOptions(box, &budget)));
    const std::int64_t before = budget.used();
    ASSERT_EQ(turned.use_count(), 1);
    turned.reset();
    EXPECT_EQ(budget.used(), before - wanted);
    const ImagePtr again = Image::fromFile(path, coverOptions(box, &budget));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->pixelSize(), QSize(800, 600));
}

TEST(PhotoDecode, FullResolutionGoesBackToTheFile) {
    QTemporaryDir dir;
    const QString path = writeJpeg(dir, "sideways.jpg", markedCorners(4000, 3000), 6);
    PhotoMemoryBudget budget;
    std::optional<ImagePtr> loaded;
    ItemProvider(path, &budget).loadImage([&](ImagePtr image, QString) { loaded = image; });
    ASSERT_TRUE(testsupport::waitUntil([&] { return loaded.has_value(); }));
    const ImagePtr shown = *loaded;
    ASSERT_TRUE(shown);
    ASSERT_EQ(shown->pixelSize(), QSize(3000, 2250));

    QString error;
    const ImagePtr full = Image::fullResolution(shown, &budget, &error);
    ASSERT_TRUE(full);
    EXPECT_TRUE(error.isEmpty()) << error.toStdString();
    EXPECT_EQ(full->pixelSize(), QSize(4000, 3000));
    EXPECT_FALSE(full->isReduced());
    EXPECT_EQ(full->orientation(), ImageOrientation::right);
    EXPECT_EQ(full->size(), QSizeF(3000, 4000));
    EXPECT_TRUE(isRed(full->bitmap().pixel(30, 30)));
    EXPECT_EQ(budget.used(), bytesOf(QSize(3000, 2250)) + bytesOf(QSize(4000, 3000)));
    EXPECT_EQ(Image::fullResolution(full, &budget), full); // already whole

    // A budget with room for less gives the largest that fits, saying so.
    PhotoMemoryBudget tight(bytesOf(QSize(3000, 2250)) + bytesOf(QSize(3500, 2625)) + QFileInfo(path).size());
    const ImagePtr held = Image::fromFile(path, coverOptions(ItemProvider::displayPixelSize, &tight));
    ASSERT_TRUE(held);
    const ImagePtr larger = Image::fullResolution(held, &tight, &error);
    EXPECT_EQ(larger->pixelSize(), QSize(3500, 2625));
    EXPECT_TRUE(error.contains("not enough memory")) << error.toStdString();

    // A file replaced by another picture, or gone, leaves the held picture as it is.
    writeJpeg(dir, "sideways.jpg", markedCorners(2000, 1500), 6);
    EXPECT_EQ(Image::fullResolution(shown, &budget, &error), shown);
    EXPECT_TRUE(error.contains("has changed")) << error.toStdString();
    QFile::remove(path);
    error.clear();
    EXPECT_EQ(Image::fullResolution(shown, &budget, &error), shown);
    EXPECT_FALSE(error.isEmpty());

    // The provider's full-resolution load reads every pixel at once.
    const QString other = writeJpeg(dir, "other.jpg", markedCorners(4000, 3000));
    std::optional<ImagePtr> whole;
    ItemProvider(other, &budget).loadFullResolutionImage([&](ImagePtr image, QString) { whole = image; });
    ASSERT_TRUE(testsupport::waitUntil([&] { return whole.has_value(); }));
    ASSERT_TRUE(*whole);
    EXPECT_EQ((*whole)->pixelSize(), QSize(4000, 3000));
}

// A see-through PNG read reduced averages each block weighted by coverage: a clear pixel's colour does
// not show, and the result is the block's premultiplied mean.
TEST(PhotoDecode, ReducedPngAveragesColourByCoverage) {
    QImage straight(4, 2, QImage::Format_ARGB32);
    const QRgb pixels[] = {qRgba(250, 200, 10, 255), qRgba(0, 255, 255, 0),    qRgba(40, 100, 240, 128),
                           qRgba(90, 30, 60, 200),   qRgba(255, 0, 0, 64),     qRgba(10, 250, 90, 255),
                           qRgba(0, 0, 255, 0),      qRgba(120, 140, 160, 180)};
    for (int i = 0; i < 8; ++i)
        straight.setPixel(i % 4, i / 4, pixels[i]);
    QByteArray png;
    QBuffer buffer(&png);
    ASSERT_TRUE(buffer.open(QIODevice::WriteOnly) && straight.save(&buffer, "png"));
    const ImagePtr whole = Image::fromData(png); // the reference
    ASSERT_TRUE(whole);
    const QImage premultiplied = whole->bitmap().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage half = PngReducedDecoder::decode(png, 2);
    ASSERT_EQ(half.size(), QSize(2, 1));
    ASSERT_EQ(half.format(), QImage::Format_ARGB32_Premultiplied);
    for (int block = 0; block < 2; ++block) {
        int sum[4] = {};
        for (int y = 0; y < 2; ++y)
            for (int x = 2 * block; x < 2 * block + 2; ++x) {
                const QRgb p = premultiplied.pixel(x, y);
                sum[0] += qRed(p), sum[1] += qGreen(p), sum[2] += qBlue(p), sum[3] += qAlpha(p);
            }
        const QRgb got = half.pixel(block, 0);
        EXPECT_NEAR(qRed(got), sum[0] / 4.0, 2) << block;
        EXPECT_NEAR(qGreen(got), sum[1] / 4.0, 2) << block;
        EXPECT_NEAR(qBlue(got), sum[2] / 4.0, 2) << block;
        EXPECT_NEAR(qAlpha(got), sum[3] / 4.0, 1) << block;
    }
}
