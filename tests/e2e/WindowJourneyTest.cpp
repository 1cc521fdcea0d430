#include "collage/CollageCanvasView.h"
#include "collage/CollageEditorViewController.h"
#include "e2e/Journey.h"
#include "export/RateShareController.h"
#include "platform/Alert.h"
#include "platform/NavigationController.h"
#include "platform/PhotoPicker.h"
#include "platform/ShareSheet.h"
#include "platform/TestMediaFiles.h"
#include "shell/AppDelegate.h"
#include "shell/FeatureGridCell.h"
#include "shell/NewHomePageController.h"
#include "shell/TutorialPageViewController.h"

#include <QPushButton>
#include <QTest>

namespace {

using journey::Journey;

// A new user, by mouse alone: skip the tutorial, open Collage, pick three photos in the picker, save,
// and find the collage in the album with the share sheet up.
TEST_F(Journey, FreshStartToASavedCollageByClicksOnTheWindow) {
    const QStringList photos = putIntoPictures(
        {QStringLiteral("messi5.jpg"), QStringLiteral("fruits.jpg"), QStringLiteral("building.jpg")});
    ShareSheet::resetPresentationRecord();
    ASSERT_TRUE(start());

    auto* tutorial = qobject_cast<NavigationController*>(window->rootViewController());
    ASSERT_NE(tutorial, nullptr);
    auto* page = qobject_cast<TutorialPageViewController*>(tutorial->topViewController());
    ASSERT_NE(page, nullptr);
    click(page->skipButton());
    auto* home = qobject_cast<NewHomePageController*>(window->rootViewController());
    ASSERT_NE(home, nullptr);
    ASSERT_TRUE(
        testsupport::waitUntil([&] { return home->isVisible() && home->featureCell(0)->isVisible(); }));

    click(home->featureCell(0));
    auto* picker = waitForPresented<PhotoPicker>();
    ASSERT_NE(picker, nullptr);
    for (const QString& photo : photos)
        click(picker->cellForFile(photo));
    EXPECT_EQ(picker->selectedFiles(), photos);
    click(picker->addButton());

    auto* editor = waitForPresented<CollageEditorViewController>();
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->viewModel().images().size(), 3u);
    // Covered by the full-screen editor, the home screen has left: its carousel stands still.
    EXPECT_TRUE(testsupport::waitUntil([&] { return !home->isVisible(); }));
    EXPECT_EQ(home->carouselTimer(), nullptr);

    auto* save = editor->findChild<QPushButton*>(QStringLiteral("saveButton"));
    click(save);
    ASSERT_TRUE(testsupport::waitUntil(
        [&] { return qobject_cast<RateShareController*>(editor->presentedViewController()) != nullptr; }));
    ASSERT_TRUE(testsupport::waitUntil([&] { return ShareSheet::presentationCount() >= 1; }, 8000));
    const QStringList saved = albumFiles();
    ASSERT_EQ(saved.size(), 1);
    const QImage picture = testvideo::decodeFirstPicture(saved.front());
    EXPECT_EQ(picture.size(), (editor->canvasView()->canvasSize() * 3.0).toSize());
}

// While the picker is up, nothing under it answers: not the editor's back button in the strip above the
// sheet, nor its Save.
TEST_F(Journey, ThePickerOverAFlowKeepsTheFlowStillUntilItIsAnswered) {
    const QStringList photos = putIntoPictures({QStringLiteral("apple.jpg"), QStringLiteral("orange.jpg")});
    ASSERT_TRUE(start(photos));
    auto* editor = waitForPresented<CollageEditorViewController>();
    ASSERT_NE(editor, nullptr);
    QCoreApplication::processEvents();

    // Import: the picker rises over the editor.
    const auto& actions = editor->viewModel().transformActions();
    const auto import = std::find(actions.begin(), actions.end(), CollageTransformAction::importImages);
    ASSERT_NE(import, actions.end());
    editor->viewModel().performTransformAction(static_cast<int>(import - actions.begin()));
    QPointer<PhotoPicker> picker = waitForPresented<PhotoPicker>();
    ASSERT_NE(picker, nullptr);
    auto* back = editor->findChild<QWidget*>(QStringLiteral("backButton"));
    auto* save = editor->findChild<QWidget*>(QStringLiteral("saveButton"));
    click(back);
    click(save);
    QTest::keyClick(window->windowHandle(), Qt::Key_S, Qt::ControlModifier);
    testsupport::spin(400);
    EXPECT_EQ(topScreen(), picker);
    EXPECT_EQ(editor->presentedViewController(), picker);
    EXPECT_TRUE(albumFiles().isEmpty());

    // Escape still reaches the picker, which answers and goes.
    QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
    ASSERT_TRUE(testsupport::waitUntil([&] { return picker.isNull(); }));
    EXPECT_EQ(editor->presentedViewController(), nullptr);
    click(back);
    ASSERT_TRUE(testsupport::waitUntil([&] { return topScreen() == window->rootViewController(); }));
}

// Photos named on the command line open the editor; a single one gets the alert asking for more.
TEST_F(Journey, PhotosFromTheCommandLineOpenTheEditor) {
    const QStringList photos = putIntoPictures({QStringLiteral("home.jpg"), QStringLiteral("baboon.jpg")});
    ASSERT_TRUE(start(photos));
    auto* editor = waitForPresented<CollageEditorViewController>();
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->viewModel().images().size(), 2u);
}

TEST_F(Journey, OnePhotoFromTheCommandLineAsksForMore) {
    ASSERT_TRUE(start(putIntoPictures({QStringLiteral("home.jpg")})));
    auto* alert = waitForPresented<Alert>();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title(), QStringLiteral("Select More Photos"));
    EXPECT_NE(qobject_cast<NewHomePageController*>(window->rootViewController()), nullptr);
}

} // namespace
