#include "platform/DroppedFiles.h"

#include "platform/ItemProvider.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

bool DroppedFiles::mayCarryFiles(const QMimeData* data) {
    return data && data->hasUrls();
}

DroppedFiles DroppedFiles::from(const QMimeData* data) {
    DroppedFiles result;
    if (!data)
        return result;
    for (const QUrl& url : data->urls()) {
        if (!url.isLocalFile()) {
            result.refused << url.toDisplayString();
            continue;
        }
        const QString path = url.toLocalFile();
        if (ItemProvider(path).canLoadImage())
            result.photos << path;
        else
            result.refused << QFileInfo(QDir::cleanPath(path)).fileName();
    }
    return result;
}

QString DroppedFiles::refusalTitle() {
    return QStringLiteral("Not a Photo");
}

QString DroppedFiles::refusalMessage() const {
    if (refused.isEmpty())
        return QStringLiteral("Nothing that was dropped is a photo.");
    const QString names = QStringLiteral("“%1”").arg(refused.join(QStringLiteral("”, “")));
    return refused.size() == 1
               ? QStringLiteral("%1 is not a photo. Only photos can be dropped here.").arg(names)
               : QStringLiteral("%1 are not photos. Only photos can be dropped here.").arg(names);
}
