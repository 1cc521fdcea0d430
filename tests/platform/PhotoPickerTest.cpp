#include "platform/PhotoPicker.h"
#include "platform/AppWindow.h"
#include "platform/Dispatch.h"
#include "support/TestSupport.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <gtest/gtest.h>

namespace {

QString writePicture(const QDir& dir, const QString& name, QSize size, const char* format = nullptr) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor::fromHsv((size.width() * 7) % 360, 180, 200));
    const QString path = dir.filePath(name);
    EXPECT_TRUE(image.save(path, format));
    return path;
}

QString writeBytes(const QDir& dir, const QString& name, const QByteArray& bytes) {
    const QString path = dir.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return path;
}

struct Loaded {
    ImagePtr image;
    QString error;
    bool onMainThread = true;
    bool done = false;
};

Loaded load(const QString& path) {
    auto result = std::make_shared<Loaded>();
    ItemProvider(path).loadImage([result](ImagePtr image, QString error) {
        result->image = std::move(image);
        result->error = std::move(error);
        result->onMainThread = QThread::currentThread() == qApp->thread();
        result->done = true;
    });
    EXPECT_TRUE(testsupport::waitUntil([&] { return result->done; }));
    return *result;
}

TEST(ItemProvider, ClaimsPicturesByNameOrHeaderAndLoadsOffTheMainThread) {
    QTemporaryDir tmp;
    const QDir dir(tmp.path());
    const QString jpeg = writePicture(dir, QStringLiteral("photo.jpg"), QSize(64, 48));
    const QString noSuffix = writePicture(dir, QStringLiteral("scan"), QSize(10, 20), "PNG");
    const QString text = writeBytes(dir, QStringLiteral("notes.txt"), "not a picture at all");
    const QString empty = writeBytes(dir, QStringLiteral("empty.jpg"), {});

    EXPECT_TRUE(ItemProvider(jpeg).canLoadImage());
    EXPECT_TRUE(ItemProvider(noSuffix).canLoadImage());
    EXPECT_FALSE(ItemProvider(text).canLoadImage());
    EXPECT_FALSE(ItemProvider(dir.filePath(QStringLiteral("missing.jpg"))).canLoadImage());
    EXPECT_FALSE(ItemProvider(dir.path()).canLoadImage());
    // The name promises a picture; only decoding finds out it is not one.
    EXPECT_TRUE(ItemProvider(empty).canLoadImage());

    const Loaded good = load(jpeg);
    ASSERT_TRUE(good.image);
    EXPECT_EQ(good.image->pixelSize(), QSize(64, 48));
    EXPECT_EQ(good.image->scale(), 1.0);
    EXPECT_TRUE(good.error.isEmpty());
    EXPECT_FALSE(good.onMainThread);

    const Loaded bad = load(empty);
    EXPECT_FALSE(bad.image);
    EXPECT_FALSE(bad.error.isEmpty());
    EXPECT_FALSE(bad.onMainThread);
}

class PickerTest : public ::testing::Test {
protected:
    void SetUp() override {
        album = QDir(albumDir.path());
        qputenv("LUMIVEX_PHOTO_LIBRARY", albumDir.path().toLocal8Bit());
    }
    void TearDown() override {
        qunsetenv("LUMIVEX_PHOTO_LIBRARY");
        PhotoPicker::setTestSource({});
    }

    // A window with a root screen and the real sheet presented over it.
    PhotoPicker* presentSheet(int limit) {
        window.setRootViewController(root = new ViewController);
        window.makeKeyAndVisible();
        PickerConfiguration configuration;
        configuration.selectionLimit = limit;
        PhotoPicker::present(root, configuration, [this](std::vector<PickerResult> r) {
            // The sheet is gone by the time the results arrive.
            sheetGoneAtDelivery = root->presentedViewController() == nullptr;
            results = std::move(r);
        });
        return qobject_cast<PhotoPicker*>(root->presentedViewController());
    }

    QStringList resultPaths() const {
        QStringList paths;
        for (const PickerResult& r : results.value())
            paths << r.itemProvider->filePath();
        return paths;
    }

    QTemporaryDir albumDir;
    QDir album;
    AppWindow window;
    ViewController* root = nullptr;
    std::optional<std::vector<PickerResult>> results;
    bool sheetGoneAtDelivery = false;
};

TEST_F(PickerTest, TestSourceAnswersLaterInOrderCutToTheLimit) {
    PhotoPicker::setTestSource([](const PickerConfiguration&) {
        return QStringList{QStringLiteral("/d/c.jpg"), QStringLiteral("/d/a.jpg"), QStringLiteral("/d/b.jpg"),
                           QStringLiteral("/d/e.jpg")};
    });
    PickerConfiguration configuration;
    configuration.selectionLimit = 3;
    PhotoPicker::present(nullptr, configuration,
                         [this](std::vector<PickerResult> r) { results = std::move(r); });
    EXPECT_FALSE(results.has_value());
    ASSERT_TRUE(testsupport::waitUntil([this] { return results.has_value(); }));
    EXPECT_EQ(resultPaths(), QStringList({"/d/c.jpg", "/d/a.jpg", "/d/b.jpg"}));
    ASSERT_TRUE(PhotoPicker::lastConfiguration().has_value());
    EXPECT_EQ(PhotoPicker::lastConfiguration()->selectionLimit, 3);

    // No limit takes everything; a cancel gives nothing.
    results.reset();
    PhotoPicker::present(nullptr, {}, [this](std::vector<PickerResult> r) { results = std::move(r); });
    ASSERT_TRUE(testsupport::waitUntil([this] { return results.has_value(); }));
    EXPECT_EQ(results->size(), 4u);
    PhotoPicker::setTestSource([](const PickerConfiguration&) { return std::nullopt; });
    results.reset();
    PhotoPicker::present(nullptr, configuration,
                         [this](std::vector<PickerResult> r) { results = std::move(r); });
    ASSERT_TRUE(testsupport::waitUntil([this] { return results.has_value(); }));
    EXPECT_TRUE(results->empty());
}

TEST_F(PickerTest, SheetKeepsTapOrderRefusesPastTheLimitAndDeliversAfterDismissal) {
    QStringList files;
    for (int i = 0; i < 5; ++i)
        files << writePicture(album, QStringLiteral("p%1.png").arg(i), QSize(40 + i * 30, 60));
    writeBytes(album, QStringLiteral("readme.txt"), "text files are not shown");

    PhotoPicker* picker = presentSheet(3);
    ASSERT_NE(picker, nullptr);
    for (const QString& f : files)
        ASSERT_NE(picker->cellForFile(f), nullptr) << f.toStdString();
    EXPECT_EQ(picker->shownFiles().filter(QStringLiteral(".txt")).size(), 0);
    // Thumbnails are made off the main thread: placeholders first.
    EXPECT_FALSE(picker->isThumbnailReady(files[0]));
    EXPECT_TRUE(testsupport::waitUntil([&] {
        return std::all_of(files.begin(), files.end(),
                           [&](const QString& f) { return picker->isThumbnailReady(f); });
    }));
    EXPECT_FALSE(picker->addButton()->isEnabled());

    for (int i : {3, 0, 4})
        QTest::mouseClick(picker->cellForFile(files[i]), Qt::LeftButton);
    EXPECT_EQ(picker->selectedFiles(), QStringList({files[3], files[0], files[4]}));
    EXPECT_FALSE(picker->hintLabel()->isVisible());

    // The fourth is refused with a hint.
    QTest::mouseClick(picker->cellForFile(files[1]), Qt::LeftButton);
    EXPECT_EQ(picker->selectedFiles(), QStringList({files[3], files[0], files[4]}));
    EXPECT_TRUE(picker->hintLabel()->isVisible());
    EXPECT_TRUE(picker->hintLabel()->text().contains(QStringLiteral("3 photos")));

    // Taking one out makes room, and the new one goes to the end.
    QTest::mouseClick(picker->cellForFile(files[0]), Qt::LeftButton);
    QTest::mouseClick(picker->cellForFile(files[1]), Qt::LeftButton);
    EXPECT_EQ(picker->selectedFiles(), QStringList({files[3], files[4], files[1]}));

    QTest::mouseClick(picker->addButton(), Qt::LeftButton);
    ASSERT_TRUE(testsupport::waitUntil([this] { return results.has_value(); }));
    EXPECT_TRUE(sheetGoneAtDelivery);
    EXPECT_EQ(resultPaths(), QStringList({files[3], files[4], files[1]}));
}

TEST_F(PickerTest, KeysCancelAndConfirm) {
    const QString a = writePicture(album, QStringLiteral("a.jpg"), QSize(30, 30));
    const QString b = writePicture(album, QStringLiteral("b.jpg"), QSize(30, 30));
    {
        PhotoPicker* picker = presentSheet(0);
        ASSERT_NE(picker, nullptr);
        // Nothing picked: Return has nothing to confirm.
        QTest::keyClick(picker, Qt::Key_Return);
        testsupport::spin(30);
        EXPECT_FALSE(results.has_value());
        picker->toggleSelection(a);
        QTest::keyClick(picker, Qt::Key_Escape);
        ASSERT_TRUE(testsupport::waitUntil([this] { return results.has_value(); }));
        EXPECT_TRUE(results->empty());
        EXPECT_TRUE(sheetGoneAtDelivery);
    }
    results.reset();
    PhotoPicker* picker = presentSheet(0);
    ASSERT_NE(picker, nullptr);
    picker->toggleSelection(b);
    picker->toggleSelection(a);
    QTest::keyClick(picker, Qt::Key_Return);
    ASSERT_TRUE(testsupport::waitUntil([this] { return results.has_value(); }));
    EXPECT_EQ(resultPaths(), QStringList({b, a}));
}

TEST_F(PickerTest, BrowsedFilesComeFirstAndFillOnlyTheRoomLeft) {
    const QString inAlbum = writePicture(album, QStringLiteral("album.png"), QSize(30, 30));
    QTemporaryDir elsewhere;
    const QDir other(elsewhere.path());
    const QString x = writePicture(other, QStringLiteral("x.png"), QSize(20, 20));
    const QString y = writePicture(other, QStringLiteral("y.png"), QSize(20, 20));
    const QString z = writePicture(other, QStringLiteral("z.png"), QSize(20, 20));

    PhotoPicker* picker = presentSheet(3);
    ASSERT_NE(picker, nullptr);
    picker->toggleSelection(inAlbum);
    picker->addBrowsedFiles({y, x, z, y});
    EXPECT_EQ(picker->shownFiles().mid(0, 3), QStringList({y, x, z}));
    EXPECT_EQ(picker->shownFiles().count(y), 1);
    EXPECT_EQ(picker->selectedFiles(), QStringList({inAlbum, y, x}));
    EXPECT_TRUE(picker->hintLabel()->isVisible());
}

TEST_F(PickerTest, WithRoomForOneATapIsTheChoice) {
    const QString a = writePicture(album, QStringLiteral("a.jpg"), QSize(30, 30));
    writePicture(album, QStringLiteral("b.jpg"), QSize(30, 30));
    PhotoPicker* picker = presentSheet(1);
    ASSERT_NE(picker, nullptr);
    EXPECT_EQ(picker->addButton()->text(), QStringLiteral("Done"));
    QStringList titles;
    for (QLabel* label : picker->findChildren<QLabel*>())
        titles << label->text();
    EXPECT_TRUE(titles.contains(QStringLiteral("Choose a photo"))) << qPrintable(titles.join(" | "));
    QTest::mouseClick(picker->cellForFile(a), Qt::LeftButton);
    ASSERT_TRUE(testsupport::waitUntil([this] { return results.has_value(); }));
    EXPECT_EQ(resultPaths(), QStringList({a}));
}

// Drawings are not offered as photos; pictures of every other kind are.
// Newest first, as a photo library shows them; photos of the same moment by name.
TEST_F(PickerTest, ShowsTheNewestPhotosFirst) {
    const QDateTime now = QDateTime::currentDateTime();
    const struct {
        const char* name;
        int ageSeconds;
    } photos[] = {{"old.png", 3000}, {"b-new.png", 10}, {"middle.png", 600}, {"a-new.png", 10}};
    for (const auto& photo : photos) {
        QFile file(writePicture(album, QString::fromLatin1(photo.name), QSize(8, 8)));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(now.addSecs(-photo.ageSeconds), QFileDevice::FileModificationTime));
    }
    PhotoPicker* picker = presentSheet(3);
    ASSERT_NE(picker, nullptr);
    QStringList order;
    for (const QString& path : picker->shownFiles())
        if (QFileInfo(path).absolutePath() == QFileInfo(album.path()).absoluteFilePath())
            order << QFileInfo(path).fileName();
    EXPECT_EQ(order, QStringList({"a-new.png", "b-new.png", "middle.png", "old.png"}));
}

TEST_F(PickerTest, OffersPhotosButNotDrawings) {
    const QString photo = writePicture(album, QStringLiteral("photo.png"), QSize(20, 20));
    QFile drawing(album.filePath(QStringLiteral("logo.svg")));
    ASSERT_TRUE(drawing.open(QIODevice::WriteOnly));
    drawing.write("<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'/>");
    drawing.close();
    PhotoPicker* picker = presentSheet(3);
    ASSERT_NE(picker, nullptr);
    EXPECT_TRUE(picker->shownFiles().contains(photo));
    EXPECT_FALSE(picker->shownFiles().contains(drawing.fileName()));
}

} // namespace
