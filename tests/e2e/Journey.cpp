#include "e2e/Journey.h"

#include "platform/Animations.h"
#include "platform/NavigationController.h"
#include "shell/NewHomePageController.h"
#include "shell/TutorialPageViewController.h"

#include <QPushButton>

#include <QDateTime>
#include <QFile>
#include <QTest>
#include <QWindow>

namespace journey {

namespace {
QByteArray swapEnv(const char* name, const QByteArray& value) {
    const QByteArray old = qgetenv(name);
    qputenv(name, value);
    return old;
}
void restoreEnv(const char* name, const QByteArray& value) {
    if (value.isEmpty())
        qunsetenv(name);
    else
        qputenv(name, value);
}
} // namespace

void Journey::SetUp() {
    ASSERT_TRUE(sandbox.isValid());
    const QDir root(sandbox.path());
    root.mkpath(QStringLiteral("home/Pictures"));
    root.mkpath(QStringLiteral("xdg"));
    pictures = QDir(root.filePath(QStringLiteral("home/Pictures")));
    album = QDir(root.filePath(QStringLiteral("album")));
    savedHome_ = swapEnv("HOME", root.filePath(QStringLiteral("home")).toLocal8Bit());
    savedConfigHome_ = swapEnv("XDG_CONFIG_HOME", root.filePath(QStringLiteral("xdg")).toLocal8Bit());
    savedLibrary_ = swapEnv("LUMIVEX_PHOTO_LIBRARY", album.path().toLocal8Bit());
    // The program animates; so do its journeys.
    wasInstant_ = Animations::isInstant();
    Animations::setInstant(false);
}

void Journey::TearDown() {
    startup.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Animations::setInstant(wasInstant_);
    restoreEnv("HOME", savedHome_);
    restoreEnv("XDG_CONFIG_HOME", savedConfigHome_);
    restoreEnv("LUMIVEX_PHOTO_LIBRARY", savedLibrary_);
}

AppWindow* Journey::start(const QStringList& photos) {
    startup = std::make_unique<AppStartup>(
        StartupOptions{QDir(sandbox.path()).filePath(QStringLiteral("profile")), photos});
    startup->start();
    window = startup->window();
    if (window) {
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window));
    }
    return window;
}

QStringList Journey::putIntoPictures(const QStringList& sampleNames) {
    QStringList paths;
    QDateTime stamp = QDateTime::currentDateTime().addSecs(-3600);
    for (const QString& name : sampleNames) {
        const QString target = pictures.filePath(name);
        EXPECT_TRUE(QFile::copy(QDir(QStringLiteral(LUMIVEX_SAMPLES_DIR)).filePath(name), target))
            << qPrintable(name);
        QFile file(target);
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        file.setFileTime(stamp, QFileDevice::FileModificationTime);
        stamp = stamp.addSecs(60);
        paths << target;
    }
    return paths;
}

void Journey::clickAt(const QPoint& windowPosition) {
    ASSERT_TRUE(window && window->windowHandle());
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, windowPosition);
}

void Journey::click(QWidget* widget) {
    ASSERT_NE(widget, nullptr);
    ASSERT_TRUE(widget->isVisible()) << qPrintable(widget->objectName());
    clickAt(widget->mapTo(window.data(), widget->rect().center()));
}

ViewController* Journey::topScreen() const {
    if (!window)
        return nullptr;
    ViewController* screen = window->rootViewController();
    while (screen && screen->presentedViewController())
        screen = screen->presentedViewController();
    return screen;
}

bool Journey::settled(ViewController* screen) {
    const QWidget* host = screen->parentWidget();
    if (!host)
        return true;
    return screen->geometry() ==
           ViewController::presentationRect(screen->modalPresentationStyle(), host->rect());
}

QStringList Journey::albumFiles() const {
    QStringList files;
    for (const QString& name : album.entryList(QDir::Files, QDir::Name))
        files << album.filePath(name);
    return files;
}

NewHomePageController* Journey::skipToHome() {
    auto* tutorial = qobject_cast<NavigationController*>(window->rootViewController());
    auto* page =
        tutorial ? qobject_cast<TutorialPageViewController*>(tutorial->topViewController()) : nullptr;
    if (!page) {
        ADD_FAILURE() << "no tutorial page at the first start";
        return nullptr;
    }
    click(page->skipButton());
    auto* home = qobject_cast<NewHomePageController*>(window->rootViewController());
    if (!home)
        ADD_FAILURE() << "the home screen did not replace the tutorial";
    QCoreApplication::processEvents();
    return home;
}

} // namespace journey
