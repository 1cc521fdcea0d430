#include "collage/CollageEditorViewController.h"
#include "e2e/Journey.h"
#include "platform/Alert.h"
#include "platform/AppWindow.h"
#include "shell/NewHomePageController.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

namespace {

using journey::Journey;

// Drops files at a window position the way the window delivers a drag: to the widget there, or up its
// parents to the first that takes drops and takes the enter; the drop goes where the enter was taken.
bool dropAt(QWidget* window, const QPoint& position, const QStringList& paths) {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& path : paths)
        urls << QUrl::fromLocalFile(path);
    data.setUrls(urls);
    for (QWidget* target = window->childAt(position); target; target = target->parentWidget()) {
        if (!target->acceptDrops())
            continue;
        const QPoint local = target->mapFrom(window, position);
        QDragEnterEvent enter(local, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.setAccepted(false);
        QApplication::sendEvent(target, &enter);
        if (!enter.isAccepted())
            continue;
        QDropEvent drop(QPointF(local), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        drop.setAccepted(false);
        QApplication::sendEvent(target, &drop);
        return drop.isAccepted();
    }
    return false;
}

// Photos dragged from a file manager onto the home screen open the collage editor; a phone's HEIC photo
// dropped on the editor joins the collage; a text file is turned away with a message.
TEST_F(Journey, DroppedPhotosOpenTheEditorAndADroppedHeicJoinsIt) {
    const QStringList photos =
        putIntoPictures({QStringLiteral("fruits.jpg"), QStringLiteral("building.jpg")});
    QString phonePhoto = pictures.filePath(QStringLiteral("IMG_2041.heic"));
    if (!QStandardPaths::findExecutable(QStringLiteral("heif-enc")).isEmpty()) {
        QProcess encode;
        encode.start(QStringLiteral("heif-enc"),
                     {QStringLiteral("-o"), phonePhoto, QStringLiteral(LUMIVEX_SAMPLES_DIR "/baboon.jpg")});
        ASSERT_TRUE(encode.waitForFinished(60000));
        ASSERT_EQ(encode.exitCode(), 0);
    } else {
        std::printf("heif-enc missing: a JPEG stands in for the phone's photo\n");
        phonePhoto = putIntoPictures({QStringLiteral("baboon.jpg")}).front();
    }
    const QString notes = pictures.filePath(QStringLiteral("notes.txt"));
    {
        QFile file(notes);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("not a photo\n");
    }

    ASSERT_TRUE(start());
    NewHomePageController* home = skipToHome();
    ASSERT_NE(home, nullptr);

    // Onto the feature cards in the middle of the home screen.
    const QPoint middle = window->rect().center();
    ASSERT_TRUE(dropAt(window, middle, photos));
    auto* editor = waitForPresented<CollageEditorViewController>();
    ASSERT_NE(editor, nullptr);
    ASSERT_EQ(editor->viewModel().images().size(), 2u);

    ASSERT_FALSE(dropAt(window, middle, {notes}));
    Alert* alert = waitForPresented<Alert>();
    ASSERT_NE(alert, nullptr);
    EXPECT_TRUE(alert->message().contains(QStringLiteral("notes.txt")));
    click(alert->buttonForAction(QStringLiteral("OK")));
    ASSERT_TRUE(testsupport::waitUntil([&] { return Alert::visibleAlert(window) == nullptr; }));
    EXPECT_EQ(editor->viewModel().images().size(), 2u);

    // Onto the canvas.
    ASSERT_TRUE(dropAt(window, middle, {phonePhoto}));
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->viewModel().images().size() == 3u; }));
    const ImagePtr added = editor->viewModel().images().back();
    EXPECT_EQ(added->source()->path, phonePhoto);
    EXPECT_EQ(added->orientation(), ImageOrientation::up);
    EXPECT_EQ(added->pixelSize(), QSize(512, 512));
}

} // namespace
