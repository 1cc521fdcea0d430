#pragma once

#include <QString>

// Names of the two launch flags, the only state the shell keeps between runs.
struct LaunchManager {
    QString hasLaunchedBeforeKey = QStringLiteral("hasLaunchedBefore");
    QString hasHomeLauned = QStringLiteral("HasHomeLauned");

    static const LaunchManager& shared() {
        static const LaunchManager instance;
        return instance;
    }
};
