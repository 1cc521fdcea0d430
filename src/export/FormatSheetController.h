#pragma once

#include "export/BottomSheetController.h"
#include "export/SavingProtocols.h"

#include <QString>
#include <optional>

class FileTypeRowView;
class QLabel;
class SavingTypeController;

// What the seven format sheets share: their inputs, the veil, the rounded container with its drag to
// close, the file-type row that opens the chooser and the reaction to its choice, and the load step
// that takes the first frame of a video when no picture is given. A concrete sheet names its type
// and adds its options to `contentLayout()` after calling this class's viewDidLoad.
class FormatSheetController : public BottomSheetController, public SavingMethodPass {
    Q_OBJECT
public:
    explicit FormatSheetController(QWidget* parent = nullptr);

    // Set by whoever opens the sheet, before it is presented.
    ImagePtr shareImage;
    std::optional<QString> videoUrl;
    WeakDelegate<NewSavingMethod> delegate;
    WeakDelegate<DataPassingToShareController> savingDelegate;

    // The working picture, set by the load step; empty until then or when a video has no frame.
    ImagePtr tobeSavedimage;

    virtual SavingtypeMethod savingType() const = 0;

    // The sheet's height when it is given a picture; nothing for formats that set their own (MP4).
    static std::optional<double> sheetHeight(SavingtypeMethod type);
    static QString videoInformationText();
    // The time of the frame taken from a video.
    static constexpr double kVideoFrameTime = 1.0 / 30.0;

    // Opens the chooser over this sheet, with this sheet's type marked. Null when none could be made.
    SavingTypeController* openSavingTypeChooser();
    void savingMethodChosen(SavingtypeMethod type) override;

    // Clears the veil and dismisses animated.
    void backAction();

    FileTypeRowView* fileTypeRow() const { return fileTypeRow_; }
    QLabel* infoLabel() const { return infoLabel_; }

    // The picture's pixels drawn upright, orientation up; the image itself when already upright.
    static ImagePtr uprightImage(const ImagePtr& image);
    // The frame at `seconds`, upright; null when the video gives none.
    static ImagePtr firstFrameImage(const QString& path, double seconds);
    // Opens the share sheet on a file a turn later, so it can be called while the presenter loads.
    static void shareFileURL(const QString& path, ViewController* presenter);

protected:
    void viewDidLoad() override;
    QVBoxLayout* contentLayout() const { return contentLayout_; }
    // Sheets that can play video (MP4) do not show the notice about playback.
    virtual bool showsVideoInformation() const { return true; }

    // The busy indicator of a save in progress. A failed save leaves it up, blocking the sheet; Escape
    // then still closes the sheet and takes the indicator with it, so the user is never stuck.
    void showBusy();
    void hideBusy();
    bool isBusy() const { return busy_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool busy_ = false;
    FileTypeRowView* fileTypeRow_ = nullptr;
    QLabel* infoLabel_ = nullptr;
    QVBoxLayout* contentLayout_ = nullptr;
};
