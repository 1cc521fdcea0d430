#include "shell/BaseViewController.h"
#include "platform/Alert.h"
#include "platform/AppWindow.h"
#include "platform/TestMediaFiles.h"
#include "platform/Video.h"
#include "support/TestSupport.h"

#include <QCameraDevice>
#include <QDir>
#include <QFile>
#include <QMediaDevices>
#include <QTemporaryDir>
#include <chrono>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

struct Calls {
    QStringList log;
    std::vector<MediaItem> items;
    ImagePtr image;
    std::optional<PickerConfiguration> picker;
};

// Listens on every delegate and writes down what it hears, into a record that outlives it.
class RecordingDelegate : public QObject,
                          public ImageVideoMediaPickerDelegate,
                          public PhotosMediaPickerDelegate,
                          public FileMediaPickerDelegate,
                          public ImagePlayGroundPostProcessingDelegate {
public:
    explicit RecordingDelegate(std::shared_ptr<Calls> calls) : calls_(std::move(calls)) {}

    void pickedVideo(const QString& url) override { calls_->log << QStringLiteral("video ") + url; }
    void pickedImage(const ImagePtr& image) override {
        calls_->log << QStringLiteral("image");
        calls_->image = image;
    }
    void pickCancelled() override { calls_->log << QStringLiteral("cancelled"); }
    void pickedMedia(const std::vector<MediaItem>& items, const PickerConfiguration& picker) override {
        calls_->log << QStringLiteral("media");
        calls_->items = items;
        calls_->picker = picker;
    }
    void pickedMediaCancelled() override { calls_->log << QStringLiteral("media cancelled"); }
    void pickedFiles(const std::vector<MediaItem>& items) override {
        calls_->log << QStringLiteral("files");
        calls_->items = items;
    }
    void playgroundImageReady(const ImagePtr& image) override {
        calls_->log << QStringLiteral("playground");
        calls_->image = image;
    }

private:
    std::shared_ptr<Calls> calls_;
};

// An editor as the real ones use the base: it opens the pickers itself.
class StandInEditor : public BaseViewController {
public:
    using BaseViewController::openCamera;
    using BaseViewController::openLibrary;
    using BaseViewController::openPhotoPicker;
};

// A named pipe in place of a file: a reader waits in its open until release() writes the bytes, which
// holds that one load for as long as the test wants.
class HeldFile {
public:
    explicit HeldFile(QString path) : path_(std::move(path)) {
        EXPECT_EQ(::mkfifo(QFile::encodeName(path_).constData(), 0600), 0);
    }
    ~HeldFile() {
        if (writer_.joinable())
            writer_.join();
    }
    void release(QByteArray bytes) {
        writer_ = std::thread([path = QFile::encodeName(path_), bytes = std::move(bytes)]() {
            // Without a reader a blocking open would wait forever; give up after a few seconds instead.
            int fd = -1;
            for (int i = 0; i < 500 && fd < 0; ++i) {
                fd = ::open(path.constData(), O_WRONLY | O_NONBLOCK);
                if (fd < 0)
                    std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
            if (fd < 0)
                return;
            ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
            for (qsizetype done = 0; done < bytes.size();) {
                const ssize_t n = ::write(fd, bytes.constData() + done, bytes.size() - done);
                if (n <= 0)
                    break;
                done += n;
            }
            ::close(fd);
        });
    }

private:
    QString path_;
    std::thread writer_;
};

class BaseViewControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        savedTmpDir_ = qgetenv("TMPDIR");
        qputenv("TMPDIR", QFile::encodeName(temp.path()));
        ASSERT_EQ(QDir::tempPath(), QDir(temp.path()).absolutePath());
        editor = new StandInEditor;
        window.setRootViewController(editor);
        window.makeKeyAndVisible();
        delegate = std::make_unique<RecordingDelegate>(calls);
        editor->photoMediaPickerDelegate = delegate.get();
        editor->fileMediaPickerDelegate = delegate.get();
        editor->playgroundProcessDelegate = delegate.get();
        editor->imageVideoPickerDelegate = delegate.get();
    }
    void TearDown() override {
        PhotoPicker::setTestSource({});
        if (savedTmpDir_.isNull())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", savedTmpDir_);
    }

    void pickerAnswers(std::optional<QStringList> files) {
        PhotoPicker::setTestSource([files](const PickerConfiguration&) { return files; });
    }
    // A movie whose every frame is numbered `number`.
    QString movie(const QString& name, int number, const QString& folder = {}) {
        QDir(sources.path()).mkpath(folder.isEmpty() ? QStringLiteral(".") : folder);
        const QString path =
            QDir(sources.path()).filePath(folder.isEmpty() ? name : folder + QLatin1Char('/') + name);
        testvideo::Options options;
        options.frames = 3;
        EXPECT_TRUE(
            testvideo::writeMp4(path, options, [number](int) { return testvideo::numberedFrame(number); }));
        return path;
    }
    QByteArray movieBytes(int number) {
        QFile file(movie(QStringLiteral("bytes-%1.mp4").arg(number), number, QStringLiteral("bytes")));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    QString photo(const QString& name, QSize size = {40, 30}) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        const QString path = QDir(sources.path()).filePath(name);
        EXPECT_TRUE(image.save(path));
        return path;
    }
    QString textFile(const QString& name) {
        const QString path = QDir(sources.path()).filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("no picture here");
        return path;
    }
    QString inTemp(const QString& name) const { return QDir(temp.path()).filePath(name); }
    static int frameNumber(const QString& path) {
        const std::optional<QImage> frame = Video::frameAt(path, 0);
        return frame ? testvideo::frameNumberOf(*frame) : -1;
    }
    bool waitFor(const QString& entry) {
        return testsupport::waitUntil([&] { return calls->log.contains(entry); }, 10000);
    }

    QTemporaryDir sources;
    QTemporaryDir temp;
    AppWindow window;
    StandInEditor* editor = nullptr;
    std::shared_ptr<Calls> calls = std::make_shared<Calls>();
    std::unique_ptr<RecordingDelegate> delegate;

private:
    QByteArray savedTmpDir_;
};

TEST_F(BaseViewControllerTest, PickedMediaComeInTheOrderTheirLoadsFinish) {
    const QString held = QDir(sources.path()).filePath(QStringLiteral("held.mp4"));
    HeldFile pipe(held);
    const QString quick = movie(QStringLiteral("quick.mp4"), 3);
    const QString picture = photo(QStringLiteral("photo.png"), {40, 30});
    const QString other = textFile(QStringLiteral("notes.txt"));
    pickerAnswers(QStringList{held, quick, other, picture});
    editor->openPhotoPicker(4);

    // The first movie picked finishes last: its source gives no bytes before the second is copied.
    ASSERT_TRUE(testsupport::waitUntil([&] { return QFile::exists(inTemp(QStringLiteral("quick.mp4"))); }));
    testsupport::spin(50);
    EXPECT_FALSE(calls->log.contains(QStringLiteral("media")));
    pipe.release(movieBytes(8));
    ASSERT_TRUE(waitFor(QStringLiteral("media")));

    ASSERT_EQ(calls->picker->selectionLimit, 4);
    EXPECT_TRUE(calls->picker->imagesOnly);
    // The text file takes no place; the photo may land before or after the quick movie.
    ASSERT_EQ(calls->items.size(), 3u);
    QStringList urls;
    for (const MediaItem& item : calls->items)
        urls << item.url.value_or(QString());
    EXPECT_LT(urls.indexOf(inTemp(QStringLiteral("quick.mp4"))),
              urls.indexOf(inTemp(QStringLiteral("held.mp4"))));
    EXPECT_EQ(urls.back(), inTemp(QStringLiteral("held.mp4")));
    for (const MediaItem& item : calls->items) {
        if (item.url == picture) {
            EXPECT_EQ(item.type, MediaType::image);
            ASSERT_TRUE(item.thumbnail);
            EXPECT_EQ(item.thumbnail->bitmap().size(), QSize(40, 30));
        } else {
            EXPECT_EQ(item.type, MediaType::video);
            EXPECT_FALSE(item.thumbnail);
        }
    }
    // The copies are whole movies, not names.
    EXPECT_EQ(frameNumber(inTemp(QStringLiteral("held.mp4"))), 8);
    EXPECT_EQ(frameNumber(inTemp(QStringLiteral("quick.mp4"))), 3);
    EXPECT_EQ(calls->log, QStringList{QStringLiteral("media")});
}

TEST_F(BaseViewControllerTest, MoviesOfOneNameShareTheFileOfTheLastCopy) {
    // What an earlier pick left behind is replaced, not kept.
    QFile stale(inTemp(QStringLiteral("clip.mp4")));
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.write("left over");
    stale.close();

    QDir(sources.path()).mkpath(QStringLiteral("first"));
    const QString first = QDir(sources.path()).filePath(QStringLiteral("first/clip.mp4"));
    HeldFile pipe(first);
    const QString second = movie(QStringLiteral("clip.mp4"), 5, QStringLiteral("second"));
    pickerAnswers(QStringList{first, second});
    editor->openPhotoPicker(2);
    ASSERT_TRUE(testsupport::waitUntil([&] { return frameNumber(inTemp(QStringLiteral("clip.mp4"))) == 5; }));
    pipe.release(movieBytes(2));
    ASSERT_TRUE(waitFor(QStringLiteral("media")));

    ASSERT_EQ(calls->items.size(), 2u);
    EXPECT_EQ(calls->items[0].url, inTemp(QStringLiteral("clip.mp4")));
    EXPECT_EQ(calls->items[1].url, inTemp(QStringLiteral("clip.mp4")));
    // The second picked movie's item now refers to the first one's pictures.
    EXPECT_EQ(frameNumber(inTemp(QStringLiteral("clip.mp4"))), 2);
    EXPECT_EQ(QDir(temp.path()).entryList(QDir::Files), QStringList{QStringLiteral("clip.mp4")});
}

TEST_F(BaseViewControllerTest, FailedMovieLoadsPrintTheirLineAndLeaveTheListShort) {
    const QString vanished = QDir(sources.path()).filePath(QStringLiteral("vanished.mp4"));
    const QString blocked = movie(QStringLiteral("blocked.mp4"), 1);
    // A folder of the same name, with something in it, cannot be replaced by the copy.
    ASSERT_TRUE(QDir(temp.path()).mkpath(QStringLiteral("blocked.mp4/inside")));
    const QString picture = photo(QStringLiteral("photo.jpg"));
    pickerAnswers(QStringList{vanished, blocked, picture});

    testing::internal::CaptureStdout();
    editor->openPhotoPicker(3);
    const bool answered = waitFor(QStringLiteral("media"));
    const QString printed = QString::fromStdString(testing::internal::GetCapturedStdout());
    ASSERT_TRUE(answered);

    ASSERT_EQ(calls->items.size(), 1u);
    EXPECT_EQ(calls->items[0].url, picture);
    QStringList lines = printed.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2) << printed.toStdString();
    lines.sort();
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("Error loading video: The file “vanished.mp4”")))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("Failed to copy video: "))) << lines[1].toStdString();
    EXPECT_GT(lines[1].size(), QStringLiteral("Failed to copy video: ").size());

    // Nothing picked is a cancellation, not an empty list.
    calls->log.clear();
    pickerAnswers(std::nullopt);
    editor->openPhotoPicker(3);
    ASSERT_TRUE(waitFor(QStringLiteral("media cancelled")));
    testsupport::spin(20);
    EXPECT_EQ(calls->log, QStringList{QStringLiteral("media cancelled")});
}

TEST_F(BaseViewControllerTest, ClassicPickerGivesOnlyTheKindAskedFor) {
    const QString video = movie(QStringLiteral("walk.mp4"), 4);
    const QString picture = photo(QStringLiteral("face.png"), {24, 36});

    pickerAnswers(QStringList{video});
    editor->openLibrary(true);
    ASSERT_TRUE(waitFor(QStringLiteral("cancelled")));
    EXPECT_EQ(PhotoPicker::lastConfiguration()->selectionLimit, 1);
    EXPECT_TRUE(PhotoPicker::lastConfiguration()->imagesOnly);
    EXPECT_EQ(calls->log, QStringList{QStringLiteral("cancelled")});

    calls->log.clear();
    editor->openLibrary(false);
    ASSERT_TRUE(waitFor(QStringLiteral("video ") + video));
    EXPECT_FALSE(PhotoPicker::lastConfiguration()->imagesOnly);

    calls->log.clear();
    pickerAnswers(QStringList{picture});
    editor->openLibrary(false);
    ASSERT_TRUE(waitFor(QStringLiteral("cancelled")));
    calls->log.clear();
    editor->openLibrary(true);
    ASSERT_TRUE(waitFor(QStringLiteral("image")));
    EXPECT_EQ(calls->image->bitmap().size(), QSize(24, 36));

    // One answer may carry both: the video is told first.
    calls->log.clear();
    editor->imagePickerDidFinishPicking({video, calls->image});
    EXPECT_EQ(calls->log, (QStringList{QStringLiteral("video ") + video, QStringLiteral("image")}));

    // Without a camera the camera opens nothing.
    if (QMediaDevices::videoInputs().isEmpty()) {
        editor->openCamera();
        EXPECT_EQ(editor->presentedViewController(), nullptr);
    }
}

TEST_F(BaseViewControllerTest, DocumentPickerDecodesPicturesAndCopiesMovies) {
    const QString picture = photo(QStringLiteral("scan.png"), {10, 20});
    const QString video = movie(QStringLiteral("doc.mov"), 6);
    editor->documentPickerDidPickDocuments({textFile(QStringLiteral("readme.txt")), video, picture,
                                            sources.filePath(QStringLiteral("gone.png"))});
    ASSERT_TRUE(waitFor(QStringLiteral("files")));
    ASSERT_EQ(calls->items.size(), 2u);
    for (const MediaItem& item : calls->items) {
        if (item.type == MediaType::image) {
            EXPECT_EQ(item.url, picture);
            ASSERT_TRUE(item.thumbnail);
            EXPECT_EQ(item.thumbnail->bitmap().size(), QSize(10, 20));
        } else {
            EXPECT_EQ(item.url, inTemp(QStringLiteral("doc.mov")));
            EXPECT_EQ(frameNumber(inTemp(QStringLiteral("doc.mov"))), 6);
        }
    }
}

TEST_F(BaseViewControllerTest, GeneratedPictureAlertsAndHandOver) {
    auto expectAlert = [&](const QString& title, const QString& message) {
        Alert* alert = Alert::visibleAlert(&window);
        ASSERT_NE(alert, nullptr);
        EXPECT_EQ(alert->title(), title);
        EXPECT_EQ(alert->message(), message);
        ASSERT_EQ(alert->actions().size(), 1);
        EXPECT_EQ(alert->actions().front().title, QStringLiteral("OK"));
        EXPECT_EQ(alert->presentingViewController(), editor);
        EXPECT_TRUE(alert->triggerAction(QStringLiteral("OK")));
        EXPECT_TRUE(testsupport::waitUntil([&] { return editor->presentedViewController() == nullptr; }));
    };
    editor->imagePlaygroundDidCreateImageAt(sources.filePath(QStringLiteral("missing.png")));
    expectAlert(QStringLiteral("Error!"), QStringLiteral("Error loading image data from URL"));
    editor->imagePlaygroundDidCreateImageAt(textFile(QStringLiteral("fake.png")));
    expectAlert(QStringLiteral("Error"), QStringLiteral("Failed to convert image data to UIImage."));
    EXPECT_TRUE(calls->log.isEmpty());

    // A good picture goes to the delegate and the generator's sheet goes away.
    auto* sheet = new ViewController;
    editor->present(sheet, false);
    ASSERT_EQ(editor->presentedViewController(), sheet);
    editor->imagePlaygroundDidCreateImageAt(photo(QStringLiteral("made.png"), {30, 30}));
    EXPECT_EQ(calls->log, QStringList{QStringLiteral("playground")});
    EXPECT_EQ(calls->image->bitmap().size(), QSize(30, 30));
    EXPECT_TRUE(testsupport::waitUntil([&] { return editor->presentedViewController() == nullptr; }));
}

TEST_F(BaseViewControllerTest, ADelegateThatIsGoneHearsNothing) {
    const QString picture = photo(QStringLiteral("photo.png"));
    pickerAnswers(QStringList{picture});
    editor->openPhotoPicker(1);
    editor->openLibrary(true);
    editor->documentPickerDidPickDocuments({picture});
    // Gone while the loads are under way.
    delegate.reset();
    editor->imagePlaygroundDidCreateImageAt(picture);
    editor->imagePickerDidFinishPicking({picture, nullptr});
    testsupport::spin(300);
    EXPECT_TRUE(calls->log.isEmpty()) << calls->log.join(QStringLiteral(", ")).toStdString();
}

} // namespace
