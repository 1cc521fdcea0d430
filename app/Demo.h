#pragma once

#include <QString>

// Builds a handful of collages of the bundled sample photos through the real view model and canvas,
// offscreen, saves each into `outDir` as the editor's Save would, and prints the paths. Answers the
// process exit code.
int runDemo(const QString& outDir);

// Folder of the bundled sample photos (source tree or installed share folder).
QString samplesFolder();
