#include "platform/ItemProvider.h"

#include "platform/Dispatch.h"
#include "platform/HeifDecoder.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

ItemProvider::ItemProvider(QString filePath, PhotoMemoryBudget* budget)
    : filePath_(std::move(filePath)), budget_(budget) {}

std::shared_ptr<ItemProvider> ItemProvider::forFile(const QString& filePath) {
    return std::make_shared<ItemProvider>(filePath);
}

bool ItemProvider::canLoadImage() const {
    const QFileInfo info(filePath_);
    if (!info.isFile() || !info.isReadable())
        return false;
    const QByteArray suffix = info.suffix().toLower().toLatin1();
    if (!suffix.isEmpty() && (QImageReader::supportedImageFormats().contains(suffix) ||
                              HeifDecoder::suffixes().contains(QString::fromLatin1(suffix))))
        return true;
    // Pictures saved without an extension still count when their header says so.
    if (!QImageReader::imageFormat(filePath_).isEmpty())
        return true;
    QFile file(filePath_);
    return file.open(QIODevice::ReadOnly) && HeifDecoder::recognizes(file.read(64));
}

void ItemProvider::loadImage(ImageCompletion completion) const {
    DecodeOptions options;
    options.coverSize = displayPixelSize;
    options.budget = budget_;
    load(options, std::move(completion));
}

void ItemProvider::loadFullResolutionImage(ImageCompletion completion) const {
    DecodeOptions options;
    options.budget = budget_;
    options.smallestFraction = 1.0;
    load(options, std::move(completion));
}

void ItemProvider::load(const DecodeOptions& options, ImageCompletion completion) const {
    if (!completion)
        return;
    const QString path = filePath_;
    Dispatch::global(QualityOfService::userInitiated)
        .async([path, options, completion = std::move(completion)]() {
            QString error;
            ImagePtr image = Image::fromFile(path, options, &error);
            if (image)
                error.clear();
            completion(std::move(image), std::move(error));
        });
}
