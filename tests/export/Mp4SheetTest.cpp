#include "ExportFileReaders.h"
#include "export/EditorSavingChain.h"
#include "export/ExportScreens.h"
#include "export/MP4Function.h"
#include "export/MP4VideoController.h"
#include "export/PDFPrintController.h"
#include "export/RateShareController.h"
#include "export/SavingTypeCell.h"
#include "export/SavingTypeController.h"
#include "export/SheetControls.h"
#include "platform/AppWindow.h"
#include "platform/Assets.h"
#include "platform/ImageView.h"
#include "platform/PhotoLibrary.h"
#include "platform/ProgressHud.h"
#include "platform/Screen.h"
#include "platform/ShareSheet.h"
#include "platform/VideoPlayerView.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

// The MP4 sheet and its export, and both new sheets reached from an editor through the chooser.
namespace {

using namespace exportfiles;

QJsonObject probe(const QString& path) {
    return QJsonDocument::fromJson(
               run("ffprobe", {"-v", "error", "-show_streams", "-show_format", "-of", "json", path}).out)
        .object();
}

QStringList codecs(const QJsonObject& probed) {
    QStringList names;
    for (const QJsonValue stream : probed["streams"].toArray())
        names << stream["codec_name"].toString();
    return names;
}

double durationOf(const QString& path) {
    return probe(path)["format"].toObject()["duration"].toString().toDouble();
}

class StandInEditor : public ViewController {
public:
    StandInEditor() {
        canvas = new QLabel(this);
        canvas->setGeometry(0, 100, 240, 160);
        canvas->setStyleSheet(QStringLiteral("background: qlineargradient(x1:0, y1:0, x2:1, y2:1,"
                                             " stop:0 #2a6, stop:1 #c42);"));
        chain = new EditorSavingChain(this, [this] { return Image::make(canvas->grab().toImage(), 1.0); });
    }
    QLabel* canvas = nullptr;
    EditorSavingChain* chain = nullptr;
};

class Mp4Sheet : public ::testing::Test {
protected:
    void SetUp() override {
        registerExportScreens();
        qputenv("LUMIVEX_DOCUMENTS_DIR", documents.path().toUtf8());
        Screen::main().setScale(3);
        ShareSheet::resetPresentationRecord();
        album = std::make_unique<PhotoLibrary>(albumDir.path());
        window.resize(390, 844);
        window.setRootViewController(editor = new StandInEditor);
        window.makeKeyAndVisible();
        editor->chain->photoLibrary = album.get();
        blankAudio =
            Assets::resourceURL(QStringLiteral("Blank Audio"), QStringLiteral("mp3")).value_or(QString());
    }
    void TearDown() override {
        qunsetenv("LUMIVEX_DOCUMENTS_DIR");
        ProgressHud::dismiss();
    }
    template <typename Sheet> Sheet* choose(SavingtypeMethod type) {
        SavingTypeController* chooser = editor->chain->openChooser();
        QTest::mouseClick(chooser->cellForRow(static_cast<int>(type)), Qt::LeftButton);
        return qobject_cast<Sheet*>(editor->presentedViewController());
    }
    RateShareController* waitForShareScreen() {
        testsupport::waitUntil(
            [&] { return qobject_cast<RateShareController*>(editor->presentedViewController()); }, 30000);
        return qobject_cast<RateShareController*>(editor->presentedViewController());
    }
    // Exports and waits; the result.
    MP4Function::Result exportNow(const QString& input, Video::ExportPreset preset) {
        std::optional<MP4Function::Result> got;
        std::atomic<bool> done{false};
        MP4Function::exportVideo(input, preset, [&](const MP4Function::Result& r) {
            got = r;
            done = true;
        });
        testsupport::waitUntil([&] { return done.load(); }, 30000);
        return got.value_or(MP4Function::Result{});
    }
    QString convertPath() const {
        return QDir(documents.path()).filePath(QStringLiteral("Convert/Convert.mp4"));
    }

    QTemporaryDir documents;
    QTemporaryDir albumDir;
    std::unique_ptr<PhotoLibrary> album;
    AppWindow window;
    StandInEditor* editor = nullptr;
    QString blankAudio;
};

TEST_F(Mp4Sheet, TheQualityLabelFollowsTheSliderInSinglePrecisionAndChoosesThePreset) {
    EXPECT_EQ(MP4VideoController::qualityText(0.6f), QStringLiteral("Medium"));
    EXPECT_EQ(MP4VideoController::qualityText(1.0f), QStringLiteral("High"));
    EXPECT_EQ(MP4VideoController::qualityText(1.5f), QStringLiteral("High"));
    EXPECT_EQ(MP4VideoController::qualityText(0.2f), QStringLiteral("Low"));
    EXPECT_EQ(MP4VideoController::qualityText(std::nextafter(0.6f, 0.0f)), QStringLiteral("Low"));
    EXPECT_FALSE(MP4VideoController::qualityText(std::nextafter(1.5f, 2.0f)));
    EXPECT_FALSE(MP4VideoController::qualityText(0.1f));

    auto* sheet = choose<MP4VideoController>(SavingtypeMethod::MP4Video);
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->sizelbl()->text(), QStringLiteral("High")); // the first text, before any move
    EXPECT_TRUE(sheet->suggestedLbl()->isHidden());
    sheet->qualityslider()->setValue(600);
    EXPECT_EQ(sheet->sizelbl()->text(), QStringLiteral("Medium"));
    sheet->qualityslider()->setValue(sheet->qualityslider()->minimum());
    EXPECT_EQ(sheet->sizelbl()->text(), QStringLiteral("Low"));
    EXPECT_EQ(MP4Function::presetForLabel(QStringLiteral("High")), Video::ExportPreset::highestQuality);
    EXPECT_EQ(MP4Function::presetForLabel(QStringLiteral("Medium")), Video::ExportPreset::mediumQuality);
    EXPECT_EQ(MP4Function::presetForLabel(QString()), Video::ExportPreset::lowQuality);
}

TEST_F(Mp4Sheet, BadVideosCannotMakeASessionAndTwoExportsLeaveOneFile) {
    ASSERT_FALSE(blankAudio.isEmpty()) << "the asset generator has not made Blank Audio.mp3";
    const QString notVideo = QDir(documents.path()).filePath(QStringLiteral("clip.mp4"));
    QFile text(notVideo);
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("plain words, not a video");
    text.close();
    for (const QString& bad : {notVideo, blankAudio}) {
        const MP4Function::Result result = exportNow(bad, Video::ExportPreset::highestQuality);
        ASSERT_TRUE(result.error);
        EXPECT_EQ(result.error->code, -1);
        EXPECT_EQ(result.error->domain, QStringLiteral("VideoExportError"));
        EXPECT_EQ(result.error->localizedDescription, QStringLiteral("Cannot create export session"));
    }
    EXPECT_FALSE(QFile::exists(convertPath()));

    const QString source = QDir(documents.path()).filePath(QStringLiteral("source.mp4"));
    ASSERT_TRUE(Video::videoFromImage(gradientPicture(QSize(240, 160), 1)->bitmap(), blankAudio, source).url);
    for (const auto preset : {Video::ExportPreset::highestQuality, Video::ExportPreset::lowQuality}) {
        const MP4Function::Result result = exportNow(source, preset);
        ASSERT_TRUE(result.url) << (result.error ? result.error->localizedDescription.toStdString() : "");
        EXPECT_EQ(*result.url, convertPath());
    }
    EXPECT_EQ(QDir(QFileInfo(convertPath()).path()).entryList(QDir::Files), QStringList{"Convert.mp4"});
    EXPECT_EQ(codecs(probe(convertPath())), (QStringList{"h264", "aac"}));
}

TEST_F(Mp4Sheet, APickedVideoIsExportedAtTheChosenQualityWithItsFirstFrameShown) {
    ASSERT_FALSE(blankAudio.isEmpty()) << "the asset generator has not made Blank Audio.mp3";
    const QString picked = QDir(documents.path()).filePath(QStringLiteral("picked.mp4"));
    ASSERT_TRUE(
        Video::videoFromImage(gradientPicture(QSize(1000, 700), 1)->bitmap(), blankAudio, picked).url);
    Receiver receiver;
    auto* sheet = new MP4VideoController;
    sheet->videoUrl = picked;
    sheet->savingDelegate = &receiver;
    editor->present(sheet, false);
    ASSERT_TRUE(sheet->tobeSavedimage);
    EXPECT_EQ(sheet->tobeSavedimage->pixelSize(), QSize(1000, 700));
    EXPECT_FALSE(sheet->suggestedLbl()->isHidden());
    EXPECT_TRUE(sheet->infoLabel()->isHidden()); // this sheet is made for video
    sheet->qualityslider()->setValue(300);
    QTest::mouseClick(sheet->downloadButton(), Qt::LeftButton);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !receiver.received.isEmpty(); }, 30000));
    EXPECT_EQ(receiver.received[0].sharedURL, convertPath());
    EXPECT_EQ(receiver.received[0].shareimage, sheet->tobeSavedimage);
    const QJsonObject video = probe(convertPath())["streams"].toArray()[0].toObject();
    EXPECT_EQ(QSize(video["width"].toInt(), video["height"].toInt()), QSize(640, 448));
}

TEST_F(Mp4Sheet, APictureBecomesAVideoThatPlaysOnTheShareScreen) {
    ASSERT_FALSE(blankAudio.isEmpty()) << "the asset generator has not made Blank Audio.mp3";
    auto* sheet = choose<MP4VideoController>(SavingtypeMethod::MP4Video);
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->audioURL, blankAudio);
    QTest::mouseClick(sheet->downloadButton(), Qt::LeftButton);
    RateShareController* share = waitForShareScreen();
    ASSERT_TRUE(share);
    EXPECT_EQ(share->fetchData, SavingtypeMethod::MP4Video);
    EXPECT_EQ(share->sharevideoURL, convertPath());
    ASSERT_TRUE(share->playerView());
    EXPECT_TRUE(share->playerView()->isPlaying());
    EXPECT_EQ(QDir(albumDir.path()).entryList(QDir::Files).size(), 1);
    const QJsonObject probed = probe(convertPath());
    EXPECT_EQ(codecs(probed), (QStringList{"h264", "aac"}));
    EXPECT_NEAR(probed["format"].toObject()["duration"].toString().toDouble(), durationOf(blankAudio), 0.1);
    // Nothing of the intermediate video is left behind.
    EXPECT_TRUE(QDir(QDir::tempPath()).entryList({QStringLiteral("lumivex-picture-*")}).isEmpty());
}

TEST_F(Mp4Sheet, PrintWithCmykAndCropMarksReachesTheShareScreen) {
    auto* sheet = choose<PDFPrintController>(SavingtypeMethod::PDFPrint);
    ASSERT_TRUE(sheet);
    QTest::mouseClick(sheet->cropMarksView(), Qt::LeftButton);
    QTest::mouseClick(sheet->colorprofileView(), Qt::LeftButton);
    auto* profiles = qobject_cast<ColorProfileController*>(sheet->presentedViewController());
    ASSERT_TRUE(profiles);
    QTest::mouseClick(profiles->cellForRow(1), Qt::LeftButton);
    testsupport::waitUntil([&] { return !sheet->presentedViewController(); });
    QTest::mouseClick(sheet->downloadBtn(), Qt::LeftButton);
    RateShareController* share = waitForShareScreen();
    ASSERT_TRUE(share);
    const QString pdf = QDir(documents.path()).filePath(QStringLiteral("CropMarks.pdf"));
    EXPECT_EQ(share->fetchData, SavingtypeMethod::PDFPrint);
    EXPECT_EQ(share->sharevideoURL, pdf);
    // The converted picture at one pixel a point is what the screen shows.
    ASSERT_TRUE(share->shareImageView()->image());
    EXPECT_EQ(share->shareImageView()->image()->size(), QSizeF(240, 160));
    EXPECT_EQ(share->shareImageView()->image()->scale(), 1.0);
    EXPECT_TRUE(run("pdfimages", {"-list", pdf}).out.contains("cmyk"));
    EXPECT_TRUE(QDir(albumDir.path()).entryList(QDir::Files).isEmpty());
    EXPECT_TRUE(testsupport::waitUntil([&] { return ShareSheet::lastPresentedItem().filePath == pdf; }));
}

} // namespace
