#include "platform/PhotoLibrary.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace {
PhotoLibraryResult failure(QString error) {
    return PhotoLibraryResult{false, QString(), std::move(error)};
}
} // namespace

QString PhotoLibrary::defaultFolder() {
    const QString fromEnv = qEnvironmentVariable("LUMIVEX_PHOTO_LIBRARY");
    if (!fromEnv.isEmpty())
        return fromEnv;
    QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    if (pictures.isEmpty())
        pictures = QDir::homePath() + QStringLiteral("/Pictures");
    return pictures + QStringLiteral("/Lumivex");
}

PhotoLibrary& PhotoLibrary::shared() {
    static PhotoLibrary library;
    return library;
}

PhotoLibrary::PhotoLibrary(QString folder) : folder_(std::move(folder)) {}

QString PhotoLibrary::uniquePath(const QDateTime& time, const QString& suffix) const {
    const QString stem = QStringLiteral("Lumivex ") + time.toString(QStringLiteral("yyyy-MM-dd HH-mm-ss"));
    const QDir dir(folder_);
    QString name = stem + QLatin1Char('.') + suffix;
    for (int n = 2; QFileInfo::exists(dir.filePath(name)); ++n)
        name = stem + QLatin1Char(' ') + QString::number(n) + QLatin1Char('.') + suffix;
    return dir.filePath(name);
}

PhotoLibraryResult PhotoLibrary::prepareFolder() const {
    if (folder_.isEmpty())
        return failure(QStringLiteral("No album folder is set."));
    const QFileInfo info(folder_);
    if (info.exists() && !info.isDir())
        return failure(QStringLiteral("%1 is a file, not a folder.").arg(folder_));
    if (!QDir().mkpath(folder_))
        return failure(QStringLiteral("The folder %1 could not be created.").arg(folder_));
    return PhotoLibraryResult{true, folder_, QString()};
}

PhotoLibraryResult PhotoLibrary::writeImage(const Image& image, double quality) {
    if (auto ready = prepareFolder(); !ready.ok)
        return ready;
    const QByteArray jpeg = image.jpegData(quality);
    if (jpeg.isEmpty())
        return failure(QStringLiteral("The picture could not be encoded as JPEG."));
    const QString path = uniquePath(QDateTime::currentDateTime(), QStringLiteral("jpg"));
    // A save file leaves no half-written picture behind when the disk fills up.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return failure(QStringLiteral("%1 could not be written: %2").arg(path, file.errorString()));
    file.write(jpeg);
    if (!file.commit())
        return failure(QStringLiteral("%1 could not be written: %2").arg(path, file.errorString()));
    return PhotoLibraryResult{true, path, QString()};
}

PhotoLibraryResult PhotoLibrary::writeVideo(const QString& path) {
    return addFile(path);
}

PhotoLibraryResult PhotoLibrary::addFile(const QString& path) {
    const QFileInfo source(path);
    if (!source.isFile())
        return failure(QStringLiteral("%1 does not exist.").arg(path));
    if (auto ready = prepareFolder(); !ready.ok)
        return ready;
    const QString suffix = source.suffix().isEmpty() ? QStringLiteral("bin") : source.suffix().toLower();
    const QString target = uniquePath(QDateTime::currentDateTime(), suffix);
    // QFile::copy refuses to replace an existing file, so a name taken in the meantime fails
    // instead of being overwritten.
    QFile in(path);
    if (!in.copy(target))
        return failure(
            QStringLiteral("%1 could not be copied to %2: %3").arg(path, target, in.errorString()));
    return PhotoLibraryResult{true, target, QString()};
}
