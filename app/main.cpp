#include "CommandLine.h"
#include "Demo.h"
#include "Version.h"

#include "platform/AppWindow.h"
#include "platform/ViewController.h"
#include "shell/AppStartup.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
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
    QApplication::setApplicationVersion(QStringLiteral(LUMIVEX_VERSION));
    QApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral("lumivex"), QIcon(QStringLiteral(":/lumivex/lumivex.svg"))));

    AppStartup startup({command.configDir, command.photos});
    startup.start();

    if (!command.screenshotPath.isEmpty()) {
        QTimer::singleShot(300, &app, [&startup, &command]() {
            AppWindow* window = startup.window();
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
