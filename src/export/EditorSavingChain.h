#pragma once

#include "export/SavingProtocols.h"

#include <QObject>
#include <QPointer>
#include <functional>

class FormatSheetController;
class PhotoLibrary;
class RateShareController;
class SavingTypeController;
class ViewController;

// The editor's end of the saving chain, shared by the editors that save through the format chooser.
// The editor owns one (as a child) and hands it a way to snapshot its canvas:
//
//   openChooser()        → the chooser over the editor, nothing marked;
//   savingMethodChosen / newSavingMethodChosen
//                        → a fresh snapshot into a new format sheet of that type;
//   saveDetailsPassed    → the sheet goes, and the share screen opens with what it made.
//
// Everything runs on the main thread; saveDetailsPassed may be called from any thread and hops there
// itself. A snapshot that comes back empty opens nothing.
class EditorSavingChain : public QObject,
                          public SavingMethodPass,
                          public NewSavingMethod,
                          public DataPassingToShareController {
    Q_OBJECT
public:
    using Snapshot = std::function<ImagePtr()>;

    EditorSavingChain(ViewController* editor, Snapshot snapshot);

    // The storyboard identifier of a format's sheet.
    static QString sheetIdentifier(SavingtypeMethod type);

    // Where the share screen and the TIFF sheet write album entries; the shared album by default.
    PhotoLibrary* photoLibrary;

    // What the last finished save made, as the share screen was given it.
    ImagePtr finalsaveImage;
    std::optional<QString> finalURL;
    SavingtypeMethod enumType = SavingtypeMethod::JPG;

    // Presents the format chooser over the editor, for a picture, with no row marked.
    SavingTypeController* openChooser();
    // Presents the sheet of `type` with a new snapshot; null when the snapshot is empty.
    FormatSheetController* openFormatSheet(SavingtypeMethod type);

    void savingMethodChosen(SavingtypeMethod type) override;
    void newSavingMethodChosen(SavingtypeMethod type) override;
    void saveDetailsPassed(const SaveModelDetails& details) override;

private:
    void presentShareScreen();

    QPointer<ViewController> editor_;
    Snapshot snapshot_;
};
