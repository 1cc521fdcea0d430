#include "platform/PhotoLibrary.h"
#include "TestMediaFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

ImagePtr makePicture(int width, int height, ImageOrientation orientation = ImageOrientation::up) {
    QImage bitmap(width, height, QImage::Format_RGB32);
    bitmap.fill(QColor(200, 40, 40));
    // A blue left half tells which way the picture was written.
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width / 2; ++x)
            bitmap.setPixelColor(x, y, QColor(30, 40, 220));
    return Image::make(bitmap, 1.0, orientation);
}

TEST(PhotoLibrary, WritesNeverReplaceEachOtherAndKeepUprightPixels) {
    QTemporaryDir temp;
    PhotoLibrary library(temp.filePath(QStringLiteral("album/nested")));
    // Orientation right: stored 40×20 is seen 20×40, and the album must hold what is seen.
    const ImagePtr picture = makePicture(40, 20, ImageOrientation::right);
    QStringList paths;
    for (int i = 0; i < 3; ++i) {
        const PhotoLibraryResult result = library.writeImage(*picture);
        ASSERT_TRUE(result.ok) << result.error.toStdString();
        paths << result.path;
    }
    paths.removeDuplicates();
    EXPECT_EQ(paths.size(), 3);
    EXPECT_EQ(QDir(library.folder()).entryList(QDir::Files).size(), 3);
    for (const QString& path : paths) {
        EXPECT_TRUE(QFileInfo(path).fileName().startsWith(QStringLiteral("Lumivex ")));
        const QImage decoded = testvideo::decodeFirstPicture(path);
        ASSERT_FALSE(decoded.isNull());
        EXPECT_EQ(decoded.size(), QSize(20, 40));
        // Turned a quarter clockwise, the blue left half becomes the top half.
        EXPECT_GT(decoded.pixelColor(10, 5).blue(), 150);
        EXPECT_LT(decoded.pixelColor(10, 5).red(), 100);
        EXPECT_GT(decoded.pixelColor(10, 35).red(), 150);
    }
}

TEST(PhotoLibrary, UniqueNamesCountUpFromTwo) {
    QTemporaryDir temp;
    PhotoLibrary library(temp.path());
    const QDateTime when(QDate(2026, 11, 21), QTime(15, 4, 5));
    const QString first = library.uniquePath(when, QStringLiteral("jpg"));
    EXPECT_EQ(QFileInfo(first).fileName(), QStringLiteral("Lumivex 2026-11-21 15-04-05.jpg"));
    QFile(first).open(QIODevice::WriteOnly);
    const QString second = library.uniquePath(when, QStringLiteral("jpg"));
    EXPECT_EQ(QFileInfo(second).fileName(), QStringLiteral("Lumivex 2026-11-21 15-04-05 2.jpg"));
    QFile(second).open(QIODevice::WriteOnly);
    EXPECT_EQ(QFileInfo(library.uniquePath(when, QStringLiteral("jpg"))).fileName(),
              QStringLiteral("Lumivex 2026-11-21 15-04-05 3.jpg"));
    // Another extension is another name.
    EXPECT_EQ(QFileInfo(library.uniquePath(when, QStringLiteral("mp4"))).fileName(),
              QStringLiteral("Lumivex 2026-11-21 15-04-05.mp4"));
}

TEST(PhotoLibrary, CopiesFilesInByteForByteUnderNewNames) {
    QTemporaryDir temp;
    const QString source = temp.filePath(QStringLiteral("clip.MP4"));
    {
        QFile file(source);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("not really a video, but bytes to copy"));
    }
    PhotoLibrary library(temp.filePath(QStringLiteral("album")));
    const PhotoLibraryResult first = library.writeVideo(source);
    const PhotoLibraryResult second = library.addFile(source);
    ASSERT_TRUE(first.ok && second.ok);
    EXPECT_NE(first.path, second.path);
    EXPECT_TRUE(first.path.endsWith(QStringLiteral(".mp4")));
    QFile copy(second.path);
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), QByteArray("not really a video, but bytes to copy"));

    const PhotoLibraryResult missing = library.addFile(temp.filePath(QStringLiteral("gone.mp4")));
    EXPECT_FALSE(missing.ok);
    EXPECT_FALSE(missing.error.isEmpty());
}

TEST(PhotoLibrary, AnAlbumThatCannotBeMadeOrWrittenGivesAReason) {
    QTemporaryDir temp;
    // A file where the folder should be: nothing can be made inside it.
    const QString blocker = temp.filePath(QStringLiteral("blocker"));
    QFile(blocker).open(QIODevice::WriteOnly);
    const ImagePtr picture = makePicture(8, 8);

    PhotoLibrary underAFile(blocker + QStringLiteral("/album"));
    const PhotoLibraryResult nested = underAFile.writeImage(*picture);
    EXPECT_FALSE(nested.ok);
    EXPECT_TRUE(nested.error.contains(QStringLiteral("could not be created"))) << nested.error.toStdString();

    PhotoLibrary isAFile(blocker);
    const PhotoLibraryResult direct = isAFile.writeImage(*picture);
    EXPECT_FALSE(direct.ok);
    EXPECT_TRUE(direct.error.contains(QStringLiteral("not a folder")));

    // A read-only folder (root ignores permissions, so only check when they hold).
    const QString locked = temp.filePath(QStringLiteral("locked"));
    QDir().mkpath(locked);
    QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    if (!QFileInfo(locked).isWritable()) {
        PhotoLibrary readOnly(locked);
        const PhotoLibraryResult result = readOnly.writeImage(*picture);
        EXPECT_FALSE(result.ok);
        EXPECT_FALSE(result.error.isEmpty());
    }
    QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

TEST(PhotoLibrary, EnvironmentChoosesTheDefaultFolder) {
    const QByteArray saved = qgetenv("LUMIVEX_PHOTO_LIBRARY");
    qputenv("LUMIVEX_PHOTO_LIBRARY", "/tmp/some album");
    EXPECT_EQ(PhotoLibrary::defaultFolder(), QStringLiteral("/tmp/some album"));
    qunsetenv("LUMIVEX_PHOTO_LIBRARY");
    EXPECT_TRUE(PhotoLibrary::defaultFolder().endsWith(QStringLiteral("/Lumivex")));
    if (!saved.isEmpty())
        qputenv("LUMIVEX_PHOTO_LIBRARY", saved);
}

} // namespace
