#include "collage/CollageCanvasView.h"
#include "collage/CollageCell.h"
#include "collage/CollageEditorViewController.h"
#include "collage/FeatherOptionsView.h"
#include "collage/FeatherSliderRow.h"
#include "e2e/Journey.h"
#include "export/RateShareController.h"
#include "platform/AppWindow.h"
#include "platform/Notifications.h"
#include "platform/PhotoLibrary.h"
#include "platform/PhotoPicker.h"
#include "platform/Screen.h"
#include "platform/ShareSheet.h"
#include "platform/TestMediaFiles.h"
#include "platform/UserDefaults.h"
#include "shell/AppDelegate.h"
#include "shell/FeatureGridCell.h"
#include "shell/NewHomePageController.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QPushButton>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace {

using journey::Journey;

template <typename T> int indexOf(const std::vector<T>& list, T value) {
    return static_cast<int>(std::find(list.begin(), list.end(), value) - list.begin());
}

// From the first launch to a saved collage: tutorial, home, picker, editor, save, album, share sheet.
TEST_F(Journey, ThreePhotosBecomeOneSavedCollage) {
    const QStringList picked = putIntoPictures(
        {QStringLiteral("messi5.jpg"), QStringLiteral("fruits.jpg"), QStringLiteral("building.jpg")});
    ShareSheet::resetPresentationRecord();
    ASSERT_TRUE(start());
    NewHomePageController* home = skipToHome();
    ASSERT_NE(home, nullptr);

    QTest::mouseClick(home->featureCell(0), Qt::LeftButton);
    PhotoPicker* picker = waitForPresented<PhotoPicker>();
    ASSERT_NE(picker, nullptr);
    for (const QString& photo : picked)
        QTest::mouseClick(picker->cellForFile(photo), Qt::LeftButton);
    QTest::mouseClick(picker->addButton(), Qt::LeftButton);
    auto* editor = waitForPresented<CollageEditorViewController>();
    ASSERT_NE(editor, nullptr);
    ASSERT_EQ(editor->viewModel().images().size(), 3u);
    CollageCanvasView* canvas = editor->canvasView();

    // Another layout, then the "Story" ratio, both picked from the bottom sheet.
    editor->didSelectTool(static_cast<int>(CollageTool::layout));
    ASSERT_GT(editor->optionCells().size(), 1);
    QTest::mouseClick(editor->optionCells()[1], Qt::LeftButton);
    EXPECT_EQ(editor->viewModel().selectedLayoutIndex(), 1);
    editor->didSelectTool(static_cast<int>(CollageTool::ratio));
    const int story =
        indexOf(editor->viewModel().aspectRatioOptions(), CollageAspectRatioOption::instagramStory);
    QTest::mouseClick(editor->optionCells()[story], Qt::LeftButton);
    EXPECT_EQ(displayName(*editor->viewModel().selectedAspectRatioOption()), QStringLiteral("Story"));
    EXPECT_TRUE(testsupport::waitUntil([&] {
        return std::abs(canvas->canvasSize().width() / canvas->canvasSize().height() - 0.5625) < 0.01;
    }));

    // Move and zoom the selected pane with the mouse.
    QWidget* surface = canvas->viewport();
    const QPoint middle = surface->rect().center();
    QTest::mousePress(surface, Qt::LeftButton, {}, middle);
    QTest::mouseMove(surface, middle + QPoint(15, 0));
    QTest::mouseMove(surface, middle + QPoint(40, 25));
    QTest::mouseRelease(surface, Qt::LeftButton, {}, middle + QPoint(40, 25));
    QWheelEvent zoom(middle, surface->mapToGlobal(QPointF(middle)), QPoint(), QPoint(0, 240), Qt::NoButton,
                     Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(surface, &zoom);
    CollagePaneView* pane = canvas->paneViews()[*canvas->selectedIndex()];
    EXPECT_NE(pane->translation(), QPointF());
    EXPECT_GT(pane->scale(), 1.2);

    // A softer feather from the slider, by keyboard.
    editor->didSelectTool(static_cast<int>(CollageTool::feather));
    QSlider* slider = editor->featherOptionsView()->horizontalRow()->slider();
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_PageUp);
    QTest::keyClick(slider, Qt::Key_PageUp);
    EXPECT_NEAR(canvas->selectedPaneFeather()->first, 45.0, 1e-9);

    const QSizeF canvasPoints = canvas->canvasSize();
    auto* save = editor->findChild<QPushButton*>(QStringLiteral("saveButton"));
    ASSERT_NE(save, nullptr);
    QTest::mouseClick(save, Qt::LeftButton);
    ASSERT_TRUE(testsupport::waitUntil([&] { return ShareSheet::presentationCount() >= 1; }));
    EXPECT_NE(qobject_cast<RateShareController*>(editor->presentedViewController()), nullptr);

    ASSERT_TRUE(testsupport::waitUntil([&] { return albumFiles().size() == 1; }));
    const QImage saved = testvideo::decodeFirstPicture(albumFiles().front());
    EXPECT_EQ(saved.size(), (canvasPoints * 3.0).toSize());
}

} // namespace
