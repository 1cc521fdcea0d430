#pragma once

#include "platform/Image.h"
#include "platform/PhotoPicker.h"
#include "shell/MediaItem.h"

#include <QString>
#include <vector>

// The answers of the ways BaseViewController offers to bring a medium in. Each is held weakly: an
// editor that has gone away is simply not told.

class ImageVideoMediaPickerDelegate {
public:
    virtual ~ImageVideoMediaPickerDelegate() = default;
    virtual void pickedVideo(const QString& url) = 0;
    virtual void pickedImage(const ImagePtr& image) = 0;
    virtual void pickCancelled() = 0;
};

class PhotosMediaPickerDelegate {
public:
    virtual ~PhotosMediaPickerDelegate() = default;
    // On the main queue, in the order the loads finished; items that failed to load are missing, so the
    // list may be shorter than the selection. `picker` is what the sheet was asked for: the sheet itself
    // has been dismissed before any answer, so a delegate that wants another choice asks again.
    virtual void pickedMedia(const std::vector<MediaItem>& items, const PickerConfiguration& picker) = 0;
    // The user picked nothing. The default does nothing more.
    virtual void pickedMediaCancelled() {}
};

class FileMediaPickerDelegate {
public:
    virtual ~FileMediaPickerDelegate() = default;
    virtual void pickedFiles(const std::vector<MediaItem>& items) = 0;
};

class ImagePlayGroundPostProcessingDelegate {
public:
    virtual ~ImagePlayGroundPostProcessingDelegate() = default;
    virtual void playgroundImageReady(const ImagePtr& image) = 0;
};

// The picture generator's answers; BaseViewController is its delegate.
class ImageGenerationViewControllerDelegate {
public:
    virtual ~ImageGenerationViewControllerDelegate() = default;
    virtual void imagePlaygroundDidCreateImageAt(const QString& path) = 0;
    virtual void imagePlaygroundDidCancel() = 0;
};

class IsPlaygroundControllerSupported {};
class ResourceBundleClass {};
