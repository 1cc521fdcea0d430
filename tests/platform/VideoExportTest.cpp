#include "platform/Video.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

// Videos made from a still picture and exported at a preset, read back with FFmpeg's command-line
// tools, which share nothing with our writer but the codec libraries.
namespace {

QByteArray runTool(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(60000);
    return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

QJsonObject probe(const QString& path) {
    return QJsonDocument::fromJson(
               runTool(QStringLiteral("ffprobe"), {"-v", "error", "-count_frames", "-show_streams",
                                                   "-show_format", "-of", "json", path}))
        .object();
}

QJsonObject streamOf(const QJsonObject& probed, const QString& type) {
    for (const QJsonValue stream : probed["streams"].toArray())
        if (stream["codec_type"].toString() == type)
            return stream.toObject();
    return {};
}

// Every frame of the video as packed RGB24.
QList<QByteArray> decodedFrames(const QString& path, QSize size) {
    const QByteArray raw = runTool(QStringLiteral("ffmpeg"),
                                   {"-v", "error", "-i", path, "-f", "rawvideo", "-pix_fmt", "rgb24", "-"});
    const qsizetype frameBytes = qsizetype(size.width()) * size.height() * 3;
    QList<QByteArray> frames;
    for (qsizetype at = 0; frameBytes > 0 && at + frameBytes <= raw.size(); at += frameBytes)
        frames << raw.mid(at, frameBytes);
    return frames;
}

double psnr(const QByteArray& rgb, const QImage& reference) {
    const QImage ref = reference.convertToFormat(QImage::Format_RGB888);
    double squared = 0;
    qsizetype count = 0;
    for (int y = 0; y < ref.height(); ++y) {
        const auto* a = reinterpret_cast<const uchar*>(rgb.constData()) + qsizetype(y) * ref.width() * 3;
        const uchar* b = ref.constScanLine(y);
        for (int x = 0; x < ref.width() * 3; ++x, ++count)
            squared += double(a[x] - b[x]) * (a[x] - b[x]);
    }
    const double mse = squared / double(std::max<qsizetype>(count, 1));
    return mse == 0 ? 99.0 : 10 * std::log10(255.0 * 255.0 / mse);
}

class StillVideo : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(temp.isValid());
        audio = temp.filePath(QStringLiteral("silence.mp3"));
        runTool(QStringLiteral("ffmpeg"), {"-v", "error", "-f", "lavfi", "-i", "anullsrc=r=44100:cl=mono",
                                           "-t", "3.3", "-c:a", "libmp3lame", audio});
        ASSERT_TRUE(QFile::exists(audio));
        audioSeconds = probe(audio)["format"].toObject()["duration"].toString().toDouble();
        // An odd size on purpose: the video must come out even.
        picture = QImage(QStringLiteral(LUMIVEX_SAMPLES_DIR "/HappyFish.jpg"))
                      .scaled(391, 845, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        ASSERT_FALSE(picture.isNull());
    }
    QString make(const QString& name) {
        const Video::GeneratedVideo made = Video::videoFromImage(picture, audio, temp.filePath(name));
        EXPECT_TRUE(made.url.has_value()) << made.error.toStdString();
        return made.url.value_or(QString());
    }
    QTemporaryDir temp;
    QString audio;
    double audioSeconds = 0;
    QImage picture;
};

TEST_F(StillVideo, LastsAsLongAsTheSoundAndShowsThePictureInEveryFrame) {
    const QString path = make(QStringLiteral("still.mp4"));
    const QJsonObject probed = probe(path);
    const QJsonObject video = streamOf(probed, QStringLiteral("video"));
    const QJsonObject sound = streamOf(probed, QStringLiteral("audio"));
    ASSERT_EQ(probed["streams"].toArray().size(), 2);
    EXPECT_EQ(video["codec_name"].toString(), QStringLiteral("h264"));
    EXPECT_EQ(sound["codec_name"].toString(), QStringLiteral("aac"));
    EXPECT_EQ(video["pix_fmt"].toString(), QStringLiteral("yuv420p"));
    EXPECT_EQ(video["width"].toInt(), 390);
    EXPECT_EQ(video["height"].toInt(), 844);
    const double duration = probed["format"].toObject()["duration"].toString().toDouble();
    EXPECT_NEAR(duration, audioSeconds, 0.1);
    // Every repeated frame decodes: 30 a second for the whole sound (whose MP3 padding the probe counts).
    const int frameCount = video["nb_read_frames"].toString().toInt();
    EXPECT_NEAR(frameCount, audioSeconds * 30, 1.5);

    const QList<QByteArray> frames = decodedFrames(path, QSize(390, 844));
    ASSERT_EQ(frames.size(), frameCount);
    const QImage expected = picture.scaled(390, 844, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    EXPECT_GE(psnr(frames.first(), expected), 35.0);
    EXPECT_EQ(frames.last(), frames.first()); // skipped frames copy the picture exactly
    // The decoder conceals damaged frames silently in the pixels, but reports them.
    QProcess check;
    check.start(QStringLiteral("ffmpeg"), {"-v", "warning", "-i", path, "-f", "null", "-"});
    check.waitForFinished(60000);
    EXPECT_EQ(check.readAllStandardError(), QByteArray());
    // The moov box comes first, so playing can start before the file is read to its end.
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray head = file.read(4096);
    EXPECT_LT(head.indexOf("moov"), head.indexOf("mdat") < 0 ? 4096 : head.indexOf("mdat"));
}

TEST_F(StillVideo, AMissingSoundIsNamedAndLeavesNoFile) {
    const QString out = temp.filePath(QStringLiteral("none.mp4"));
    const Video::GeneratedVideo made = Video::videoFromImage(picture, temp.filePath("Blank Audio.mp3"), out);
    EXPECT_FALSE(made.url);
    EXPECT_TRUE(made.error.contains(QStringLiteral("Blank Audio.mp3")));
    EXPECT_EQ(QDir(temp.path()).entryList({QStringLiteral("*.mp4*")}, QDir::Files).size(), 0);
}

TEST_F(StillVideo, ExportSessionsRefuseWhatIsNotAVideoAndShrinkAtLowQuality) {
    const QString source = make(QStringLiteral("source.mp4"));
    const QString text = temp.filePath(QStringLiteral("notes.mp4"));
    QFile textFile(text);
    ASSERT_TRUE(textFile.open(QIODevice::WriteOnly));
    textFile.write("this is not a video\n");
    textFile.close();
    QFile::copy(source, temp.filePath(QStringLiteral("cut.mp4")));
    QFile::resize(temp.filePath(QStringLiteral("cut.mp4")), 1000);
    for (const QString& bad :
         {text, temp.filePath(QStringLiteral("cut.mp4")), audio, temp.filePath("absent.mp4")})
        EXPECT_EQ(Video::ExportSession::create(bad, Video::ExportPreset::lowQuality), nullptr)
            << bad.toStdString();

    auto high = Video::ExportSession::create(source, Video::ExportPreset::highestQuality);
    ASSERT_TRUE(high);
    EXPECT_TRUE(high->passesThrough());
    auto low = Video::ExportSession::create(source, Video::ExportPreset::lowQuality);
    ASSERT_TRUE(low);
    EXPECT_FALSE(low->passesThrough());
    low->outputURL = temp.filePath(QStringLiteral("low.mp4"));
    low->exportSynchronously();
    ASSERT_EQ(low->status(), Video::ExportSession::Status::completed) << low->error().toStdString();
    const QJsonObject probed = probe(low->outputURL);
    const QJsonObject video = streamOf(probed, QStringLiteral("video"));
    EXPECT_EQ(video["codec_name"].toString(), QStringLiteral("h264"));
    EXPECT_EQ(std::max(video["width"].toInt(), video["height"].toInt()), 640);
    EXPECT_EQ(video["width"].toInt() % 2, 0);
    EXPECT_EQ(streamOf(probed, QStringLiteral("audio"))["codec_name"].toString(), QStringLiteral("aac"));
    EXPECT_NEAR(probed["format"].toObject()["duration"].toString().toDouble(), audioSeconds, 0.1);
    EXPECT_FALSE(QFile::exists(low->outputURL + QStringLiteral(".partial.mp4")));
}

} // namespace
