#pragma once

#include "export/SavingtypeMethod.h"
#include "platform/PhotoLibrary.h"
#include "platform/ViewController.h"

#include <optional>

class ImageView;
class QLabel;
class QPushButton;
class VideoPlayerView;

// The last screen of every save. At load it puts the result in the album where the format calls for
// it, shows the picture or plays the video, and opens the share sheet by itself.
class RateShareController : public ViewController {
    Q_OBJECT
public:
    // The store page listing the maker's other applications.
    static const QString kMoreAppsURL;

    explicit RateShareController(QWidget* parent = nullptr);

    // Set by the opener before presenting. `sharevideoURL` is the made file of any format; it is
    // absent for JPG only.
    ImagePtr shareImage;
    std::optional<QString> sharevideoURL;
    SavingtypeMethod fetchData = SavingtypeMethod::JPG;
    // Where album writes go; the shared album unless a test or caller sets another.
    PhotoLibrary* photoLibrary = &PhotoLibrary::shared();

    void shareClick();
    void backClick();
    void moreclick();

    ImageView* shareImageView() const { return shareImageView_; }
    VideoPlayerView* playerView() const { return playerView_; }
    QLabel* messageLabel() const { return messageLabel_; }
    QPushButton* shareButton() const { return shareButton_; }
    QPushButton* backButton() const { return backButton_; }
    QPushButton* moreButton() const { return moreButton_; }
    // What the album write at load gave; nothing when the format writes nothing there.
    const std::optional<PhotoLibraryResult>& albumResult() const { return albumResult_; }

protected:
    void viewDidLoad() override;
    void viewWillDisappear(bool animated) override;

private:
    // Writes to the album and builds what is shown; false when there is nothing to share.
    bool loadResult();
    void writeToAlbum(const std::function<PhotoLibraryResult()>& write);
    void showMessage(const QString& text);
    void shareCurrent();

    ImageView* shareImageView_ = nullptr;
    VideoPlayerView* playerView_ = nullptr;
    QLabel* messageLabel_ = nullptr;
    QPushButton* shareButton_ = nullptr;
    QPushButton* backButton_ = nullptr;
    QPushButton* moreButton_ = nullptr;
    std::optional<PhotoLibraryResult> albumResult_;
    bool shareable_ = false;
};
