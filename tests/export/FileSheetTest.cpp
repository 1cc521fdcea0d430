#include "ExportFileReaders.h"
#include "export/ExportScreens.h"
#include "export/SVGController.h"
#include "export/SVGFunction.h"
#include "export/SheetControls.h"
#include "export/TiffController.h"
#include "export/TiffFunction.h"
#include "platform/AppWindow.h"
#include "platform/PhotoLibrary.h"
#include "platform/ProgressHud.h"
#include "platform/Screen.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QColorSpace>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <type_traits>

namespace {

using namespace exportfiles;

class FileSheet : public ::testing::Test {
protected:
    void SetUp() override {
        registerExportScreens();
        qputenv("LUMIVEX_DOCUMENTS_DIR", documents.path().toUtf8());
        // The TIFFs the program keeps in the temporary folder go where the test cleans up.
        savedTmpdir = qgetenv("TMPDIR");
        qputenv("TMPDIR", temporaries.path().toUtf8());
        Screen::main().setScale(3);
        album = std::make_unique<PhotoLibrary>(albumDir.path());
        window.resize(390, 844);
        window.setRootViewController(editor = new ViewController);
        window.makeKeyAndVisible();
    }
    void TearDown() override {
        qunsetenv("LUMIVEX_DOCUMENTS_DIR");
        if (savedTmpdir.isEmpty())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", savedTmpdir);
        ProgressHud::dismiss();
    }

    template <typename Sheet> Sheet* open(ImagePtr image) {
        auto* sheet = new Sheet;
        sheet->shareImage = std::move(image);
        sheet->savingDelegate = &receiver;
        if constexpr (std::is_same_v<Sheet, TiffController>)
            sheet->photoLibrary = album.get();
        editor->present(sheet, true);
        return sheet;
    }

    QStringList albumFiles() const { return QDir(albumDir.path()).entryList(QDir::Files); }

    QTemporaryDir temporaries;
    QByteArray savedTmpdir;
    QTemporaryDir documents;
    QTemporaryDir albumDir;
    std::unique_ptr<PhotoLibrary> album;
    AppWindow window;
    ViewController* editor = nullptr;
    Receiver receiver;
};

TEST_F(FileSheet, TiffIsEightBitRgbaSrgbInAFreshTemporaryFileAndInTheAlbum) {
    const ImagePtr picture = gradientPicture(QSize(90, 60), 3, 9);
    ASSERT_FALSE(picture->bitmap().colorSpace().isValid()); // no colour space of its own
    TiffController* sheet = open<TiffController>(picture);
    EXPECT_EQ(sheet->containerHeight(), 267);
    sheet->downloadbtnAction();
    EXPECT_TRUE(ProgressHud::isVisible());
    EXPECT_EQ(ProgressHud::status(), QStringLiteral("Please Wait..."));
    ASSERT_TRUE(testsupport::waitUntil([&] { return receiver.received.size() == 1; }));
    EXPECT_FALSE(ProgressHud::isVisible());

    const SaveModelDetails first = receiver.received[0];
    EXPECT_EQ(first.shareimage, picture);
    EXPECT_EQ(first.saveType, SavingtypeMethod::TIFF);
    ASSERT_TRUE(first.sharedURL.has_value());
    const QFileInfo file(*first.sharedURL);
    EXPECT_EQ(file.absolutePath(), QFileInfo(QDir::tempPath()).absoluteFilePath());
    EXPECT_TRUE(QRegularExpression(
                    QStringLiteral("^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\.tiff$"))
                    .match(file.fileName())
                    .hasMatch())
        << file.fileName().toStdString();

    const ToolRun info = run(QStringLiteral("tiffinfo"), {*first.sharedURL});
    ASSERT_EQ(info.exitCode, 0) << info.err.toStdString();
    const QString text = QString::fromUtf8(info.out);
    EXPECT_TRUE(text.contains(QStringLiteral("Image Width: 90 Image Length: 60"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Bits/Sample: 8"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Samples/Pixel: 4"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("alpha"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("ICC Profile: <present>"))) << text.toStdString();
    const QImage read(*first.sharedURL);
    EXPECT_EQ(read.colorSpace(), QColorSpace(QColorSpace::SRgb));
    EXPECT_EQ(read.pixelColor(3, 30).alpha(), 0);
    EXPECT_EQ(read.pixelColor(60, 30).rgb(), picture->bitmap().pixelColor(60, 30).rgb());

    // The album holds its own copy of the TIFF; a second save makes a second file and a second asset.
    ASSERT_EQ(albumFiles().size(), 1);
    EXPECT_TRUE(albumFiles()[0].endsWith(QStringLiteral(".tiff")));
    sheet->downloadbtnAction();
    ASSERT_TRUE(testsupport::waitUntil([&] { return receiver.received.size() == 2; }));
    EXPECT_NE(receiver.received[1].sharedURL, first.sharedURL);
    EXPECT_TRUE(QFileInfo::exists(*first.sharedURL));
    EXPECT_EQ(albumFiles().size(), 2);
}

TEST_F(FileSheet, TiffRefusedByTheAlbumLeavesTheHudUpUntilEscapeClosesTheSheet) {
    const QString blocker = albumDir.filePath(QStringLiteral("blocker"));
    ASSERT_TRUE(QFile(blocker).open(QIODevice::WriteOnly));
    album->setFolder(blocker + QStringLiteral("/album"));
    QPointer<TiffController> sheet = open<TiffController>(gradientPicture(QSize(30, 30), 3));
    sheet->downloadbtnAction();
    testsupport::spin(300);
    EXPECT_TRUE(receiver.received.isEmpty());
    EXPECT_TRUE(ProgressHud::isVisible());
    EXPECT_EQ(editor->presentedViewController(), sheet);

    QWidget* focus = QApplication::focusWidget();
    QTest::keyClick(focus ? focus : static_cast<QWidget*>(&window), Qt::Key_Escape);
    EXPECT_FALSE(ProgressHud::isVisible());
    EXPECT_EQ(editor->presentedViewController(), nullptr);
}

TEST_F(FileSheet, SvgIsThePngWrappedByteForByteAndReadsBackAsThePicture) {
    const ImagePtr picture = gradientPicture(QSize(300, 150), 3); // 100 × 50 points, opaque
    SVGController* sheet = open<SVGController>(picture);
    EXPECT_EQ(sheet->containerHeight(), 300);
    sheet->downloadBtnAction();
    ASSERT_EQ(receiver.received.size(), 1);
    EXPECT_FALSE(ProgressHud::isVisible());
    const SaveModelDetails details = receiver.received[0];
    EXPECT_EQ(details.saveType, SavingtypeMethod::SVG);
    const QString path = QDir(documents.path()).filePath(QStringLiteral("UntitledSVG.svg"));
    ASSERT_EQ(details.sharedURL, path);

    const QByteArray bytes = readAll(path);
    const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100.0\" height=\"50.0\" "
                            "viewBox=\"0 0 100.0 50.0\">\n"
                            "    <image href=\"data:image/png;base64,";
    const QByteArray tail = "\" width=\"100.0\" height=\"50.0\" />\n</svg>";
    ASSERT_TRUE(bytes.startsWith(head)) << bytes.left(200).toStdString();
    ASSERT_TRUE(bytes.endsWith(tail)) << bytes.right(80).toStdString();
    const QByteArray base64 = bytes.mid(head.size(), bytes.size() - head.size() - tail.size());
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^[A-Za-z0-9+/]+={0,2}$"))
                    .match(QString::fromLatin1(base64))
                    .hasMatch());

    const ToolRun lint = run(QStringLiteral("xmllint"), {QStringLiteral("--noout"), path});
    EXPECT_EQ(lint.exitCode, 0) << lint.err.toStdString();

    // The embedded picture, read independently, and what librsvg draws at its pixel size.
    QTemporaryDir temp;
    const QString embedded = temp.filePath(QStringLiteral("embedded.png"));
    QFile out(embedded);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(QByteArray::fromBase64(base64));
    out.close();
    const QImage embeddedPixels = readPngIndependently(embedded);
    ASSERT_EQ(embeddedPixels.size(), QSize(300, 150));
    EXPECT_LE(maxChannelDifference(embeddedPixels, picture->bitmap()), 1);

    const QString rendered = temp.filePath(QStringLiteral("rendered.png"));
    const ToolRun draw = run(QStringLiteral("rsvg-convert"),
                             {QStringLiteral("-w"), QStringLiteral("300"), QStringLiteral("-h"),
                              QStringLiteral("150"), QStringLiteral("-o"), rendered, path});
    ASSERT_EQ(draw.exitCode, 0) << draw.err.toStdString();
    EXPECT_LE(maxChannelDifference(readPngIndependently(rendered), picture->bitmap()), 1);
}

TEST_F(FileSheet, SvgFlattensClearPartsUnlessTickedAndASecondSaveReplacesTheFirst) {
    // 201 × 99 pixels at scale 2: 100.5 × 49.5 points, sizes that are no whole numbers.
    const ImagePtr picture = gradientPicture(QSize(201, 99), 2, 40);
    SVGController* sheet = open<SVGController>(picture);
    sheet->downloadBtnAction();
    const QString path = *receiver.received[0].sharedURL;
    const QByteArray flat = readAll(path);
    EXPECT_TRUE(flat.contains("width=\"100.5\" height=\"49.5\" viewBox=\"0 0 100.5 49.5\""));
    EXPECT_NE(receiver.received[0].shareimage, picture); // flattened
    const QImage flatPixels = receiver.received[0].shareimage->bitmap();
    EXPECT_EQ(flatPixels.pixelColor(flatPixels.width() / 20, 20), QColor(Qt::white));

    QTest::mouseClick(sheet->trasnparentView(), Qt::LeftButton);
    EXPECT_TRUE(sheet->trasparentChoose);
    sheet->downloadBtnAction();
    ASSERT_EQ(receiver.received.size(), 2);
    EXPECT_EQ(receiver.received[1].shareimage, picture);
    EXPECT_EQ(receiver.received[1].sharedURL, path);
    const QByteArray clear = readAll(path);
    EXPECT_NE(clear, flat);
    EXPECT_EQ(QDir(documents.path()).entryList(QDir::Files), QStringList{QStringLiteral("UntitledSVG.svg")});

    const qsizetype start = clear.indexOf("base64,") + 7;
    const QByteArray png = QByteArray::fromBase64(clear.mid(start, clear.indexOf('"', start) - start));
    QTemporaryDir temp;
    QFile out(temp.filePath(QStringLiteral("embedded.png")));
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(png);
    out.close();
    const QImage pixels = readPngIndependently(out.fileName());
    ASSERT_EQ(pixels.size(), QSize(201, 99));
    EXPECT_EQ(pixels.pixelColor(5, 50).alpha(), 0);
    EXPECT_EQ(pixels.pixelColor(150, 50).alpha(), 255);
}

TEST(SvgFunction, APictureWithoutPngGivesNoTextAndAnUnwritableFolderNoUrl) {
    EXPECT_TRUE(SVGFunction::svgText(nullptr, 10, 10).isEmpty());
    QTemporaryDir temp;
    const QString blocker = temp.filePath(QStringLiteral("blocker"));
    ASSERT_TRUE(QFile(blocker).open(QIODevice::WriteOnly));
    EXPECT_FALSE(SVGFunction::writeText(QStringLiteral("<svg/>"), blocker + QStringLiteral("/x.svg")));
    EXPECT_EQ(QDir(temp.path()).entryList(QDir::Files), QStringList{QStringLiteral("blocker")});
}

} // namespace
