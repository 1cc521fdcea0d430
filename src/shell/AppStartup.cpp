#include "shell/AppStartup.h"

#include "export/ExportScreens.h"
#include "frames/FramesScreens.h"
#include "mirror/MirrorScreens.h"
#include "overlay/OverlayScreens.h"
#include "platform/AppWindow.h"
#include "platform/Dispatch.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"
#include "platform/ViewController.h"
#include "shell/AppDelegate.h"
#include "shell/NewHomePageController.h"

#include <QDir>
#include <QGuiApplication>
#include <QPointer>

AppStartup::AppStartup(StartupOptions options, QObject* parent)
    : QObject(parent), options_(std::move(options)) {}

AppStartup::~AppStartup() = default;

AppWindow* AppStartup::window() const {
    return delegate_ ? delegate_->window() : nullptr;
}

void AppStartup::registerScreens() {
    registerExportScreens();
    registerOverlayScreens();
    registerMirrorScreens();
    registerFramesScreens();
}

void AppStartup::start() {
    if (delegate_)
        return;
    // The name decides the per-user folders of settings and pictures.
    QGuiApplication::setApplicationName(QStringLiteral("lumivex"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Lumivex"));
    QGuiApplication::setDesktopFileName(QStringLiteral("lumivex"));
    registerScreens();
    if (!options_.configDir.isEmpty()) {
        QDir().mkpath(options_.configDir);
        UserDefaults::setStandardPath(QDir(options_.configDir).filePath(QStringLiteral("defaults.ini")));
    }

    delegate_ = std::make_unique<AppDelegate>(UserDefaults::standard(), Notifications::current());
    AppDelegate* delegate = delegate_.get();
    connect(qApp, &QGuiApplication::applicationStateChanged, delegate, [delegate](Qt::ApplicationState s) {
        switch (s) {
        case Qt::ApplicationActive:
            delegate->applicationDidBecomeActive();
            break;
        case Qt::ApplicationInactive:
            delegate->applicationWillResignActive();
            break;
        case Qt::ApplicationHidden:
        case Qt::ApplicationSuspended:
            delegate->applicationDidEnterBackground();
            break;
        }
    });
    connect(qApp, &QCoreApplication::aboutToQuit, delegate,
            [delegate]() { delegate->applicationWillTerminate(); });
    delegate->didFinishLaunchingWithOptions();

    // Platforms without window activation (offscreen) never report the active state on their own.
    QPointer<AppDelegate> guard(delegate);
    if (QGuiApplication::applicationState() == Qt::ApplicationActive ||
        QGuiApplication::platformName() == QLatin1String("offscreen"))
        Dispatch::main().async([guard]() {
            if (guard)
                guard->applicationDidBecomeActive();
        });

    if (!options_.photos.isEmpty())
        delegate->openPhotos(options_.photos);
}
