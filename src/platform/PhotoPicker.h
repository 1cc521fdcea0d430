#pragma once

#include "platform/ItemProvider.h"
#include "platform/ViewController.h"

#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QAbstractButton;
class QLabel;
class QPushButton;
class QScrollArea;

struct PickerConfiguration {
    int selectionLimit = 0; // 0 = no limit
    bool imagesOnly = true;
};

struct PickerResult {
    std::shared_ptr<ItemProvider> itemProvider;
};

// A sheet over the user's photos: the album folder and the Pictures folder as a grid of thumbnails, plus
// "Browse…" for any file on disk. The selection keeps the order of the taps, shown as numbered badges,
// and never grows past the configured limit.
class PhotoPicker : public ViewController {
    Q_OBJECT
public:
    using Completion = std::function<void(std::vector<PickerResult>)>;
    using TestSource = std::function<std::optional<QStringList>(const PickerConfiguration&)>;

    explicit PhotoPicker(PickerConfiguration configuration, QWidget* parent = nullptr);
    ~PhotoPicker() override;

    // Presents a picker over `presenter` and calls `completion` on the main queue once the picker has
    // been dismissed: the picked items in selection order, or nothing when the user cancelled.
    static void present(ViewController* presenter, const PickerConfiguration& configuration,
                        Completion completion);

    // Stands in for the user while set: `present` shows no sheet and answers with the source's files, in
    // its order and cut to the selection limit, or with nothing for nullopt. An empty function restores
    // the real sheet.
    static void setTestSource(TestSource source);
    // What the last `present` asked for, real or not.
    static std::optional<PickerConfiguration> lastConfiguration();

    // The album folder ($LUMIVEX_PHOTO_LIBRARY, else Pictures/Lumivex) and the Pictures folder.
    static QStringList libraryFolders();

    const PickerConfiguration& configuration() const { return configuration_; }
    // Called once, with the results, when the user adds or cancels. The picker does not dismiss itself.
    void setFinishHandler(Completion handler) { finishHandler_ = std::move(handler); }

    // The files on show, newest first, and the picked ones in the order they were picked.
    QStringList shownFiles() const;
    const QStringList& selectedFiles() const { return selection_; }
    // The grid cell of a shown file, for a tap.
    QAbstractButton* cellForFile(const QString& path) const;
    // Answers whether the tap changed the selection; a tap at the limit is refused with a hint.
    bool toggleSelection(const QString& path);
    // What "Browse…" does with the files chosen in the dialog: shows them first and picks them in order,
    // as far as the limit allows.
    void addBrowsedFiles(const QStringList& paths);
    // Whether the thumbnail of a file has been made (or given up on).
    bool isThumbnailReady(const QString& path) const;

    QPushButton* addButton() const { return addButton_; }
    QPushButton* cancelButton() const { return cancelButton_; }
    QPushButton* browseButton() const { return browseButton_; }
    QLabel* hintLabel() const { return hintLabel_; }

    void confirm();
    void cancel();

protected:
    void viewDidLoad() override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Cell;

    void addCell(const QString& path, bool atFront);
    void requestThumbnail(Cell* cell);
    void relayoutGrid();
    void refreshSelectionState();
    void finish(bool confirmed);
    void browse();

    PickerConfiguration configuration_;
    Completion finishHandler_;
    bool finished_ = false;
    QStringList selection_;
    QList<Cell*> cells_;
    QScrollArea* scrollArea_ = nullptr;
    QWidget* grid_ = nullptr;
    QLabel* titleLabel_ = nullptr;
    QLabel* emptyLabel_ = nullptr;
    QLabel* hintLabel_ = nullptr;
    QPushButton* addButton_ = nullptr;
    QPushButton* cancelButton_ = nullptr;
    QPushButton* browseButton_ = nullptr;
};
