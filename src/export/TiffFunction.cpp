#include "export/TiffFunction.h"

#include "platform/Dispatch.h"
#include "platform/Log.h"
#include "platform/PhotoLibrary.h"

#include <QBuffer>
#include <QColorSpace>
#include <QDir>
#include <QImageWriter>
#include <QSaveFile>
#include <QUuid>

QByteArray TiffFunction::tiffData(const Image& image) {
    QImage rgba = image.uprightBitmap().convertToFormat(QImage::Format_RGBA8888);
    if (rgba.isNull())
        return {};
    if (!rgba.colorSpace().isValid())
        rgba.setColorSpace(QColorSpace::SRgb);
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "tiff");
    if (!writer.write(rgba))
        return {};
    return data;
}

QString TiffFunction::temporaryFileURL() {
    const QString uuid = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    return QDir(QDir::tempPath()).filePath(uuid + QStringLiteral(".tiff"));
}

void TiffFunction::saveImageAsTIFF(ImagePtr image, QString albumFolder, Completion completion) {
    if (!image)
        return;
    Dispatch::global(QualityOfService::userInitiated)
        .async([image = std::move(image), albumFolder = std::move(albumFolder),
                completion = std::move(completion)] {
            const QByteArray data = tiffData(*image);
            if (data.isEmpty())
                return;
            const QString path = temporaryFileURL();
            QSaveFile file(path);
            if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
                printLine(("Error saving image as TIFF: " + path + ": " + file.errorString()).toStdString());
                return;
            }
            PhotoLibrary album(albumFolder);
            const PhotoLibraryResult added = album.addFile(path);
            if (!added.ok) {
                printLine(("The TIFF could not be added to the album: " + added.error).toStdString());
                if (completion)
                    completion(false, std::nullopt);
                return;
            }
            if (completion)
                completion(true, path);
        });
}
