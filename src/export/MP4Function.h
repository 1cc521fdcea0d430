#pragma once

#include "platform/Video.h"

#include <QString>
#include <functional>
#include <optional>

// Exports a video into "Convert/Convert.mp4" in the documents folder at a quality preset, replacing
// the last one. The file is written beside that path and renamed over it, so nothing half-written is
// ever left there.
class MP4Function {
public:
    struct ExportError {
        QString domain;
        int code = 0;
        QString localizedDescription;
    };
    static inline const QString kErrorDomain = QStringLiteral("VideoExportError");

    // Either the exported file or an error.
    struct Result {
        std::optional<QString> url;
        std::optional<ExportError> error;
    };
    using Completion = std::function<void(const Result&)>;

    // The preset a quality label stands for: "High", "Medium", anything else Low.
    static Video::ExportPreset presetForLabel(const QString& label);

    static QString outputURL();

    // Opens the video and exports it on a worker; `completion` is called there. A file that does not
    // open as a video gives code -1 at once, on the calling thread.
    static void exportVideo(const QString& inputURL, Video::ExportPreset preset, Completion completion);

    // Removes the file if there is one; a file that stays is a fatal error.
    static void deleteFile(const QString& url);
};
