#include "export/ExportScreens.h"
#include "export/RateShareController.h"
#include "platform/AppWindow.h"
#include "platform/ImageView.h"
#include "platform/ShareSheet.h"
#include "platform/Storyboard.h"
#include "platform/TestMediaFiles.h"
#include "platform/VideoPlayerView.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class ShareScreen : public ::testing::Test {
protected:
    void SetUp() override {
        registerExportScreens();
        ShareSheet::resetPresentationRecord();
        album = std::make_unique<PhotoLibrary>(temp.filePath(QStringLiteral("album")));
        window.resize(390, 844);
        window.setRootViewController(editor = new ViewController);
        window.makeKeyAndVisible();
        QImage bitmap(120, 80, QImage::Format_RGB32);
        bitmap.fill(QColor(30, 160, 90));
        image = Image::make(bitmap, 3.0);
    }

    RateShareController* open(SavingtypeMethod type, std::optional<QString> file, ImagePtr picture) {
        auto* screen = qobject_cast<RateShareController*>(
            Storyboard::instantiate(QStringLiteral("Main"), QStringLiteral("RateShareController")));
        screen->shareImage = std::move(picture);
        screen->sharevideoURL = std::move(file);
        screen->fetchData = type;
        screen->photoLibrary = album.get();
        editor->present(screen, true);
        return screen;
    }

    QStringList albumFiles() const { return QDir(album->folder()).entryList(QDir::Files, QDir::Name); }

    QString writeFile(const QString& name, const QImage& pixels, const char* format) {
        const QString path = temp.filePath(name);
        EXPECT_TRUE(pixels.save(path, format));
        return path;
    }

    QTemporaryDir temp;
    std::unique_ptr<PhotoLibrary> album;
    AppWindow window;
    ViewController* editor = nullptr;
    ImagePtr image;
};

TEST_F(ShareScreen, JpgWritesOneJpegAndSharesThePictureAtLoadAndOnTheButton) {
    RateShareController* screen = open(SavingtypeMethod::JPG, std::nullopt, image);
    // The picture is shared at once, not a turn later.
    EXPECT_EQ(ShareSheet::presentationCount(), 1);
    EXPECT_EQ(ShareSheet::lastPresentedItem().image, image);
    EXPECT_EQ(ShareSheet::visibleSheet(&window), screen->presentedViewController());

    const QStringList files = albumFiles();
    ASSERT_EQ(files.size(), 1);
    EXPECT_TRUE(files[0].endsWith(QStringLiteral(".jpg")));
    const QImage decoded = testvideo::decodeFirstPicture(QDir(album->folder()).filePath(files[0]));
    EXPECT_EQ(decoded.size(), image->pixelSize());
    EXPECT_EQ(screen->shareImageView()->image(), image);
    EXPECT_TRUE(screen->messageLabel()->isHidden());

    ShareSheet::visibleSheet(&window)->cancel();
    QTest::mouseClick(screen->shareButton(), Qt::LeftButton);
    EXPECT_EQ(ShareSheet::presentationCount(), 2);
    EXPECT_EQ(albumFiles().size(), 1); // sharing again writes nothing more
}

TEST_F(ShareScreen, PngWritesTheDecodedFileAndSharesTheFileATurnLater) {
    QImage pixels(50, 70, QImage::Format_ARGB32);
    pixels.fill(QColor(200, 20, 20, 255));
    const QString png = writeFile(QStringLiteral("default.png"), pixels, "PNG");
    RateShareController* screen = open(SavingtypeMethod::PNG, png, image);
    EXPECT_EQ(ShareSheet::presentationCount(), 0);
    ASSERT_TRUE(testsupport::waitUntil([] { return ShareSheet::presentationCount() == 1; }));
    EXPECT_EQ(ShareSheet::lastPresentedItem().filePath, png);

    const QStringList files = albumFiles();
    ASSERT_EQ(files.size(), 1);
    const QImage decoded = testvideo::decodeFirstPicture(QDir(album->folder()).filePath(files[0]));
    EXPECT_EQ(decoded.size(), QSize(50, 70)); // the file's picture, not shareImage
    EXPECT_GT(decoded.pixelColor(25, 35).red(), 180);
    EXPECT_EQ(screen->shareImageView()->image(), image);
}

TEST_F(ShareScreen, PdfAndSvgAreStoredNowhereButShared) {
    for (const auto& [type, name] : {std::pair{SavingtypeMethod::PDFStandard, "UntitledPdf.pdf"},
                                     {SavingtypeMethod::PDFPrint, "CropMarks.pdf"},
                                     {SavingtypeMethod::SVG, "UntitledSVG.svg"}}) {
        const QString path = temp.filePath(QString::fromLatin1(name));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("content");
        file.close();
        const int before = ShareSheet::presentationCount();
        RateShareController* screen = open(type, path, image);
        EXPECT_TRUE(testsupport::waitUntil([&] { return ShareSheet::presentationCount() == before + 1; }));
        EXPECT_FALSE(screen->albumResult().has_value());
        EXPECT_EQ(screen->shareImageView()->image(), image);
        editor->dismiss(false);
    }
    EXPECT_TRUE(albumFiles().isEmpty());
}

TEST_F(ShareScreen, TiffShowsTheDecodedFileNotTheGivenPicture) {
    QImage pixels(33, 21, QImage::Format_RGB32);
    pixels.fill(Qt::blue);
    const QString tiff = writeFile(QStringLiteral("made.tiff"), pixels, "TIFF");
    RateShareController* screen = open(SavingtypeMethod::TIFF, tiff, image);
    ASSERT_TRUE(screen->shareImageView()->image());
    EXPECT_NE(screen->shareImageView()->image(), image);
    EXPECT_EQ(screen->shareImageView()->image()->pixelSize(), QSize(33, 21));
    EXPECT_TRUE(albumFiles().isEmpty()); // the TIFF sheet writes its own album entry
}

TEST_F(ShareScreen, WhatWouldStopAPhoneIsAMessageHere) {
    RateShareController* noFile = open(SavingtypeMethod::PNG, std::nullopt, image);
    EXPECT_FALSE(noFile->messageLabel()->isHidden());
    EXPECT_FALSE(noFile->messageLabel()->text().isEmpty());
    editor->dismiss(false);

    RateShareController* noPicture = open(SavingtypeMethod::JPG, std::nullopt, nullptr);
    EXPECT_FALSE(noPicture->messageLabel()->isHidden());
    editor->dismiss(false);

    RateShareController* unreadable =
        open(SavingtypeMethod::TIFF, temp.filePath(QStringLiteral("gone.tiff")), image);
    EXPECT_TRUE(unreadable->messageLabel()->text().startsWith(QStringLiteral("Couldn't read gone.tiff")));
    QTest::mouseClick(unreadable->shareButton(), Qt::LeftButton); // nothing to share, nothing breaks
    testsupport::spin(50);
    EXPECT_EQ(ShareSheet::presentationCount(), 0);
    EXPECT_TRUE(albumFiles().isEmpty());
}

TEST_F(ShareScreen, AnAlbumThatCannotBeWrittenIsReportedAndSharingGoesOn) {
    const QString blocker = temp.filePath(QStringLiteral("blocker"));
    QFile(blocker).open(QIODevice::WriteOnly);
    album->setFolder(blocker + QStringLiteral("/album"));
    RateShareController* screen = open(SavingtypeMethod::JPG, std::nullopt, image);
    ASSERT_TRUE(screen->albumResult().has_value());
    EXPECT_FALSE(screen->albumResult()->ok);
    EXPECT_TRUE(screen->messageLabel()->text().startsWith(QStringLiteral("Couldn't save to the album: ")));
    EXPECT_FALSE(screen->messageLabel()->isHidden());
    EXPECT_EQ(ShareSheet::presentationCount(), 1);
}

TEST_F(ShareScreen, Mp4GoesToTheAlbumPlaysAndPausesWhenLeft) {
    const QString clip = temp.filePath(QStringLiteral("Convert.mp4"));
    ASSERT_TRUE(
        testvideo::writeMp4(clip, testvideo::Options{}, [](int i) { return testvideo::numberedFrame(i); }));
    RateShareController* screen = open(SavingtypeMethod::MP4Video, clip, image);
    ASSERT_NE(screen->playerView(), nullptr);
    EXPECT_TRUE(screen->shareImageView()->isHidden());
    EXPECT_EQ(screen->playerView()->source(), clip);
    const QStringList files = albumFiles();
    ASSERT_EQ(files.size(), 1);
    EXPECT_TRUE(files[0].endsWith(QStringLiteral(".mp4")));
    EXPECT_EQ(
        testvideo::frameNumberOf(testvideo::decodeFirstPicture(QDir(album->folder()).filePath(files[0]))), 0);
    EXPECT_TRUE(testsupport::waitUntil([] { return ShareSheet::presentationCount() == 1; }));

    // Whether or not this machine can play it, leaving must leave it paused.
    testsupport::waitUntil([&] { return screen->playerView()->isPlaying(); }, 1000);
    VideoPlayerView* player = screen->playerView();
    screen->hide();
    EXPECT_FALSE(player->isPlaying());
}

} // namespace
