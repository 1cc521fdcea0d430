#include "ExportFileReaders.h"
#include "export/EditorSavingChain.h"
#include "export/ExportScreens.h"
#include "export/FileTypeRowView.h"
#include "export/JPGController.h"
#include "export/PNGController.h"
#include "export/RateShareController.h"
#include "export/SVGController.h"
#include "export/SavingTypeCell.h"
#include "export/SavingTypeController.h"
#include "export/SheetControls.h"
#include "export/TiffController.h"
#include "platform/AppWindow.h"
#include "platform/ImageView.h"
#include "platform/PhotoLibrary.h"
#include "platform/Screen.h"
#include "platform/ShareSheet.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using namespace exportfiles;

// An editor as the mirror and layout editors are: a canvas it snapshots, and the shared chain.
class StandInEditor : public ViewController {
public:
    StandInEditor() {
        canvas = new QLabel(this);
        canvas->setGeometry(0, 100, 240, 160);
        canvas->setStyleSheet(QStringLiteral("background: qlineargradient(x1:0, y1:0, x2:1, y2:1,"
                                             " stop:0 #2a6, stop:1 #c42);"));
        chain = new EditorSavingChain(this, [this] {
            ++snapshots;
            return Image::make(canvas->grab().toImage(), 1.0);
        });
    }
    QLabel* canvas = nullptr;
    EditorSavingChain* chain = nullptr;
    int snapshots = 0;
};

class SavingChain : public ::testing::Test {
protected:
    void SetUp() override {
        registerExportScreens();
        qputenv("LUMIVEX_DOCUMENTS_DIR", documents.path().toUtf8());
        // The TIFFs the program keeps in the temporary folder go where the test cleans up.
        savedTmpdir = qgetenv("TMPDIR");
        qputenv("TMPDIR", temporaries.path().toUtf8());
        Screen::main().setScale(3);
        ShareSheet::resetPresentationRecord();
        album = std::make_unique<PhotoLibrary>(albumDir.path());
        window.resize(390, 844);
        window.setRootViewController(editor = new StandInEditor);
        window.makeKeyAndVisible();
        editor->chain->photoLibrary = album.get();
    }
    void TearDown() override {
        qunsetenv("LUMIVEX_DOCUMENTS_DIR");
        if (savedTmpdir.isEmpty())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", savedTmpdir);
    }

    // Opens the chooser from the editor and clicks the row of `type`; answers the sheet it opened.
    template <typename Sheet> Sheet* choose(SavingtypeMethod type) {
        SavingTypeController* chooser = editor->chain->openChooser();
        EXPECT_TRUE(chooser->isimage);
        EXPECT_EQ(chooser->selectedIndex, 8);
        for (int row = 0; row < chooser->numberOfItems(); ++row)
            EXPECT_TRUE(chooser->cellForRow(row)->selectbtn()->isHidden()) << row;
        EXPECT_FALSE(chooser->cellForRow(1)->suggestedLbl()->isHidden());
        QTest::mouseClick(chooser->cellForRow(static_cast<int>(type)), Qt::LeftButton);
        auto* sheet = qobject_cast<Sheet*>(editor->presentedViewController());
        EXPECT_NE(sheet, nullptr);
        return sheet;
    }

    RateShareController* waitForShareScreen() {
        testsupport::waitUntil(
            [&] { return qobject_cast<RateShareController*>(editor->presentedViewController()); });
        return qobject_cast<RateShareController*>(editor->presentedViewController());
    }

    QStringList albumFiles() const { return QDir(albumDir.path()).entryList(QDir::Files, QDir::Name); }

    QTemporaryDir temporaries;
    QByteArray savedTmpdir;
    QTemporaryDir documents;
    QTemporaryDir albumDir;
    std::unique_ptr<PhotoLibrary> album;
    AppWindow window;
    StandInEditor* editor = nullptr;
};

TEST_F(SavingChain, JpgGoesThroughTheChooserToTheShareScreenAndTheAlbum) {
    auto* sheet = choose<JPGController>(SavingtypeMethod::JPG);
    ASSERT_TRUE(sheet);
    EXPECT_EQ(editor->snapshots, 1);
    ASSERT_TRUE(sheet->shareImage);
    EXPECT_EQ(sheet->shareImage->size(), QSizeF(240, 160));
    EXPECT_EQ(sheet->savingDelegate.get(), static_cast<DataPassingToShareController*>(editor->chain));
    sheet->sizeSlider()->setValue(500);
    QTest::mouseClick(sheet->downloadBtn(), Qt::LeftButton);

    RateShareController* share = waitForShareScreen();
    ASSERT_TRUE(share);
    EXPECT_EQ(share->fetchData, SavingtypeMethod::JPG);
    EXPECT_FALSE(share->sharevideoURL.has_value());
    EXPECT_EQ(editor->chain->enumType, SavingtypeMethod::JPG);
    EXPECT_EQ(share->shareImage, editor->chain->finalsaveImage);
    // 120 × 80 points at the screen's scale, read back by libjpeg.
    ASSERT_EQ(albumFiles().size(), 1);
    EXPECT_EQ(djpegSize(QDir(albumDir.path()).filePath(albumFiles()[0])), QSize(360, 240));
    EXPECT_EQ(ShareSheet::lastPresentedItem().image, share->shareImage);
}

TEST_F(SavingChain, PngWritesDefaultPngThatTheShareScreenStoresAndShares) {
    auto* sheet = choose<PNGController>(SavingtypeMethod::PNG);
    ASSERT_TRUE(sheet);
    const ImagePtr snapshot = sheet->shareImage;
    QTest::mouseClick(sheet->downloadBtn(), Qt::LeftButton);
    RateShareController* share = waitForShareScreen();
    ASSERT_TRUE(share);
    const QString png = QDir(documents.path()).filePath(QStringLiteral("default.png"));
    EXPECT_EQ(share->fetchData, SavingtypeMethod::PNG);
    EXPECT_EQ(share->sharevideoURL, png);
    EXPECT_EQ(share->shareImage, snapshot); // the picture as it came, not the file
    EXPECT_EQ(readPngIndependently(png).size(), QSize(720, 480));
    ASSERT_EQ(albumFiles().size(), 1);
    EXPECT_EQ(djpegSize(QDir(albumDir.path()).filePath(albumFiles()[0])), QSize(720, 480));
    EXPECT_TRUE(testsupport::waitUntil([&] { return ShareSheet::lastPresentedItem().filePath == png; }));
}

TEST_F(SavingChain, TiffAndSvgReachTheShareScreenWithTheirFiles) {
    auto* tiff = choose<TiffController>(SavingtypeMethod::TIFF);
    ASSERT_TRUE(tiff);
    QTest::mouseClick(tiff->downloadBtn(), Qt::LeftButton);
    RateShareController* share = waitForShareScreen();
    ASSERT_TRUE(share);
    EXPECT_EQ(share->fetchData, SavingtypeMethod::TIFF);
    ASSERT_TRUE(share->sharevideoURL.has_value());
    EXPECT_TRUE(share->sharevideoURL->startsWith(QDir::tempPath()));
    EXPECT_EQ(run(QStringLiteral("tiffinfo"), {*share->sharevideoURL}).exitCode, 0);
    // The screen shows the decoded file; the album got the TIFF from the sheet.
    ASSERT_TRUE(share->shareImageView()->image());
    EXPECT_NE(share->shareImageView()->image(), share->shareImage);
    EXPECT_EQ(share->shareImageView()->image()->pixelSize(), QSize(240, 160));
    EXPECT_EQ(albumFiles().size(), 1);
    editor->dismiss(false);

    auto* svg = choose<SVGController>(SavingtypeMethod::SVG);
    ASSERT_TRUE(svg);
    EXPECT_EQ(editor->snapshots, 2);
    QTest::mouseClick(svg->downloadBtn(), Qt::LeftButton);
    share = waitForShareScreen();
    ASSERT_TRUE(share);
    const QString svgPath = QDir(documents.path()).filePath(QStringLiteral("UntitledSVG.svg"));
    EXPECT_EQ(share->fetchData, SavingtypeMethod::SVG);
    EXPECT_EQ(share->sharevideoURL, svgPath);
    EXPECT_EQ(run(QStringLiteral("xmllint"), {QStringLiteral("--noout"), svgPath}).exitCode, 0);
    EXPECT_EQ(albumFiles().size(), 1); // an SVG goes nowhere but the documents folder
    EXPECT_TRUE(testsupport::waitUntil([&] { return ShareSheet::lastPresentedItem().filePath == svgPath; }));
}

TEST_F(SavingChain, AnotherFormatFromInsideASheetStartsOverWithANewSnapshot) {
    auto* png = choose<PNGController>(SavingtypeMethod::PNG);
    ASSERT_TRUE(png);
    QTest::mouseClick(png->trasnparentView(), Qt::LeftButton);
    QTest::mouseClick(png->fileTypeRow(), Qt::LeftButton);
    auto* chooser = qobject_cast<SavingTypeController*>(png->presentedViewController());
    ASSERT_TRUE(chooser);
    EXPECT_EQ(chooser->selectedIndex, static_cast<int>(SavingtypeMethod::PNG));
    QTest::mouseClick(chooser->cellForRow(static_cast<int>(SavingtypeMethod::SVG)), Qt::LeftButton);
    auto* svg = qobject_cast<SVGController*>(editor->presentedViewController());
    ASSERT_TRUE(svg);
    EXPECT_EQ(editor->snapshots, 2);
    EXPECT_FALSE(svg->trasparentChoose); // nothing of the old sheet's options
    EXPECT_EQ(svg->delegate.get(), static_cast<NewSavingMethod*>(editor->chain));
}

} // namespace
