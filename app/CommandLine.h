#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// What the command line asks the program to do, parsed before any display is opened.
struct CommandLine {
    enum class Action { runWindow, runDemo, showHelp, showVersion, error };

    Action action = Action::runWindow;
    QString errorText;
    QString configDir;      // where the launch flags are kept (a fresh folder gives a first run)
    QString screenshotPath; // save a picture of the window once shown, then quit
    int quitAfterMs = -1;   // quit on its own after this long
    QString outDir;         // where `demo` writes its pictures
    QStringList photos;     // photos to open in the collage editor, as absolute paths

    static CommandLine parse(const QStringList& arguments);
    static QString helpText();
};

// Whether a window can be opened at all: a platform chosen through QT_QPA_PLATFORM, or an X11 or
// Wayland display.
bool displayAvailable();
