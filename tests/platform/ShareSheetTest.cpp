#include "platform/ShareSheet.h"
#include "platform/AppWindow.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QFile>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

namespace {

// Stands in for the desktop's opener so that tests see what would be opened without launching anything.
class UrlCatcher : public QObject {
    Q_OBJECT
public:
    UrlCatcher() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "handle"); }
    ~UrlCatcher() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }
    QList<QUrl> opened;
public slots:
    void handle(const QUrl& url) { opened << url; }
};

class ShareSheetTest : public ::testing::Test {
protected:
    void SetUp() override {
        ShareSheet::resetPresentationRecord();
        window.setRootViewController(root = new ViewController);
        window.makeKeyAndVisible();
        QImage bitmap(30, 20, QImage::Format_RGB32);
        bitmap.fill(QColor(10, 120, 200));
        picture = Image::make(bitmap);
        filePath = temp.filePath(QStringLiteral("made.pdf"));
        QFile file(filePath);
        file.open(QIODevice::WriteOnly);
        file.write("%PDF-1.4 bytes");
    }

    static void flush() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    QTemporaryDir temp;
    AppWindow window;
    ViewController* root = nullptr;
    ImagePtr picture;
    QString filePath;
};

TEST_F(ShareSheetTest, PresentationsAreRecordedAndCancelLeavesNoTrace) {
    EXPECT_EQ(ShareSheet::present(nullptr, ShareItem::forImage(picture)), nullptr);
    EXPECT_EQ(ShareSheet::presentationCount(), 0);

    QPointer<ShareSheet> sheet = ShareSheet::present(root, ShareItem::forImage(picture));
    EXPECT_EQ(ShareSheet::presentationCount(), 1);
    EXPECT_EQ(ShareSheet::lastPresentedItem().image, picture);
    EXPECT_EQ(ShareSheet::visibleSheet(&window), sheet);
    EXPECT_EQ(root->presentedViewController(), sheet);
    for (const char* title : {"Copy", "Open", "Show in Folder", "Save As…", "Cancel"})
        EXPECT_NE(sheet->buttonWithTitle(QString::fromUtf8(title)), nullptr) << title;

    QTest::mouseClick(sheet->buttonWithTitle(QStringLiteral("Cancel")), Qt::LeftButton);
    flush();
    EXPECT_TRUE(sheet.isNull());
    EXPECT_EQ(root->presentedViewController(), nullptr);

    // Sharing again from the same screen is a second presentation.
    ShareSheet::present(root, ShareItem::forFile(filePath), false);
    EXPECT_EQ(ShareSheet::presentationCount(), 2);
    EXPECT_EQ(ShareSheet::lastPresentedItem().filePath, filePath);
}

TEST_F(ShareSheetTest, StaysAboveAScreenRaisedAfterItsPresentation) {
    // A screen that shares from its load step is raised after the sheet appears.
    ShareSheet* sheet = ShareSheet::present(root, ShareItem::forImage(picture), false);
    root->raise();
    EXPECT_EQ(window.childAt(window.width() / 2, window.height() - 20)->window(), &window);
    QWidget* under = window.childAt(window.width() / 2, window.height() - 20);
    EXPECT_TRUE(under == sheet || sheet->isAncestorOf(under));
}

TEST_F(ShareSheetTest, CopyPutsThePictureOrTheFileOnTheClipboard) {
    ShareSheet::present(root, ShareItem::forImage(picture), false)->copy();
    const QImage copied = QApplication::clipboard()->image();
    EXPECT_EQ(copied.size(), QSize(30, 20));
    EXPECT_EQ(copied.pixelColor(5, 5), QColor(10, 120, 200));
    flush();

    ShareSheet::present(root, ShareItem::forFile(filePath), false)->copy();
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    ASSERT_TRUE(mime && mime->hasUrls());
    EXPECT_EQ(mime->urls().value(0), QUrl::fromLocalFile(filePath));
    flush();
    EXPECT_EQ(root->presentedViewController(), nullptr);
}

TEST_F(ShareSheetTest, SaveAsCopiesTheFileOrWritesThePicture) {
    const QString copyPath = temp.filePath(QStringLiteral("copy.pdf"));
    QFile(copyPath).open(QIODevice::WriteOnly); // the dialog already asked about replacing
    EXPECT_TRUE(ShareSheet::present(root, ShareItem::forFile(filePath), false)->saveAs(copyPath));
    QFile copy(copyPath);
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), QByteArray("%PDF-1.4 bytes"));
    flush();

    const QString jpegPath = temp.filePath(QStringLiteral("picture.jpg"));
    EXPECT_TRUE(ShareSheet::present(root, ShareItem::forImage(picture), false)->saveAs(jpegPath));
    QImage written(jpegPath, "JPEG");
    EXPECT_EQ(written.size(), QSize(30, 20));
    flush();

    ShareSheet* failing = ShareSheet::present(root, ShareItem::forImage(picture), false);
    EXPECT_FALSE(failing->saveAs(temp.filePath(QStringLiteral("no/such/folder/x.png"))));
    EXPECT_FALSE(failing->lastError().isEmpty());
}

TEST_F(ShareSheetTest, OpenAndShowInFolderHandTheDesktopFileUrls) {
    UrlCatcher catcher;
    EXPECT_TRUE(ShareSheet::present(root, ShareItem::forFile(filePath), false)->open());
    flush();
    EXPECT_TRUE(ShareSheet::present(root, ShareItem::forFile(filePath), false)->showInFolder());
    flush();
    // A picture in memory is opened from a temporary file.
    EXPECT_TRUE(ShareSheet::present(root, ShareItem::forImage(picture), false)->open());
    ASSERT_EQ(catcher.opened.size(), 3);
    EXPECT_EQ(catcher.opened[0], QUrl::fromLocalFile(filePath));
    EXPECT_EQ(catcher.opened[1], QUrl::fromLocalFile(temp.path()));
    EXPECT_EQ(QImage(catcher.opened[2].toLocalFile()).size(), QSize(30, 20));
    QFile::remove(catcher.opened[2].toLocalFile());
}

} // namespace

#include "ShareSheetTest.moc"
