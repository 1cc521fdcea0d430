#include "export/MP4Function.h"

#include "platform/Documents.h"
#include "platform/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

Video::ExportPreset MP4Function::presetForLabel(const QString& label) {
    if (label == QStringLiteral("High"))
        return Video::ExportPreset::highestQuality;
    if (label == QStringLiteral("Medium"))
        return Video::ExportPreset::mediumQuality;
    return Video::ExportPreset::lowQuality;
}

QString MP4Function::outputURL() {
    const QString folder = Documents::fileURL(QStringLiteral("Convert"));
    // A folder that cannot be made is left for the export to report.
    QDir().mkpath(folder);
    return QDir(folder).filePath(QFileInfo(folder).fileName() + QStringLiteral(".mp4"));
}

void MP4Function::deleteFile(const QString& url) {
    QFile file(url);
    if (!file.exists())
        return;
    if (!file.remove())
        fatalError(("Unable to delete file: " + file.errorString() + " : deleteFile(_:)").toStdString());
}

void MP4Function::exportVideo(const QString& inputURL, Video::ExportPreset preset, Completion completion) {
    const auto session = Video::ExportSession::create(inputURL, preset);
    if (!session) {
        if (completion)
            completion(Result{std::nullopt,
                              ExportError{kErrorDomain, -1, QStringLiteral("Cannot create export session")}});
        return;
    }
    const QString output = outputURL();
    deleteFile(output);
    session->outputURL = output;
    session->exportAsynchronously([session, output, completion = std::move(completion)] {
        if (!completion)
            return;
        switch (session->status()) {
        case Video::ExportSession::Status::completed:
            completion(Result{output, std::nullopt});
            break;
        case Video::ExportSession::Status::failed:
            if (session->error().isEmpty())
                completion(Result{std::nullopt,
                                  ExportError{kErrorDomain, -2, QStringLiteral("Unknown export error")}});
            else
                completion(Result{std::nullopt, ExportError{QStringLiteral("VideoExportSession"), -11800,
                                                            session->error()}});
            break;
        case Video::ExportSession::Status::cancelled:
            completion(
                Result{std::nullopt, ExportError{kErrorDomain, -3, QStringLiteral("Export cancelled")}});
            break;
        default:
            break;
        }
    });
}
