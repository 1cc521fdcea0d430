#include "CommandLine.h"
#include "Demo.h"
#include "Version.h"

#include "platform/AppWindow.h"
#include "platform/Dispatch.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"
#include "platform/ViewController.h"
#include "shell/AppDelegate.h"

#include <QApplication>
#include <QDir>
#include <QTimer>
#include <cstdio>

namespace {

QStringList rawArguments(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

// The deepest visible screen, for the line printed with --screenshot.
QString visibleScreenName(AppWindow* window) {
    QString name;
    for (ViewController* controller : window->findChildren<ViewController*>()) {
        if (controller->isVisible() && controller->findChildren<ViewController*>().isEmpty())
            name = controller->objectName();
    }
    return name;
}

} // namespace

int main(int argc, char** argv) {
    const CommandLine command = CommandLine::parse(rawArguments(argc, argv));
    switch (command.action) {
    case CommandLine::Action::showHelp:
        std::fputs(qPrintable(CommandLine::helpText()), stdout);
        return 0;
    case CommandLine::Action::showVersion:
        std::printf("lumivex %s\n", LUMIVEX_VERSION);
        return 0;
    case CommandLine::Action::error:
        std::fprintf(stderr, "lumivex: %s\nTry 'lumivex --help'.\n", qPrintable(command.errorText));
        return 2;
    case CommandLine::Action::runDemo: {
        // The demo draws offscreen; it needs no display.
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        QApplication app(argc, argv);
        QApplication::setApplicationName(QStringLiteral("lumivex"));
        return runDemo(command.outDir);
    }
    case CommandLine::Action::runWindow:
        break;
    }

    if (!displayAvailable()) {
        std::fputs(
            "lumivex: no display found. The Lumivex window needs a graphical display (X11 or Wayland).\n"
            "Set DISPLAY, run it under xvfb-run, or use QT_QPA_PLATFORM=offscreen.\n",
            stderr);
        return 2;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("lumivex"));
    QApplication::setApplicationDisplayName(QStringLiteral("Lumivex"));
    QApplication::setApplicationVersion(QStringLiteral(LUMIVEX_VERSION));

    if (!command.configDir.isEmpty()) {
        QDir().mkpath(command.configDir);
        UserDefaults::setStandardPath(QDir(command.configDir).filePath(QStringLiteral("defaults.ini")));
    }

    AppDelegate delegate(UserDefaults::standard(), Notifications::current());
    QObject::connect(&app, &QGuiApplication::applicationStateChanged, &delegate,
                     [&delegate](Qt::ApplicationState s) {
                         switch (s) {
                         case Qt::ApplicationActive:
                             delegate.applicationDidBecomeActive();
                             break;
                         case Qt::ApplicationInactive:
                             delegate.applicationWillResignActive();
                             break;
                         case Qt::ApplicationHidden:
                         case Qt::ApplicationSuspended:
                             delegate.applicationDidEnterBackground();
                             break;
                         }
                     });
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &delegate,
                     [&delegate]() { delegate.applicationWillTerminate(); });
    delegate.didFinishLaunchingWithOptions();
    // Platforms without window activation (offscreen) never report the active state on their own.
    if (QGuiApplication::applicationState() == Qt::ApplicationActive ||
        QGuiApplication::platformName() == QLatin1String("offscreen"))
        Dispatch::main().async([&delegate]() { delegate.applicationDidBecomeActive(); });

    if (!command.screenshotPath.isEmpty()) {
        QTimer::singleShot(300, &app, [&delegate, &command]() {
            AppWindow* window = delegate.window();
            const bool saved = window && window->grab().save(command.screenshotPath, "PNG");
            std::printf("lumivex: %s %s showing %s\n", saved ? "saved" : "could not save",
                        qPrintable(command.screenshotPath),
                        window ? qPrintable(visibleScreenName(window)) : "nothing");
            std::fflush(stdout);
            QCoreApplication::exit(saved ? 0 : 1);
        });
    }
    if (command.quitAfterMs >= 0)
        QTimer::singleShot(command.quitAfterMs, &app, &QCoreApplication::quit);
    return app.exec();
}
