#include "platform/Image.h"
#include "platform/ItemProvider.h"
#include "platform/PhotoMemoryBudget.h"

#include "platform/MarkedCorners.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <chrono>
#include <cmath>
#include <cstring>
#include <future>
#include <gtest/gtest.h>
#include <libheif/heif.h>
#include <memory>

namespace {

const QString kSamples = QStringLiteral(LUMIVEX_SAMPLES_DIR "/");

std::int64_t bytesOf(QSize size) {
    return std::int64_t(size.width()) * size.height() * 4;
}

// Mean absolute difference per channel of two pictures of one size, 0…255.
double meanDifference(const QImage& a, const QImage& b) {
    const QImage x = a.convertToFormat(QImage::Format_RGB32), y = b.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    for (int row = 0; row < x.height(); ++row) {
        const auto* p = reinterpret_cast<const QRgb*>(x.constScanLine(row));
        const auto* q = reinterpret_cast<const QRgb*>(y.constScanLine(row));
        for (int col = 0; col < x.width(); ++col)
            sum += std::abs(qRed(p[col]) - qRed(q[col])) + std::abs(qGreen(p[col]) - qGreen(q[col])) +
                   std::abs(qBlue(p[col]) - qBlue(q[col]));
    }
    return sum / (3.0 * x.width() * x.height());
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

bool encoderAvailable(const QString& section) {
    QProcess process;
    process.start(QStringLiteral("heif-enc"), {QStringLiteral("--list-encoders")});
    if (!process.waitForFinished(10000))
        return false;
    // The listing names each format's encoders under a header of its own.
    const QString listing = QString::fromUtf8(process.readAllStandardOutput());
    const qsizetype at = listing.indexOf(section);
    return at >= 0 && listing.mid(at + section.size()).trimmed().startsWith(QLatin1Char('-'));
}

// A sample photo as the PNG it is encoded from, and that PNG encoded by heif-enc.
struct Encoded {
    QImage reference;
    QString path;
};

Encoded encodeSample(const QTemporaryDir& dir, const QString& sample, const QString& output,
                     const QStringList& extraArguments = {}) {
    Encoded encoded;
    encoded.reference = QImage(kSamples + sample);
    const QString png = dir.filePath(sample + QStringLiteral(".png"));
    EXPECT_TRUE(encoded.reference.save(png));
    encoded.path = dir.filePath(output);
    QProcess process;
    process.start(QStringLiteral("heif-enc"),
                  extraArguments + QStringList{QStringLiteral("-q"), QStringLiteral("92"),
                                               QStringLiteral("-o"), encoded.path, png});
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    EXPECT_TRUE(QFile::exists(encoded.path));
    return encoded;
}

// Encodes `image` as HEIC through libheif, with irot/imir boxes asking for `orientation` when shown.
QByteArray encodeWithOrientation(const QImage& source, heif_orientation orientation) {
    const QImage rgb = source.convertToFormat(QImage::Format_RGB888);
    heif_image* image = nullptr;
    EXPECT_EQ(
        heif_image_create(rgb.width(), rgb.height(), heif_colorspace_RGB, heif_chroma_interleaved_RGB, &image)
            .code,
        heif_error_Ok);
    EXPECT_EQ(heif_image_add_plane(image, heif_channel_interleaved, rgb.width(), rgb.height(), 8).code,
              heif_error_Ok);
    int stride = 0;
    uint8_t* plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
    for (int y = 0; y < rgb.height(); ++y)
        std::memcpy(plane + y * stride, rgb.constScanLine(y), std::size_t(rgb.width()) * 3);

    heif_context* context = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    EXPECT_EQ(heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code,
              heif_error_Ok);
    heif_encoder_set_lossy_quality(encoder, 95);
    heif_encoding_options* options = heif_encoding_options_alloc();
    options->image_orientation = orientation;
    EXPECT_EQ(heif_context_encode_image(context, image, encoder, options, nullptr).code, heif_error_Ok);
    heif_encoding_options_free(options);
    heif_encoder_release(encoder);

    QByteArray bytes;
    heif_writer writer{};
    writer.writer_api_version = 1;
    writer.write = [](heif_context*, const void* data, size_t size, void* userdata) {
        static_cast<QByteArray*>(userdata)->append(static_cast<const char*>(data), qsizetype(size));
        return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
    };
    EXPECT_EQ(heif_context_write(context, &writer, &bytes).code, heif_error_Ok);
    heif_context_free(context);
    heif_image_release(image);
    return bytes;
}

class HeifDecodeTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (QStandardPaths::findExecutable(QStringLiteral("heif-enc")).isEmpty())
            GTEST_SKIP() << "heif-enc (libheif-examples) is not installed";
    }
    QTemporaryDir dir;
};

TEST_F(HeifDecodeTest, HeicAndAvifFromTheSamplesOpenUprightAtTheirSizeWithTheirPixels) {
    // An odd width too: HEVC codes whole blocks, and the file crops them back.
    for (const QString& sample : {QStringLiteral("fruits.jpg"), QStringLiteral("HappyFish.jpg")}) {
        const Encoded heic = encodeSample(dir, sample, sample + QStringLiteral(".heic"));
        QString error;
        const ImagePtr image = Image::fromFile(heic.path, 3.0, &error);
        ASSERT_TRUE(image) << error.toStdString();
        EXPECT_EQ(image->orientation(), ImageOrientation::up);
        EXPECT_EQ(image->pixelSize(), heic.reference.size()) << sample.toStdString();
        EXPECT_EQ(image->size(), QSizeF(heic.reference.size()) / 3.0);
        EXPECT_LT(meanDifference(image->bitmap(), heic.reference), 6.0) << sample.toStdString();
        EXPECT_EQ(image->source()->fullPixelSize, heic.reference.size());
    }

    if (!encoderAvailable(QStringLiteral("AVIF encoders:"))) {
        std::printf("AVIF case skipped: heif-enc has no AV1 encoder here\n");
        return;
    }
    const Encoded avif = encodeSample(dir, QStringLiteral("fruits.jpg"), QStringLiteral("fruits.avif"),
                                      {QStringLiteral("-A")});
    QString error;
    const ImagePtr image = Image::fromFile(avif.path, 1.0, &error);
    ASSERT_TRUE(image) << error.toStdString();
    EXPECT_EQ(image->orientation(), ImageOrientation::up);
    EXPECT_EQ(image->pixelSize(), avif.reference.size());
    EXPECT_LT(meanDifference(image->bitmap(), avif.reference), 6.0);
}

TEST_F(HeifDecodeTest, RotationAndMirrorBoxesAreAppliedAndTheFlagStaysUp) {
    const QImage stored = markedCorners(320, 200, 48);
    // Turning a quarter clockwise takes the top-left corner to the top right and the top right to the
    // bottom right; mirroring after it takes them back to the left.
    struct Case {
        heif_orientation orientation;
        QSize upright;
        QPoint red, green;
    } cases[] = {
        {heif_orientation_rotate_90_cw, QSize(200, 320), QPoint(199, 0), QPoint(199, 319)},
        {heif_orientation_rotate_180, QSize(320, 200), QPoint(319, 199), QPoint(0, 199)},
        {heif_orientation_rotate_90_cw_then_flip_horizontally, QSize(200, 320), QPoint(0, 0), QPoint(0, 319)},
    };
    for (const Case& c : cases) {
        const QString path = dir.filePath(QStringLiteral("turned-%1.heic").arg(int(c.orientation)));
        writeAll(path, encodeWithOrientation(stored, c.orientation));
        QString error;
        const ImagePtr image = Image::fromFile(path, 1.0, &error);
        ASSERT_TRUE(image) << error.toStdString();
        SCOPED_TRACE(int(c.orientation));
        // libheif has turned the pixels already; a flag on top would turn them twice.
        EXPECT_EQ(image->orientation(), ImageOrientation::up);
        EXPECT_EQ(image->pixelSize(), c.upright);
        const QImage upright = image->uprightBitmap();
        const QPoint inset(c.red.x() ? -20 : 20, c.red.y() ? -20 : 20);
        const QPoint insetGreen(c.green.x() ? -20 : 20, c.green.y() ? -20 : 20);
        EXPECT_TRUE(isRed(upright.pixel(c.red + inset)));
        EXPECT_TRUE(isGreen(upright.pixel(c.green + insetGreen)));
    }
}

TEST_F(HeifDecodeTest, ReducedDecodeIsChargedForTheWholeStepAndKeepsOnlyTheResult) {
    const Encoded heic = encodeSample(dir, QStringLiteral("fruits.jpg"), QStringLiteral("fruits.heic"));
    const QSize full = heic.reference.size(); // 512 × 480

    // Room for the reduced result, and even for the whole bitmap, but not for the decoder's planes
    // beside it: the decode must be refused rather than overrun the budget.
    {
        PhotoMemoryBudget tight(bytesOf(full) + 64 * 1024);
        DecodeOptions options;
        options.coverSize = QSize(128, 120);
        options.budget = &tight;
        QString error;
        EXPECT_FALSE(Image::fromFile(heic.path, options, &error));
        EXPECT_TRUE(error.contains(QStringLiteral("not enough memory"))) << error.toStdString();
        EXPECT_EQ(tight.used(), 0);
    }

    PhotoMemoryBudget budget(64 << 20);
    DecodeOptions options;
    options.coverSize = QSize(128, 120);
    options.budget = &budget;
    QString error;
    ImagePtr image = Image::fromFile(heic.path, options, &error);
    ASSERT_TRUE(image) << error.toStdString();
    EXPECT_TRUE(image->isReduced());
    EXPECT_EQ(image->pixelSize(), QSize(128, 120));
    EXPECT_LT(meanDifference(image->bitmap(), heic.reference.scaled(128, 120, Qt::IgnoreAspectRatio,
                                                                    Qt::SmoothTransformation)),
              8.0);
    EXPECT_EQ(budget.used(), bytesOf(QSize(128, 120)));

    const ImagePtr whole = Image::fullResolution(image, &budget, &error);
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->pixelSize(), full);
    EXPECT_EQ(budget.used(), bytesOf(full) + bytesOf(QSize(128, 120)));
    image.reset();
    EXPECT_EQ(budget.used(), bytesOf(full));
}

TEST_F(HeifDecodeTest, DamagedOversizedAndUnknownCodecFilesAreRefusedWithTheirReason) {
    const Encoded heic = encodeSample(dir, QStringLiteral("fruits.jpg"), QStringLiteral("fruits.heic"));
    const QByteArray bytes = readAll(heic.path);

    const QString cut = dir.filePath(QStringLiteral("cut.heic"));
    writeAll(cut, bytes.left(bytes.size() / 2));
    QString error;
    EXPECT_FALSE(Image::fromFile(cut, 1.0, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("truncated"))) << error.toStdString();

    // The declared size is refused before any pixel is decoded.
    QByteArray huge = bytes;
    const qsizetype ispe = huge.indexOf("ispe");
    ASSERT_GT(ispe, 0);
    const char side[4] = {0, 0, char(0x3E), char(0x80)}; // 16000
    huge.replace(ispe + 8, 4, side, 4);
    huge.replace(ispe + 12, 4, side, 4);
    const QString hugePath = dir.filePath(QStringLiteral("huge.heic"));
    writeAll(hugePath, huge);
    error.clear();
    EXPECT_FALSE(Image::fromFile(hugePath, 1.0, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("too large"))) << error.toStdString();

    // An item coded with something libheif has no decoder for.
    QByteArray foreign = bytes;
    const qsizetype hvc1 = foreign.indexOf("hvc1");
    ASSERT_GT(hvc1, 0);
    foreign.replace(hvc1, 4, "vvc1", 4);
    const QString foreignPath = dir.filePath(QStringLiteral("foreign.heic"));
    writeAll(foreignPath, foreign);
    error.clear();
    EXPECT_FALSE(Image::fromFile(foreignPath, 1.0, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("codec"))) << error.toStdString();
}

TEST_F(HeifDecodeTest, ItemProviderClaimsHeifByNameAndByHeader) {
    const Encoded heic = encodeSample(dir, QStringLiteral("fruits.jpg"), QStringLiteral("fruits.heic"));
    EXPECT_TRUE(ItemProvider(heic.path).canLoadImage());
    const QString bare = dir.filePath(QStringLiteral("IMG_0001"));
    ASSERT_TRUE(QFile::copy(heic.path, bare));
    EXPECT_TRUE(ItemProvider(bare).canLoadImage());
    const QString text = dir.filePath(QStringLiteral("notes"));
    writeAll(text, QByteArray("ftyp is not enough to be a picture\n"));
    EXPECT_FALSE(ItemProvider(text).canLoadImage());

    std::promise<std::pair<ImagePtr, QString>> promise;
    ItemProvider(bare).loadImage([&promise](ImagePtr image, QString error) {
        promise.set_value({std::move(image), std::move(error)});
    });
    auto future = promise.get_future();
    ASSERT_EQ(future.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    const auto [loaded, loadedError] = future.get();
    ASSERT_TRUE(loaded) << loadedError.toStdString();
    EXPECT_EQ(loaded->pixelSize(), heic.reference.size());
}

} // namespace
