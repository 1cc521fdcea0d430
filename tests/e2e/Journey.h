#pragma once

#include "platform/AppWindow.h"
#include "platform/Image.h"
#include "platform/ViewController.h"
#include "shell/AppStartup.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QPointer>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

class NewHomePageController;

namespace journey {

// A user's machine for one journey: a home folder with a Pictures folder, an empty album and a fresh
// profile, all in a temporary folder. The program is then started through the same start-up code as
// `lumivex` itself, with real animation timing, and driven by clicks at window positions. Like the
// program, a journey expects a process of its own (ctest runs each test alone): the album folder is
// read once per process.
class Journey : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Starts the program; photos as if named on its command line.
    AppWindow* start(const QStringList& photos = {});

    // At the first start: skips the tutorial with a click on its Skip button and answers the home
    // screen that replaces it (null, with a failure recorded, when either is missing).
    NewHomePageController* skipToHome();

    // Copies bundled sample photos into the Pictures folder, oldest first; answers their paths there.
    QStringList putIntoPictures(const QStringList& sampleNames);

    // Clicks the middle of `widget` where the window shows it: whatever lies on top there takes the click.
    void click(QWidget* widget);
    void clickAt(const QPoint& windowPosition);
    // The top presented screen over the root, once it has come to rest in its place.
    template <typename T> T* waitForPresented(int timeoutMs = 8000) {
        T* found = nullptr;
        testsupport::waitUntil(
            [&] {
                found = qobject_cast<T*>(topScreen());
                return found && found->isVisible() && settled(found);
            },
            timeoutMs);
        return found;
    }
    ViewController* topScreen() const;
    static bool settled(ViewController* screen);

    // Pictures written into the album folder.
    QStringList albumFiles() const;

    QTemporaryDir sandbox;
    QDir pictures;
    QDir album;
    std::unique_ptr<AppStartup> startup;
    QPointer<AppWindow> window;

private:
    QByteArray savedHome_, savedConfigHome_, savedLibrary_;
    bool wasInstant_ = true;
};

} // namespace journey
