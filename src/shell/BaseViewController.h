#pragma once

#include "platform/Image.h"
#include "platform/PhotoPicker.h"
#include "platform/ViewController.h"
#include "platform/WeakDelegate.h"
#include "shell/MediaItem.h"
#include "shell/MediaPickerDelegates.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

// What the classic picker hands back for one choice: a movie's file, a picture, or both at once.
struct ImagePickerInfo {
    std::optional<QString> mediaURL;
    ImagePtr originalImage;
};

// The base of the editors that bring in pictures and videos: the camera, the library, the multi-selection
// photo picker, the file picker and the picture generator. Each answers through its own delegate, held
// weakly and filled by the subclass with itself; a delegate that is gone, or was never set, hears nothing.
//
// Everything here runs on the main thread; loading leaves it through Dispatch and comes back before any
// delegate is called. Loading failures are printed or silent and only leave the item out of the list:
// alerts are shown for the picture generator alone.
class BaseViewController : public ViewController, public ImageGenerationViewControllerDelegate {
    Q_OBJECT
public:
    explicit BaseViewController(QWidget* parent = nullptr);
    ~BaseViewController() override;

    WeakDelegate<PhotosMediaPickerDelegate> photoMediaPickerDelegate;
    WeakDelegate<FileMediaPickerDelegate> fileMediaPickerDelegate;
    WeakDelegate<ImagePlayGroundPostProcessingDelegate> playgroundProcessDelegate;
    WeakDelegate<ImageVideoMediaPickerDelegate> imageVideoPickerDelegate;

    // The classic picker's answer: the video first, then the picture; both fire when both came.
    void imagePickerDidFinishPicking(const ImagePickerInfo& info);
    void imagePickerDidCancel();

    // The file picker's answer: pictures are decoded, movies copied into the temporary folder, anything
    // else left out; fileMediaPickerDelegate hears the list once every file is done.
    void documentPickerDidPickDocuments(const QStringList& paths);
    void documentPickerWasCancelled() {}

    void imagePlaygroundDidCreateImageAt(const QString& path) override;
    void imagePlaygroundDidCancel() override;

protected:
    // Shows the camera where the machine has one; without a camera nothing happens.
    void openCamera();
    // The library for one picture, or for one video when imagesOnly is false.
    void openLibrary(bool imagesOnly);
    // The multi-selection picker for up to `limit` pictures (0 for no limit).
    void openPhotoPicker(int limit);
    // One picture from anywhere on disk.
    void openDocumentPicker();

private:
    void photoPickerDidFinish(const std::vector<PickerResult>& results,
                              const PickerConfiguration& configuration);
    void libraryPickerDidFinish(const std::vector<PickerResult>& results, bool imagesOnly);
};
