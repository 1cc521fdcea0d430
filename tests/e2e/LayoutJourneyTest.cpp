#include "e2e/Journey.h"
#include "export/EditorSavingChain.h"
#include "export/JPGController.h"
#include "export/PNGController.h"
#include "export/RateShareController.h"
#include "export/SavingTypeCell.h"
#include "export/SavingTypeController.h"
#include "export/SheetControls.h"
#include "export/TiffController.h"
#include "filters/FilterStripView.h"
#include "frames/BackgroundColorList.h"
#include "frames/BtnsCell.h"
#include "frames/CollageViewController.h"
#include "frames/FrameAreaView.h"
#include "frames/FrameCellItem.h"
#include "frames/GridCell.h"
#include "frames/GridViewController.h"
#include "platform/PhotoPicker.h"
#include "platform/Screen.h"
#include "platform/ShareSheet.h"
#include "shell/FeatureGridCell.h"
#include "shell/NewHomePageController.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using journey::Journey;

struct ReadBack {
    QImage image;
    QString header;
};

QByteArray runTool(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0)
        return {};
    return process.readAllStandardOutput();
}

// djpeg's binary PPM.
QImage readJpeg(const QString& path) {
    const QByteArray ppm = runTool(QStringLiteral("djpeg"), {QStringLiteral("-pnm"), path});
    const QList<QByteArray> head = ppm.left(64).split('\n');
    if (head.size() < 3 || head[0] != "P6")
        return {};
    const QList<QByteArray> size = head[1].split(' ');
    const int w = size.value(0).toInt(), h = size.value(1).toInt();
    const qsizetype offset = head[0].size() + head[1].size() + head[2].size() + 3;
    if (w <= 0 || h <= 0 || ppm.size() < offset + qsizetype(w) * h * 3)
        return {};
    return QImage(reinterpret_cast<const uchar*>(ppm.constData() + offset), w, h, w * 3,
                  QImage::Format_RGB888)
        .copy();
}

// The zlib-only reader of the export tests: prints "width height colour_type bit_depth".
ReadBack readPng(const QString& path, const QString& rgbaOut) {
    const QByteArray out =
        runTool(QStringLiteral("python3"),
                {QStringLiteral(LUMIVEX_TEST_DATA_DIR "/../export/pngpixels.py"), path, rgbaOut});
    const QList<QByteArray> words = out.trimmed().split(' ');
    QFile raw(rgbaOut);
    if (words.size() < 4 || !raw.open(QIODevice::ReadOnly))
        return {};
    const int w = words[0].toInt(), h = words[1].toInt();
    const QByteArray pixels = raw.readAll();
    if (pixels.size() < qsizetype(w) * h * 4)
        return {};
    return {QImage(reinterpret_cast<const uchar*>(pixels.constData()), w, h, w * 4, QImage::Format_RGBA8888)
                .copy(),
            QString::fromLatin1(out)};
}

// libtiff's tiffinfo for the header, ImageMagick (on libtiff) for the pixels.
ReadBack readTiff(const QString& path) {
    const QString info = QString::fromLatin1(runTool(QStringLiteral("tiffinfo"), {path}));
    const QByteArray rgba =
        runTool(QStringLiteral("convert"),
                {path, QStringLiteral("-depth"), QStringLiteral("8"), QStringLiteral("rgba:-")});
    const QRegularExpression sizeLine(QStringLiteral("Image Width: (\\d+) Image Length: (\\d+)"));
    const QRegularExpressionMatch m = sizeLine.match(info);
    if (!m.hasMatch())
        return {};
    const int w = m.captured(1).toInt(), h = m.captured(2).toInt();
    if (rgba.size() < qsizetype(w) * h * 4)
        return {};
    return {
        QImage(reinterpret_cast<const uchar*>(rgba.constData()), w, h, w * 4, QImage::Format_RGBA8888).copy(),
        info};
}

// Mean difference of all channels, after scaling `b` to `a`'s size.
double meanDifference(const QImage& a, const QImage& b) {
    const QImage x = a.convertToFormat(QImage::Format_RGB32);
    const QImage y = b.convertToFormat(QImage::Format_RGB32).scaled(x.size());
    double sum = 0;
    for (int row = 0; row < x.height(); row += 3)
        for (int col = 0; col < x.width(); col += 3) {
            const QRgb p = x.pixel(col, row), q = y.pixel(col, row);
            sum +=
                std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * ((x.height() + 2) / 3) * ((x.width() + 2) / 3));
}

class LayoutJourney : public Journey {
protected:
    // Clicks the middle of a cell of the frame area where the window shows it.
    void tapCell(CollageViewController* editor, int cell) {
        const QPointF centre = editor->mainview()->cell(cell)->frame().center();
        clickAt(editor->mainview()->viewport()->mapTo(window.data(), centre.toPoint()));
    }
    void openTool(CollageViewController* editor, int row) {
        click(editor->toolCells()[row]);
        if (row < CollageViewController::galleryTool) {
            ASSERT_TRUE(testsupport::waitUntil(
                [&] { return editor->panelOffset(CollageViewController::Tool(row)) == 0.0; }));
        }
    }
    // Save → the chooser's row → the sheet of that type, which the caller finishes.
    template <typename Sheet> Sheet* chooseFormat(CollageViewController* editor, int row) {
        click(editor->shareButton());
        auto* chooser = waitForPresented<SavingTypeController>();
        EXPECT_NE(chooser, nullptr);
        if (!chooser)
            return nullptr;
        click(chooser->cellForRow(row));
        return waitForPresented<Sheet>();
    }
    // Waits for the share screen and the share sheet it opens, then goes back to the editor.
    void finishAtShareScreen(CollageViewController* editor) {
        // A screen that slides away takes the clicks meant for what is under it until it has gone.
        QPointer<ShareSheet> sheet = waitForPresented<ShareSheet>();
        ASSERT_NE(sheet, nullptr);
        click(sheet->buttonWithTitle(QStringLiteral("Cancel")));
        ASSERT_TRUE(testsupport::waitUntil([&] { return sheet.isNull(); }));
        QPointer<RateShareController> share = waitForPresented<RateShareController>();
        ASSERT_NE(share, nullptr);
        click(share->backButton());
        ASSERT_TRUE(testsupport::waitUntil([&] { return share.isNull(); }));
        EXPECT_EQ(editor->presentedViewController(), nullptr);
    }
};

TEST_F(LayoutJourney, FourPhotosInAClassicFrameAreSavedAsJpgPngAndTiff) {
    const QStringList photos = putIntoPictures({QStringLiteral("fruits.jpg"), QStringLiteral("baboon.jpg"),
                                                QStringLiteral("building.jpg"), QStringLiteral("apple.jpg"),
                                                QStringLiteral("starry_night.jpg")});
    ASSERT_TRUE(start());
    NewHomePageController* home = skipToHome();
    ASSERT_NE(home, nullptr);

    // Layout card → grid → frame 13, which has four cells.
    click(home->featureCell(2));
    auto* grid = waitForPresented<GridViewController>();
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(grid->cells().size(), 33);
    click(grid->cells()[13]);
    auto* picker = waitForPresented<PhotoPicker>();
    ASSERT_NE(picker, nullptr);
    EXPECT_EQ(picker->configuration().selectionLimit, 4);
    for (int i = 0; i < 4; ++i)
        click(picker->cellForFile(photos[i]));
    click(picker->addButton());
    auto* editor = waitForPresented<CollageViewController>();
    ASSERT_NE(editor, nullptr);
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->mainview()->cell(3)->isVisible(); }));
    EXPECT_EQ(editor->mutableImages.size(), 4u);

    // Another frame of four from the tray.
    openTool(editor, CollageViewController::collageTool);
    click(editor->frameButtons()[3]);
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->index == 15; }));
    ASSERT_TRUE(testsupport::waitUntil([&] {
        return editor->mainview()->cell(0)->frame() ==
               FrameGeometry::cellRects(15, editor->mainview()->areaSize(), 5, 5)[0];
    }));

    // A look on the second cell only.
    tapCell(editor, 1);
    EXPECT_EQ(editor->commontag, 1);
    openTool(editor, CollageViewController::filterTool);
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->filterScrollView() != nullptr; }));
    click(editor->filterScrollView()->buttons()[4]);
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->lookOfCell(1) == 4; }));
    EXPECT_NE(editor->mainview()->cell(1)->image(), editor->mutableImages[1]);
    EXPECT_EQ(editor->mainview()->cell(0)->image(), editor->mutableImages[0]);

    // Spacing and corners from the keyboard on the sliders.
    openTool(editor, CollageViewController::adjustTool);
    click(editor->spacingSlider());
    editor->spacingSlider()->setFocus();
    const int spacingBefore = editor->spacingSlider()->value();
    QTest::keyClick(editor->spacingSlider(), Qt::Key_PageUp);
    EXPECT_GT(editor->spacingSlider()->value(), spacingBefore);
    const double spacing = editor->spacingSlider()->value();
    EXPECT_EQ(editor->mainview()->coordx, spacing);
    EXPECT_EQ(editor->mainview()->cell(0)->frame().topLeft(), QPointF(spacing, spacing));
    editor->cornerSlider()->setFocus();
    QTest::keyClick(editor->cornerSlider(), Qt::Key_PageUp);
    QTest::keyClick(editor->cornerSlider(), Qt::Key_PageUp);
    EXPECT_GT(editor->mainview()->cell(2)->cornerRadius(), 0);

    // A background colour.
    openTool(editor, CollageViewController::colorTool);
    click(editor->colorButtons()[2]);
    EXPECT_EQ(editor->mainview()->backgroundColor(), backgroundColorList()[2]);

    // Replace the third photo from the library.
    tapCell(editor, 2);
    const ImagePtr replaced = editor->mutableImages[2];
    openTool(editor, CollageViewController::galleryTool);
    auto* library = waitForPresented<PhotoPicker>();
    ASSERT_NE(library, nullptr);
    click(library->cellForFile(photos[4]));
    click(library->addButton());
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->mutableImages[2] != replaced; }));
    EXPECT_EQ(editor->mainview()->cell(2)->image(), editor->mutableImages[2]);
    EXPECT_EQ(editor->lookOfCell(1), 4);

    const ImagePtr expected = editor->mainview()->snapshot();
    ASSERT_TRUE(expected);
    EXPECT_EQ(expected->pixelSize(), (editor->mainview()->areaSize() * Screen::main().scale()).toSize());
    const QColor ground = backgroundColorList()[2].toQColor();
    const QPoint margin(1, expected->pixelSize().height() / 2);

    // JPG: straight into the album.
    auto* jpg = chooseFormat<JPGController>(editor, 0);
    ASSERT_NE(jpg, nullptr);
    click(jpg->downloadBtn());
    finishAtShareScreen(editor);
    ASSERT_TRUE(testsupport::waitUntil([&] { return albumFiles().size() == 1; }));
    const QImage fromAlbum = readJpeg(albumFiles().front());
    ASSERT_FALSE(fromAlbum.isNull());
    EXPECT_EQ(fromAlbum.size(), expected->pixelSize());
    EXPECT_LT(meanDifference(expected->bitmap(), fromAlbum), 4.0);
    EXPECT_NEAR(fromAlbum.pixelColor(margin).green(), ground.green(), 8);

    // PNG with transparency kept.
    auto* png = chooseFormat<PNGController>(editor, 1);
    ASSERT_NE(png, nullptr);
    click(png->trasnparentView());
    EXPECT_TRUE(png->trasparentBool);
    click(png->downloadBtn());
    finishAtShareScreen(editor);
    ASSERT_TRUE(editor->savingChain()->finalURL);
    const ReadBack pngBack =
        readPng(*editor->savingChain()->finalURL, sandbox.filePath(QStringLiteral("png.rgba")));
    ASSERT_FALSE(pngBack.image.isNull());
    EXPECT_TRUE(pngBack.header.contains(QStringLiteral(" 6 8")))
        << qPrintable(pngBack.header); // RGBA, 8 bits
    EXPECT_EQ(pngBack.image.size(), expected->pixelSize());
    EXPECT_LT(meanDifference(expected->bitmap(), pngBack.image), 1.0);
    EXPECT_EQ(pngBack.image.pixelColor(margin).alpha(), 255);

    // TIFF, read by libtiff's tools.
    auto* tiff = chooseFormat<TiffController>(editor, 6);
    ASSERT_NE(tiff, nullptr);
    click(tiff->downloadBtn());
    finishAtShareScreen(editor);
    ASSERT_TRUE(editor->savingChain()->finalURL);
    const ReadBack tiffBack = readTiff(*editor->savingChain()->finalURL);
    ASSERT_FALSE(tiffBack.image.isNull()) << qPrintable(tiffBack.header);
    EXPECT_EQ(tiffBack.image.size(), expected->pixelSize());
    EXPECT_LT(meanDifference(expected->bitmap(), tiffBack.image), 1.0);
    EXPECT_NEAR(tiffBack.image.pixelColor(margin).red(), ground.red(), 2);
}

} // namespace
