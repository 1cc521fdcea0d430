#include "platform/Documents.h"

#include <QDir>
#include <QStandardPaths>

QString Documents::folder() {
    const QString fromEnv = qEnvironmentVariable("LUMIVEX_DOCUMENTS_DIR");
    if (!fromEnv.isEmpty())
        return fromEnv;
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return documents.isEmpty() ? QDir::homePath() + QStringLiteral("/Documents") : documents;
}

QString Documents::fileURL(const QString& name) {
    const QString dir = folder();
    // A failed mkpath is left for the write to report: it names the path and the reason.
    QDir().mkpath(dir);
    return QDir(dir).filePath(name);
}
