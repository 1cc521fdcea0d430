#include "CommandLine.h"

#include <QFileInfo>
#include <QtGlobal>

CommandLine CommandLine::parse(const QStringList& arguments) {
    CommandLine result;
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& arg = arguments[i];
        auto value = [&](const QString& name) -> std::optional<QString> {
            if (i + 1 >= arguments.size()) {
                result.action = Action::error;
                result.errorText = QStringLiteral("%1 needs a value").arg(name);
                return std::nullopt;
            }
            return arguments[++i];
        };
        if (arg == QLatin1String("-h") || arg == QLatin1String("--help")) {
            result.action = Action::showHelp;
            return result;
        }
        if (arg == QLatin1String("-v") || arg == QLatin1String("--version")) {
            result.action = Action::showVersion;
            return result;
        }
        if (i == 1 && arg == QLatin1String("demo")) {
            result.action = Action::runDemo;
            result.outDir = QStringLiteral("lumivex-demo");
        } else if (arg == QLatin1String("--out")) {
            if (auto v = value(arg))
                result.outDir = *v;
            else
                return result;
        } else if (arg == QLatin1String("--config-dir")) {
            if (auto v = value(arg))
                result.configDir = *v;
            else
                return result;
        } else if (arg == QLatin1String("--screenshot")) {
            if (auto v = value(arg))
                result.screenshotPath = *v;
            else
                return result;
        } else if (arg == QLatin1String("--quit-after")) {
            auto v = value(arg);
            if (!v)
                return result;
            bool ok = false;
            result.quitAfterMs = v->toInt(&ok);
            if (!ok || result.quitAfterMs < 0) {
                result.action = Action::error;
                result.errorText = QStringLiteral("--quit-after needs a number of milliseconds");
                return result;
            }
        } else if (arg.startsWith(QLatin1String("-platform"))) {
            ++i; // Qt's own option, handled by QApplication
        } else if (arg == QLatin1String("--")) {
            for (++i; i < arguments.size(); ++i)
                result.photos << QFileInfo(arguments[i]).absoluteFilePath();
        } else if (!arg.startsWith(QLatin1Char('-')) && result.action == Action::runWindow) {
            // File managers and the desktop entry hand photos over as plain paths.
            result.photos << QFileInfo(arg).absoluteFilePath();
        } else {
            result.action = Action::error;
            result.errorText = QStringLiteral("unknown argument '%1'").arg(arg);
            return result;
        }
    }
    return result;
}

QString CommandLine::helpText() {
    return QStringLiteral(
        "Usage: lumivex [options] [PHOTO...]\n"
        "       lumivex demo [--out DIR]\n"
        "\n"
        "Lumivex turns photographs into one finished picture: collages, mixes, AI blends, mirrors\n"
        "and classic frames. Without options it opens the editor window; photos named after the\n"
        "options open in the collage editor.\n"
        "\n"
        "Commands:\n"
        "  demo                   Build collages of the bundled sample photos without any display and\n"
        "                         save them as JPEG into DIR (default ./lumivex-demo); prints the paths.\n"
        "\n"
        "Options:\n"
        "  -h, --help             Show this help and exit.\n"
        "  -v, --version          Show the version and exit.\n"
        "  --config-dir DIR       Keep the program's settings in DIR (a new folder starts afresh).\n"
        "  --screenshot FILE      Save a picture of the window as PNG once it is shown, then quit.\n"
        "  --quit-after MS        Quit on its own after MS milliseconds.\n"
        "  --out DIR              With demo: the folder the pictures go to.\n"
        "\n"
        "Environment:\n"
        "  LUMIVEX_PHOTO_LIBRARY  Folder of the photo album (default: Pictures/Lumivex).\n"
        "  LUMIVEX_ASSETS_DIR     Folder whose pictures override the built-in artwork.\n"
        "  LUMIVEX_SCREEN_SCALE   Pixels per point of saved pictures (default 3).\n"
        "  QT_QPA_PLATFORM        Qt platform, e.g. 'offscreen' to run without a display.\n");
}

bool displayAvailable() {
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return true;
#endif
}
