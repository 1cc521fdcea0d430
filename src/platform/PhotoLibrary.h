#pragma once

#include "platform/Image.h"

#include <QDateTime>
#include <QString>

// What an album write gives back: where the file went, or why nothing was written.
struct PhotoLibraryResult {
    bool ok = false;
    QString path;  // the new file in the album when ok
    QString error; // a sentence for the user when not ok
};

// The photo album as a folder of files. Writes never replace a file that is already there: each one gets
// a new name made of the program's name and the time, with " 2", " 3"… added when that name is taken.
class PhotoLibrary {
public:
    // $LUMIVEX_PHOTO_LIBRARY when set, else the user's Pictures folder + "/Lumivex".
    static QString defaultFolder();

    // The album everything in the program writes to; tests point it elsewhere.
    static PhotoLibrary& shared();

    explicit PhotoLibrary(QString folder = defaultFolder());

    QString folder() const { return folder_; }
    void setFolder(const QString& folder) { folder_ = folder; }

    // The upright pixels as a JPEG.
    PhotoLibraryResult writeImage(const Image& image, double quality = 0.9);
    // Copies a video file in, keeping its extension.
    PhotoLibraryResult writeVideo(const QString& path);
    // Copies any file in, keeping its extension.
    PhotoLibraryResult addFile(const QString& path);

    // The first free path for a file made at `time` with extension `suffix` (without the dot).
    QString uniquePath(const QDateTime& time, const QString& suffix) const;

private:
    PhotoLibraryResult prepareFolder() const;

    QString folder_;
};
