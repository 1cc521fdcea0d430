#pragma once

#include "platform/Image.h"
#include "platform/PhotoMemoryBudget.h"

#include <QSize>
#include <QString>
#include <functional>
#include <memory>

// One picked item: a file that can be turned into a picture off the main thread. Completions arrive on
// a worker thread, so callers hop back to the main queue themselves.
//
// Pictures are decoded at the size the editors show them and charged to a memory budget shared by every
// photo held; Image::fullResolution goes back to the file where all the pixels matter.
class ItemProvider : public std::enable_shared_from_this<ItemProvider> {
public:
    using ImageCompletion = std::function<void(ImagePtr image, QString error)>;

    // The box a photo is decoded to cover, either way round: the phone's screen at 3×, 390 × 844 points.
    // A collage is saved at the canvas's size in points times 3, and its canvas and every pane (its
    // overhang included) lie within the screen, so no pane is ever drawn at more pixels than this,
    // whatever the layout or ratio. A 12 MP photo comes out at 3000 × 2250.
    static constexpr QSize displayPixelSize{1170, 2532};

    explicit ItemProvider(QString filePath, PhotoMemoryBudget* budget = &PhotoMemoryBudget::shared());
    static std::shared_ptr<ItemProvider> forFile(const QString& filePath);

    const QString& filePath() const { return filePath_; }

    // Whether the item claims to be a picture: an existing file whose name or first bytes say image.
    // Cheap enough for the main thread; a file that claims to be a picture may still fail to decode.
    bool canLoadImage() const;

    // Decodes on a global queue and calls `completion` there, once, with a picture or with the reason
    // there is none. The picture covers displayPixelSize, or is smaller when the budget is short.
    void loadImage(ImageCompletion completion) const;
    // The same with every pixel of the file, for a photo that leaves the program as it is; still
    // refused when the budget cannot hold it.
    void loadFullResolutionImage(ImageCompletion completion) const;

private:
    void load(const DecodeOptions& options, ImageCompletion completion) const;

    QString filePath_;
    PhotoMemoryBudget* budget_;
};
