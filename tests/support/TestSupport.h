#pragma once

#include <QString>
#include <functional>

namespace testsupport {

// Runs the Qt event loop until `done` answers true or `timeoutMs` passes; answers `done()` at the end.
bool waitUntil(const std::function<bool()>& done, int timeoutMs = 5000);

// Runs the Qt event loop for about `ms` milliseconds.
void spin(int ms);

// Folder of checked-in test files (tests/data).
QString dataPath(const QString& name);

} // namespace testsupport
