#pragma once

#include <QString>

// One intake outside the benchmark loop, for measuring the process's peak resident set on its own:
// "photos" opens the eight 12 MP benchmark photos, "huge-png" eight picks of a 14000 × 14000 PNG. Prints
// the peak and answers a process exit code.
int runIntakePeak(const QString& what);
