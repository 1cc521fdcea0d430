#include "e2e/Journey.h"
#include "export/ColorProfileController.h"
#include "export/EditorSavingChain.h"
#include "export/MP4VideoController.h"
#include "export/PDFPrintController.h"
#include "export/PNGController.h"
#include "export/RateShareController.h"
#include "export/SVGController.h"
#include "export/SavingTypeCell.h"
#include "export/SavingTypeController.h"
#include "export/SheetControls.h"
#include "filters/FilterStripView.h"
#include "mirror/CaptionLabelView.h"
#include "mirror/ColorSwatchStripView.h"
#include "mirror/EditBtnCell.h"
#include "mirror/MirrorCanvasView.h"
#include "mirror/MirrorPattern.h"
#include "mirror/MirrorVController.h"
#include "mirror/TextCell.h"
#include "overlay/FontCell.h"
#include "overlay/FontList.h"
#include "overlay/StickerCategoryController.h"
#include "overlay/StickerCells.h"
#include "overlay/TextEditViewController.h"
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
#include <QScrollArea>
#include <QTest>
#include <QTextEdit>
#include <gtest/gtest.h>

namespace {

using journey::Journey;

QByteArray runTool(const QString& program, const QStringList& arguments, int* exitCode = nullptr) {
    QProcess process;
    process.start(program, arguments);
    const bool finished = process.waitForFinished(60000);
    if (exitCode)
        *exitCode = finished ? process.exitCode() : -1;
    return finished && process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

// The zlib-only PNG reader of the export tests: RGBA pixels.
QImage readPng(const QString& path, const QString& rgbaOut) {
    const QList<QByteArray> words =
        runTool(QStringLiteral("python3"),
                {QStringLiteral(LUMIVEX_TEST_DATA_DIR "/../export/pngpixels.py"), path, rgbaOut})
            .trimmed()
            .split(' ');
    QFile raw(rgbaOut);
    if (words.size() < 4 || !raw.open(QIODevice::ReadOnly))
        return {};
    const int w = words[0].toInt(), h = words[1].toInt();
    const QByteArray pixels = raw.readAll();
    if (pixels.size() < qsizetype(w) * h * 4)
        return {};
    return QImage(reinterpret_cast<const uchar*>(pixels.constData()), w, h, w * 4, QImage::Format_RGBA8888)
        .copy();
}

// A PPM from a tool's standard output (pdftoppm, rsvg-convert through ImageMagick, ffmpeg).
QImage fromTool(const QString& program, const QStringList& arguments) {
    return QImage::fromData(runTool(program, arguments)).convertToFormat(QImage::Format_RGB32);
}

double meanDifference(const QImage& a, const QImage& b) {
    const QImage x = a.convertToFormat(QImage::Format_RGB32);
    const QImage y = b.convertToFormat(QImage::Format_RGB32).scaled(x.size());
    double sum = 0;
    int n = 0;
    for (int row = 0; row < x.height(); row += 3)
        for (int col = 0; col < x.width(); col += 3, ++n) {
            const QRgb p = x.pixel(col, row), q = y.pixel(col, row);
            sum +=
                std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    return n ? sum / (3.0 * n) : 1e9;
}

class MirrorJourney : public Journey {
protected:
    void openTool(int index) { click(editor->toolCells()[index]); }
    void waitForPanel(MirrorVController::Panel panel) {
        ASSERT_TRUE(testsupport::waitUntil([&] {
            QWidget* view = editor->panelView(panel);
            return editor->isPanelShown(panel) && view->geometry().bottom() < editor->height() + 1 &&
                   view->geometry().top() >= editor->height() - view->height() - 200;
        }));
        testsupport::spin(400); // the slide ends
    }
    // Clicks a panel's button that closes it, and waits until it has slid out of the window.
    void closePanel(MirrorVController::Panel panel, const char* button = "closeButton") {
        QWidget* view = editor->panelView(panel);
        click(view->findChild<QPushButton*>(QString::fromLatin1(button)));
        ASSERT_TRUE(testsupport::waitUntil([&] { return view->geometry().top() >= editor->height(); }));
    }
    // Scrolls a strip until `widget` is in view, as a user would, then clicks it.
    void scrollAndClick(QScrollArea* strip, QWidget* widget) {
        strip->ensureWidgetVisible(widget, 0, 0);
        QCoreApplication::processEvents();
        click(widget);
    }
    template <typename Sheet> Sheet* chooseFormat(int row) {
        click(editor->saveButtonView());
        auto* chooser = waitForPresented<SavingTypeController>();
        EXPECT_NE(chooser, nullptr);
        if (!chooser)
            return nullptr;
        click(chooser->cellForRow(row));
        return waitForPresented<Sheet>();
    }
    QString finishAtShareScreen(int timeoutMs = 8000) {
        // A file is offered to the share sheet over the share screen at once; the user cancels it.
        if (auto* sheet = waitForPresented<ShareSheet>(timeoutMs)) {
            EXPECT_FALSE(sheet->item().filePath.isEmpty());
            QPointer<ShareSheet> leaving(sheet);
            click(sheet->buttonWithTitle(QStringLiteral("Cancel")));
            EXPECT_TRUE(testsupport::waitUntil([&] { return leaving.isNull(); }));
        }
        auto* share = waitForPresented<RateShareController>(timeoutMs);
        EXPECT_NE(share, nullptr) << "on top: "
                                  << (topScreen() ? topScreen()->metaObject()->className() : "none");
        if (!share)
            return {};
        QPointer<RateShareController> leaving(share);
        click(share->backButton());
        EXPECT_TRUE(testsupport::waitUntil([&] { return leaving.isNull(); }));
        return editor->savingChain()->finalURL.value_or(QString());
    }

    MirrorVController* editor = nullptr;
};

// From a fresh start: the Mirror card, a photo, a pattern, a caption in another font and colour, a
// sticker, a look on one pane; then the picture saved as PNG, as a print PDF in CMYK with crop marks,
// as SVG and as MP4, each file read back by a tool of its own.
TEST_F(MirrorJourney, OnePhotoBecomesAMirrorWithCaptionStickerAndLookSavedInFourFormats) {
    const QStringList photos = putIntoPictures({QStringLiteral("fruits.jpg")});
    ASSERT_TRUE(start());
    NewHomePageController* home = skipToHome();
    ASSERT_NE(home, nullptr);

    click(home->featureCell(3));
    auto* picker = waitForPresented<PhotoPicker>();
    ASSERT_NE(picker, nullptr);
    EXPECT_EQ(picker->configuration().selectionLimit, 1);
    click(picker->cellForFile(photos[0]));
    click(picker->addButton());
    editor = waitForPresented<MirrorVController>();
    ASSERT_NE(editor, nullptr);
    // The photo (512 × 480) comes fitted into a square as wide as the screen.
    const double W = home->width();
    ASSERT_TRUE(editor->selectedImage);
    EXPECT_NEAR(editor->selectedImage->size().width(), W, 0.5);
    EXPECT_NEAR(editor->selectedImage->size().height(), W * 480 / 512, 0.5);
    MirrorCanvasView* canvas = editor->containerView();
    EXPECT_EQ(canvas->showingPattern(), 0);

    // Pattern 15: two pairs of quarters, the second pair mirrored.
    openTool(0);
    waitForPanel(MirrorVController::Panel::mirrorPattern);
    scrollAndClick(editor->mirrorPatternScrollView(), editor->patternButtons()[14]);
    ASSERT_EQ(canvas->showingPattern(), 14);
    closePanel(MirrorVController::Panel::mirrorPattern);
    // A real drag in the first pane: its partner follows, the other pair goes the other way.
    const std::vector<MirrorPaneView*> panes = canvas->showingPanes();
    const double before = panes[2]->contentOffset().x();
    const QPoint from =
        canvas->viewport()->mapTo(window.data(), canvas->mapFromScene(panes[0]->frame().center()));
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, from);
    QTest::mouseMove(window->windowHandle(), from + QPoint(10, 0));
    QTest::mouseMove(window->windowHandle(), from + QPoint(30, 0));
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, from + QPoint(30, 0));
    EXPECT_NEAR(panes[0]->contentOffset().x(), 3 * W / 4 - 30, 1e-6);
    EXPECT_EQ(panes[1]->contentOffset(), panes[0]->contentOffset());
    EXPECT_NEAR(panes[2]->contentOffset().x(), before + 30, 1e-6);

    // A caption, then another font and another colour for it.
    openTool(3);
    auto* entry = waitForPresented<TextEditViewController>();
    ASSERT_NE(entry, nullptr);
    click(entry->doneButton()); // an empty caption is not taken
    EXPECT_EQ(waitForPresented<TextEditViewController>(), entry);
    QTest::keyClicks(entry->inputTextView(), QStringLiteral("Mirror Lake"));
    click(entry->doneButton());
    ASSERT_TRUE(testsupport::waitUntil([&] { return editor->presentedViewController() == nullptr; }));
    ASSERT_EQ(editor->stickerLblArr.size(), 1);
    CaptionLabelView* label = editor->stickerLblArr.front();
    EXPECT_EQ(label->text(), QStringLiteral("Mirror Lake"));
    EXPECT_EQ(label->fontName(), QStringLiteral("Rubik-Bold"));
    waitForPanel(MirrorVController::Panel::textEditing);

    click(editor->textCells()[1]);
    waitForPanel(MirrorVController::Panel::font);
    scrollAndClick(editor->fontCollectionView(), editor->fontCells()[12]);
    EXPECT_EQ(label->fontName(), FontList::fontNames()[12]);
    EXPECT_EQ(label->font().pixelSize(), 30);
    closePanel(MirrorVController::Panel::font, "fontDoneButton");

    click(editor->textCells()[2]);
    waitForPanel(MirrorVController::Panel::multiColor);
    ColorSwatchStripView* swatches = editor->swatchStrip();
    ASSERT_TRUE(testsupport::waitUntil([&] {
        return !swatches->swatches().isEmpty() &&
               swatches->swatches().size() == ColorSwatchStripView::swatchTable().size();
    }));
    click(swatches->swatches()[3]);
    EXPECT_EQ(label->textColor(), colorFromHex(ColorSwatchStripView::swatchTable()[3]).toQColor());
    EXPECT_DOUBLE_EQ(swatches->swatches()[3]->scale(), 1.6);
    closePanel(MirrorVController::Panel::textEditing);

    // A sticker from the catalogue's first row.
    openTool(4);
    auto* catalogue = waitForPresented<StickerCategoryController>();
    ASSERT_NE(catalogue, nullptr);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !catalogue->rowCell(0)->visibleCells().isEmpty(); }));
    QPointer<StickerCategoryController> leaving(catalogue);
    click(catalogue->rowCell(0)->visibleCells().front());
    ASSERT_TRUE(testsupport::waitUntil([&] { return leaving.isNull(); }));
    ASSERT_EQ(canvas->stickersOnCanvas().size(), 2);
    EXPECT_EQ(editor->allStickerView.size(), 1); // picture stickers are not listed

    // A look on the third pane only: tap it, then a thumbnail.
    openTool(2);
    waitForPanel(MirrorVController::Panel::filter);
    MirrorPaneView* third = panes[2];
    const ImagePtr plain = third->imageView()->image(), plainFourth = panes[3]->imageView()->image();
    clickAt(canvas->viewport()->mapTo(window.data(),
                                      canvas->mapFromScene(third->frame().center() + QPointF(0, 150))));
    ASSERT_EQ(canvas->currentImageView(), third->imageView());
    click(editor->filterStrip()->buttons()[2]);
    ASSERT_TRUE(testsupport::waitUntil([&] { return third->imageView()->image() != plain; }));
    EXPECT_EQ(panes[3]->imageView()->image(), plainFourth);
    closePanel(MirrorVController::Panel::filter);

    // PNG: the canvas as it stands, handles off.
    auto* png = chooseFormat<PNGController>(1);
    ASSERT_NE(png, nullptr);
    const ImagePtr expected = canvas->snapshot();
    EXPECT_EQ(expected->pixelSize(), QSize(int(W * Screen::main().scale()), int(W * Screen::main().scale())));
    click(png->downloadBtn());
    const QString pngPath = finishAtShareScreen();
    ASSERT_TRUE(pngPath.endsWith(QStringLiteral(".png"))) << qPrintable(pngPath);
    const QImage pngBack = readPng(pngPath, sandbox.filePath(QStringLiteral("png.rgba")));
    ASSERT_EQ(pngBack.size(), expected->pixelSize());
    EXPECT_LT(meanDifference(expected->bitmap(), pngBack), 1.0);
    for (StickerView* sticker : canvas->stickersOnCanvas())
        EXPECT_FALSE(sticker->showEditingHandlers);

    // PDF for print, in CMYK with crop marks.
    auto* pdf = chooseFormat<PDFPrintController>(3);
    ASSERT_NE(pdf, nullptr);
    click(pdf->cropMarksView());
    click(pdf->colorprofileView());
    auto* profiles = waitForPresented<ColorProfileController>();
    ASSERT_NE(profiles, nullptr);
    QPointer<ColorProfileController> profilesLeaving(profiles);
    click(profiles->cellForRow(1));
    ASSERT_TRUE(testsupport::waitUntil([&] { return profilesLeaving.isNull(); }));
    ASSERT_NE(waitForPresented<PDFPrintController>(), nullptr);
    EXPECT_FALSE(pdf->rgbselect);
    click(pdf->downloadBtn());
    const QString pdfPath = finishAtShareScreen();
    EXPECT_TRUE(pdfPath.endsWith(QStringLiteral("CropMarks.pdf"))) << qPrintable(pdfPath);
    int qpdfExit = -1;
    runTool(QStringLiteral("qpdf"), {QStringLiteral("--check"), pdfPath}, &qpdfExit);
    EXPECT_EQ(qpdfExit, 0);
    EXPECT_TRUE(runTool(QStringLiteral("pdfimages"), {QStringLiteral("-list"), pdfPath}).contains("cmyk"));
    const QImage page = fromTool(QStringLiteral("pdftoppm"), {QStringLiteral("-r"), QStringLiteral("72"),
                                                              QStringLiteral("-singlefile"), pdfPath});
    ASSERT_FALSE(page.isNull());
    // A crop mark in the top left corner, white paper beside it, the picture in the middle.
    EXPECT_LT(qGray(page.pixel(5, 19)) + qGray(page.pixel(5, 20)), 2 * 160 + 100);
    EXPECT_GT(qGray(page.pixel(5, 10)), 160);
    const QRect picture(20, 20, page.width() - 40, page.height() - 40);
    EXPECT_LT(meanDifference(expected->bitmap(), page.copy(picture)), 20.0); // CMYK round trip, 72 dpi

    // SVG, checked by libxml2 and drawn by librsvg.
    auto* svg = chooseFormat<SVGController>(4);
    ASSERT_NE(svg, nullptr);
    click(svg->downloadBtn());
    const QString svgPath = finishAtShareScreen();
    int xmlExit = -1;
    runTool(QStringLiteral("xmllint"), {QStringLiteral("--noout"), svgPath}, &xmlExit);
    EXPECT_EQ(xmlExit, 0);
    const QImage drawn = QImage::fromData(runTool(QStringLiteral("rsvg-convert"), {svgPath}));
    ASSERT_FALSE(drawn.isNull());
    EXPECT_LT(meanDifference(expected->bitmap(), drawn), 3.0);

    // MP4, probed and decoded by FFmpeg.
    auto* mp4 = chooseFormat<MP4VideoController>(5);
    ASSERT_NE(mp4, nullptr);
    click(mp4->downloadButton());
    const QString mp4Path = finishAtShareScreen(120000);
    EXPECT_TRUE(mp4Path.endsWith(QStringLiteral(".mp4"))) << qPrintable(mp4Path);
    EXPECT_TRUE(runTool(QStringLiteral("ffprobe"), {QStringLiteral("-v"), QStringLiteral("error"),
                                                    QStringLiteral("-show_streams"), mp4Path})
                    .contains("codec_name=h264"));
    const QImage frame = fromTool(QStringLiteral("ffmpeg"),
                                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"),
                                   mp4Path, QStringLiteral("-frames:v"), QStringLiteral("1"),
                                   QStringLiteral("-f"), QStringLiteral("image2pipe"),
                                   QStringLiteral("-vcodec"), QStringLiteral("ppm"), QStringLiteral("-")});
    ASSERT_FALSE(frame.isNull());
    EXPECT_LT(meanDifference(expected->bitmap(), frame), 8.0);
}

} // namespace
