#pragma once

#include "platform/Image.h"

#include <QString>
#include <functional>
#include <memory>

// One picked item: a file that can be turned into a picture off the main thread. Completions arrive on
// a worker thread, so callers hop back to the main queue themselves.
class ItemProvider : public std::enable_shared_from_this<ItemProvider> {
public:
    using ImageCompletion = std::function<void(ImagePtr image, QString error)>;

    explicit ItemProvider(QString filePath);
    static std::shared_ptr<ItemProvider> forFile(const QString& filePath);

    const QString& filePath() const { return filePath_; }

    // Whether the item claims to be a picture: an existing file whose name or first bytes say image.
    // Cheap enough for the main thread; a file that claims to be a picture may still fail to decode.
    bool canLoadImage() const;

    // Decodes on a global queue and calls `completion` there, once, with a picture or with the reason
    // there is none.
    void loadImage(ImageCompletion completion) const;

private:
    QString filePath_;
};
