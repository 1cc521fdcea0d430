#include "platform/ItemProvider.h"

#include "platform/Dispatch.h"

#include <QFileInfo>
#include <QImageReader>

ItemProvider::ItemProvider(QString filePath) : filePath_(std::move(filePath)) {}

std::shared_ptr<ItemProvider> ItemProvider::forFile(const QString& filePath) {
    return std::make_shared<ItemProvider>(filePath);
}

bool ItemProvider::canLoadImage() const {
    const QFileInfo info(filePath_);
    if (!info.isFile() || !info.isReadable())
        return false;
    const QByteArray suffix = info.suffix().toLower().toLatin1();
    if (!suffix.isEmpty() && QImageReader::supportedImageFormats().contains(suffix))
        return true;
    // Pictures saved without an extension still count when their header says so.
    return !QImageReader::imageFormat(filePath_).isEmpty();
}

void ItemProvider::loadImage(ImageCompletion completion) const {
    if (!completion)
        return;
    const QString path = filePath_;
    Dispatch::global(QualityOfService::userInitiated).async([path, completion = std::move(completion)]() {
        QString error;
        ImagePtr image = Image::fromFile(path, 1.0, &error);
        if (image)
            error.clear();
        completion(std::move(image), std::move(error));
    });
}
