#include "collage/CollageEditorViewController.h"
#include "collage/CollageEditorViewModel.h"
#include "platform/Alert.h"
#include "platform/AppWindow.h"
#include "platform/DroppedFiles.h"
#include "platform/UserDefaults.h"
#include "shell/NewHomePageController.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>
#include <gtest/gtest.h>

namespace {

const QString kSamples = QStringLiteral(LUMIVEX_SAMPLES_DIR "/");

QStringList samples(int count) {
    static const QStringList names = {"baboon.jpg", "fruits.jpg", "HappyFish.jpg", "home.jpg",
                                      "apple.jpg",  "board.jpg",  "building.jpg",  "orange.jpg"};
    QStringList paths;
    for (int i = 0; i < count; ++i)
        paths << kSamples + names[i % names.size()];
    return paths;
}

// What a drag from a file manager carries, delivered as the window delivers it: enter, then the drop if
// the screen took the enter. Answers whether the drop was accepted.
struct DropOutcome {
    bool enterAccepted = false;
    bool dropAccepted = false;
};

DropOutcome drop(QWidget* screen, const QStringList& paths) {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& path : paths)
        urls << QUrl::fromLocalFile(path);
    data.setUrls(urls);
    const QPoint at = screen->rect().center();
    DropOutcome outcome;
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setAccepted(false);
    QApplication::sendEvent(screen, &enter);
    outcome.enterAccepted = enter.isAccepted();
    if (!outcome.enterAccepted)
        return outcome;
    QDropEvent dropEvent(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    dropEvent.setAccepted(false);
    QApplication::sendEvent(screen, &dropEvent);
    outcome.dropAccepted = dropEvent.isAccepted();
    return outcome;
}

class DropTest : public ::testing::Test {
protected:
    void SetUp() override {
        defaults = std::make_unique<UserDefaults>(dir.filePath(QStringLiteral("defaults.ini")));
        textFile = dir.filePath(QStringLiteral("notes.txt"));
        QFile file(textFile);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("shopping list\n");
        file.close();
        folder = dir.filePath(QStringLiteral("Holiday"));
        ASSERT_TRUE(QDir().mkpath(folder));
        ASSERT_TRUE(QFile::copy(kSamples + QStringLiteral("apple.jpg"), folder + QStringLiteral("/a.jpg")));
    }

    NewHomePageController* showHome() {
        home = new NewHomePageController(*defaults);
        window.setRootViewController(home);
        window.makeKeyAndVisible();
        return home;
    }

    CollageEditorViewController* showEditor(int photoCount) {
        std::vector<ImagePtr> images;
        for (const QString& path : samples(photoCount))
            images.push_back(Image::fromFile(path));
        editor = new CollageEditorViewController(std::make_unique<CollageEditorViewModel>(std::move(images)));
        window.setRootViewController(editor);
        window.makeKeyAndVisible();
        return editor;
    }

    Alert* waitForAlert() {
        testsupport::waitUntil([&] { return Alert::visibleAlert(&window) != nullptr; });
        return Alert::visibleAlert(&window);
    }

    QTemporaryDir dir;
    QString textFile;
    QString folder;
    std::unique_ptr<UserDefaults> defaults;
    AppWindow window;
    NewHomePageController* home = nullptr;
    CollageEditorViewController* editor = nullptr;
};

TEST_F(DropTest, PhotosDroppedOnHomeOpenTheCollageEditorWithThemInOrder) {
    showHome();
    const QStringList photos = samples(3);
    const DropOutcome outcome = drop(home, photos);
    EXPECT_TRUE(outcome.enterAccepted);
    EXPECT_TRUE(outcome.dropAccepted);
    CollageEditorViewController* opened = nullptr;
    ASSERT_TRUE(testsupport::waitUntil([&] {
        opened = qobject_cast<CollageEditorViewController*>(home->presentedViewController());
        return opened != nullptr;
    }));
    const auto& images = opened->viewModel().images();
    ASSERT_EQ(images.size(), 3u);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(images[std::size_t(i)]->source()->path, photos[i]);
}

TEST_F(DropTest, HomeRefusesAnythingButPhotosAndSaysWhatWasNotOne) {
    showHome();
    // A text file, a folder of photos, and a photo beside a text file: each refused whole.
    const struct {
        QStringList paths;
        QString named;
    } cases[] = {
        {{textFile}, QStringLiteral("notes.txt")},
        {{folder}, QStringLiteral("Holiday")},
        {{kSamples + QStringLiteral("fruits.jpg"), kSamples + QStringLiteral("baboon.jpg"), textFile},
         QStringLiteral("notes.txt")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.named.toStdString());
        const DropOutcome outcome = drop(home, c.paths);
        EXPECT_TRUE(outcome.enterAccepted); // so that the refusal can be explained at the drop
        EXPECT_FALSE(outcome.dropAccepted);
        Alert* alert = waitForAlert();
        ASSERT_NE(alert, nullptr);
        EXPECT_EQ(alert->title(), DroppedFiles::refusalTitle());
        EXPECT_TRUE(alert->message().contains(c.named)) << alert->message().toStdString();
        EXPECT_FALSE(alert->message().contains(QStringLiteral("fruits.jpg")));
        ASSERT_TRUE(alert->triggerAction(QStringLiteral("OK")));
        ASSERT_TRUE(testsupport::waitUntil([&] { return home->presentedViewController() == nullptr; }));
    }

    // A drag of text, not of files, is not offered to the screen at all.
    QMimeData text;
    text.setText(QStringLiteral("hello"));
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    enter.setAccepted(false);
    QApplication::sendEvent(home, &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST_F(DropTest, EditorImportsDroppedPhotosUpToEightAndRefusesTheRest) {
    showEditor(2);
    const DropOutcome one = drop(editor, {kSamples + QStringLiteral("orange.jpg")});
    EXPECT_TRUE(one.dropAccepted);
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->viewModel().images().size() == 3u; }));
    EXPECT_EQ(editor->viewModel().images().back()->source()->path, kSamples + QStringLiteral("orange.jpg"));
    EXPECT_EQ(Alert::visibleAlert(&window), nullptr);

    // Not a picture: nothing is added.
    EXPECT_FALSE(drop(editor, {textFile}).dropAccepted);
    Alert* alert = waitForAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_TRUE(alert->message().contains(QStringLiteral("notes.txt")));
    alert->triggerAction(QStringLiteral("OK"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->presentedViewController() == nullptr; }));
    testsupport::spin(100);
    EXPECT_EQ(editor->viewModel().images().size(), 3u);

    // Seven more photos for five places: the first five are taken, and the user hears why not all.
    const QStringList seven = samples(7);
    EXPECT_TRUE(drop(editor, seven).dropAccepted);
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->viewModel().images().size() == 8u; }));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(editor->viewModel().images()[std::size_t(3 + i)]->source()->path, seven[i]);
    alert = waitForAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_TRUE(alert->message().contains(QStringLiteral("8"))) << alert->message().toStdString();
    alert->triggerAction(QStringLiteral("OK"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->presentedViewController() == nullptr; }));

    // Full: refused outright.
    EXPECT_FALSE(drop(editor, {kSamples + QStringLiteral("orange.jpg")}).dropAccepted);
    ASSERT_NE(waitForAlert(), nullptr);
    testsupport::spin(100);
    EXPECT_EQ(editor->viewModel().images().size(), 8u);
}

} // namespace
