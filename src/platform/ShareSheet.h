#pragma once

#include "platform/Image.h"
#include "platform/ViewController.h"

#include <QString>

class QPushButton;

// What is being shared: a picture held in memory or a file on disk.
struct ShareItem {
    ImagePtr image;
    QString filePath;

    static ShareItem forImage(ImagePtr image) { return ShareItem{std::move(image), QString()}; }
    static ShareItem forFile(QString path) { return ShareItem{nullptr, std::move(path)}; }
    bool isFile() const { return !filePath.isEmpty(); }
};

// The desktop's share sheet: a card from the bottom with Copy, Open, Show in Folder, Save As… and
// Cancel. Every action closes the sheet; Cancel leaves no trace.
class ShareSheet : public ViewController {
    Q_OBJECT
public:
    explicit ShareSheet(ShareItem item, QWidget* parent = nullptr);

    // Presents a new sheet from `presenter` and records the presentation. Null presenter: nothing.
    static ShareSheet* present(ViewController* presenter, ShareItem item, bool animated = true);

    // Every presentation in this process, so that screens which share at load can be checked.
    static int presentationCount();
    static ShareItem lastPresentedItem();
    static void resetPresentationRecord();
    // The sheet shown on top of `window`, if any.
    static ShareSheet* visibleSheet(QWidget* window);

    const ShareItem& item() const { return item_; }

    // The actions; each closes the sheet and answers whether it did what it says.
    bool copy();
    bool open();
    bool showInFolder();
    // Without a target path the user picks one in a file dialog.
    bool saveAs(const QString& targetPath = QString());
    void cancel();

    QPushButton* buttonWithTitle(const QString& title) const;
    // The reason the last action failed, for the message under the buttons.
    QString lastError() const { return lastError_; }

protected:
    void viewDidLoad() override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool finish(bool ok, const QString& error = QString());
    // A picture as a temporary file, for actions that need a file.
    QString materialisedPath();

    ShareItem item_;
    QWidget* card_ = nullptr;
    QString lastError_;
    QString temporaryPath_;
};
