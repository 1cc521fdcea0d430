#pragma once

#include <QString>
#include <QStringList>

class QMimeData;

// What was dropped on the window, sorted into photos and everything else. Only local files that claim to
// be pictures (by name or first bytes, as ItemProvider judges them) count as photos; folders, other files
// and addresses that are not local files are refused by name.
struct DroppedFiles {
    QStringList photos;  // paths, in the order they were dropped
    QStringList refused; // file names, or the address when there is no local file

    // Whether a drag carries addresses at all, so a screen shows it may be dropped; what they are is
    // judged at the drop, where a refusal can be explained.
    static bool mayCarryFiles(const QMimeData* data);
    static DroppedFiles from(const QMimeData* data);

    // A drop is taken only when it holds photos and nothing else.
    bool isAcceptable() const { return refused.isEmpty() && !photos.isEmpty(); }

    // The alert's words for a refused drop.
    static QString refusalTitle();
    QString refusalMessage() const;
};
