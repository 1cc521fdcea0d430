#include "platform/Assets.h"
#include "resources/AssetNames.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

extern "C" {
#include <libavformat/avformat.h>
}

namespace {

QImage bitmapOf(const QString& name) {
    const ImagePtr image = Assets::image(name);
    return image ? image->bitmap() : QImage();
}

bool runGenerator(const QStringList& arguments, QString* output = nullptr) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(LUMIVEX_ASSETGEN), arguments);
    const bool finished = process.waitForFinished(180000);
    if (output)
        *output = QString::fromLocal8Bit(process.readAll());
    return finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QMap<QString, QByteArray> digests(const QString& folder) {
    QMap<QString, QByteArray> result;
    for (const QFileInfo& info : QDir(folder).entryInfoList(QDir::Files, QDir::Name)) {
        QFile file(info.filePath());
        if (file.open(QIODevice::ReadOnly))
            result.insert(info.fileName(),
                          QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256));
    }
    return result;
}

} // namespace

TEST(GeneratedArtwork, TwoRunsGiveTheSameBytes) {
    QTemporaryDir first, second;
    ASSERT_TRUE(first.isValid() && second.isValid());
    // The groups with fonts, emoji, alpha, JPEG, the encoder and the thread pool; portraits and
    // backgrounds only repeat those paths at a higher cost.
    const QString groups = QStringLiteral("lookups,stickers,icons,layouts,audio");
    const QStringList common{"--samples", LUMIVEX_SAMPLE_PHOTOS_DIR, "--only", groups};
    QString log;
    ASSERT_TRUE(runGenerator(QStringList{"--out", first.path()} + common, &log)) << log.toStdString();
    ASSERT_TRUE(runGenerator(QStringList{"--out", second.path()} + common, &log)) << log.toStdString();
    const auto a = digests(first.path()), b = digests(second.path());
    EXPECT_GT(a.size(), 400);
    EXPECT_EQ(a.keys(), b.keys());
    for (auto it = a.constBegin(); it != a.constEnd(); ++it)
        EXPECT_EQ(it.value(), b.value(it.key())) << it.key().toStdString() << " differs between runs";
}

TEST(GeneratedArtwork, EveryTemplateHasOneDetectableFrontalFace) {
    cv::CascadeClassifier cascade(LUMIVEX_FACE_CASCADE);
    if (cascade.empty())
        GTEST_SKIP() << "Haar cascades (opencv-data) are not installed";
    QSize first;
    for (const QString& name : AssetNames::templates()) {
        QImage grey = bitmapOf(name).convertToFormat(QImage::Format_Grayscale8);
        ASSERT_FALSE(grey.isNull()) << name.toStdString();
        if (first.isEmpty())
            first = grey.size();
        EXPECT_EQ(grey.size(), first) << name.toStdString() << ": templates share one size";
        cv::Mat view(grey.height(), grey.width(), CV_8UC1, grey.bits(), size_t(grey.bytesPerLine())),
            equalised;
        cv::equalizeHist(view, equalised);
        std::vector<cv::Rect> faces;
        cascade.detectMultiScale(equalised, faces, 1.1, 3, 0, cv::Size(60, 60));
        ASSERT_EQ(faces.size(), 1u) << name.toStdString();
        // A portrait, not a face lost in a corner: the face is a good part of the picture's width.
        EXPECT_GT(faces[0].width, grey.width() / 4) << name.toStdString();
    }
}

TEST(GeneratedArtwork, StickersAndOverlaysHaveTransparentParts) {
    for (const QString& name : AssetNames::stickers()) {
        const QImage sticker = bitmapOf(name).convertToFormat(QImage::Format_ARGB32);
        ASSERT_FALSE(sticker.isNull()) << name.toStdString();
        EXPECT_EQ(qAlpha(sticker.pixel(0, 0)), 0) << name.toStdString();
        int opaque = 0;
        for (int y = 0; y < sticker.height(); y += 2)
            for (int x = 0; x < sticker.width(); x += 2)
                opaque += qAlpha(sticker.pixel(x, y)) > 200;
        EXPECT_GT(opaque, 50) << name.toStdString() << " is nearly empty";
    }
    for (const QString& name : AssetNames::overlays()) {
        const QImage overlay = bitmapOf(name).convertToFormat(QImage::Format_ARGB32);
        ASSERT_FALSE(overlay.isNull()) << name.toStdString();
        EXPECT_EQ(overlay.width(), overlay.height()) << name.toStdString();
        int clear = 0, covered = 0;
        for (int y = 0; y < overlay.height(); y += 4)
            for (int x = 0; x < overlay.width(); x += 4) {
                const int alpha = qAlpha(overlay.pixel(x, y));
                clear += alpha < 10;
                covered += alpha > 40;
            }
        EXPECT_GT(clear, 100) << name.toStdString() << " would hide the picture";
        EXPECT_GT(covered, 100) << name.toStdString() << " shows nothing";
    }
}

TEST(GeneratedArtwork, BlankAudioIsAFewSecondsOfMp3) {
    const auto path = Assets::resourceURL(AssetNames::blankAudioName(), AssetNames::blankAudioExtension());
    ASSERT_TRUE(path.has_value());
    AVFormatContext* format = nullptr;
    ASSERT_EQ(avformat_open_input(&format, path->toUtf8().constData(), nullptr, nullptr), 0);
    ASSERT_GE(avformat_find_stream_info(format, nullptr), 0);
    ASSERT_EQ(format->nb_streams, 1u);
    EXPECT_EQ(format->streams[0]->codecpar->codec_id, AV_CODEC_ID_MP3);
    const double seconds = format->duration / double(AV_TIME_BASE);
    EXPECT_GE(seconds, 2.0);
    EXPECT_LE(seconds, 10.0);
    avformat_close_input(&format);
}

TEST(GeneratedArtwork, ContactSheetShowsTheWholeSet) {
    QTemporaryDir dir;
    const QString sheet = QDir(dir.path()).filePath("sheet.png");
    QString log;
    // The generator fails the sheet when any name of the tables has no file.
    ASSERT_TRUE(runGenerator({"--contact-sheet", sheet, "--assets", LUMIVEX_BUILD_ASSETS_DIR}, &log))
        << log.toStdString();
    const QImage image(sheet);
    EXPECT_GT(image.width(), 1000);
    EXPECT_GT(image.height(), 2000);
}
