#include "ExportFileReaders.h"
#include "export/ColorProfileController.h"
#include "export/ExportScreens.h"
#include "export/PDFPageLayout.h"
#include "export/PDFPrintController.h"
#include "export/PDFStandardController.h"
#include "export/SheetControls.h"
#include "platform/AppWindow.h"
#include "platform/DeviceColor.h"
#include "platform/ImageView.h"
#include "platform/ProgressHud.h"
#include "platform/Screen.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

// The PDF sheets and their pages, read back with Poppler's and qpdf's command-line tools.
namespace {

using namespace exportfiles;

QSizeF pdfPageSize(const QString& path) {
    const QRegularExpressionMatch m =
        QRegularExpression(QStringLiteral("Page size:\\s+([\\d.]+) x ([\\d.]+) pts"))
            .match(QString::fromUtf8(run("pdfinfo", {path}).out));
    return m.hasMatch() ? QSizeF(m.captured(1).toDouble(), m.captured(2).toDouble()) : QSizeF();
}

// The colour column of the page's one image, as pdfimages lists it.
QString pdfImageColor(const QString& path) {
    const QList<QByteArray> lines = run("pdfimages", {"-list", path}).out.split('\n');
    if (lines.size() < 3)
        return {};
    const QStringList fields = QString::fromUtf8(lines[2]).split(' ', Qt::SkipEmptyParts);
    return fields.size() > 5 ? fields[5] : QString();
}

QImage pdfRender(const QString& path, int dpi) {
    return QImage::fromData(run("pdftoppm", {"-r", QString::number(dpi), "-singlefile", path}).out, "PPM")
        .convertToFormat(QImage::Format_RGB32);
}

bool dark(const QImage& page, int x, int y) {
    return qGray(page.pixel(x, y)) < 160;
}

class PdfSheet : public ::testing::Test {
protected:
    void SetUp() override {
        registerExportScreens();
        qputenv("LUMIVEX_DOCUMENTS_DIR", documents.path().toUtf8());
        Screen::main().setScale(3);
        window.resize(390, 844);
        window.setRootViewController(editor = new ViewController);
        window.makeKeyAndVisible();
    }
    void TearDown() override {
        qunsetenv("LUMIVEX_DOCUMENTS_DIR");
        ProgressHud::dismiss();
    }
    template <typename Sheet> Sheet* open() {
        auto* sheet = new Sheet;
        sheet->shareImage = picture;
        sheet->savingDelegate = &receiver;
        editor->present(sheet, false);
        return sheet;
    }
    // Presses download and waits for the save; the file it made.
    QString download(QAbstractButton* button) {
        const qsizetype before = receiver.received.size();
        QTest::mouseClick(button, Qt::LeftButton);
        testsupport::waitUntil([&] { return receiver.received.size() > before; }, 20000);
        if (receiver.received.size() == before)
            return {};
        return receiver.received.last().sharedURL.value_or(QString());
    }
    QString file(const QString& name) const { return QDir(documents.path()).filePath(name); }

    // 130 × 90 points on a 3× canvas.
    ImagePtr picture = gradientPicture(QSize(390, 270), 3.0);
    QTemporaryDir documents;
    AppWindow window;
    ViewController* editor = nullptr;
    Receiver receiver;
};

TEST(PdfPageLayout, CropMarksStandAtTheTrimCornersAndBelowTheHalfSizePicture) {
    const PdfPageLayout crop = PDFPages::layout(PdfPageKind::cropMarks, QSizeF(100, 200), 20);
    EXPECT_EQ(crop.page, QSizeF(140, 240));
    EXPECT_EQ(crop.picture, QRectF(20, 20, 100, 200));
    ASSERT_EQ(crop.cropMarks.size(), 8u);
    EXPECT_EQ(crop.cropMarks[0], QRectF(0, 19.75, 10, 0.5));
    EXPECT_EQ(crop.cropMarks[3], QRectF(120.25, 0, 0.5, 10));
    EXPECT_EQ(crop.cropMarks[6], QRectF(130, 219.75, 10, 0.5));
    EXPECT_EQ(crop.cropMarks[7], QRectF(120.25, 230, 0.5, 10));
    EXPECT_FALSE(crop.note);

    const PdfPageLayout withNote = PDFPages::layout(PdfPageKind::cropMarksWithNote, QSizeF(100, 200), 20);
    EXPECT_EQ(withNote.page, QSizeF(140, 290));
    EXPECT_EQ(withNote.picture, QRectF(35, 50, 70, 120));
    for (int lower = 4; lower < 8; ++lower)
        EXPECT_GT(withNote.cropMarks[lower].top(), withNote.picture.bottom()) << lower;
    EXPECT_EQ(withNote.cropMarks[4].top(), 290 - 20 - 0.25);
    // The note follows the picture's size, so a narrow picture puts it off the left edge.
    EXPECT_EQ(withNote.note, QRectF(-50, 200, 150, 30));
    const PdfPageLayout notes = PDFPages::layout(PdfPageKind::notes, QSizeF(100, 200));
    EXPECT_EQ(notes.page, QSizeF(100, 300));
    EXPECT_EQ(notes.picture, QRectF(25, 50, 50, 100));
}

TEST_F(PdfSheet, StandardPagesKeepThePictureSizeInPointsAndItsPixels) {
    auto* sheet = open<PDFStandardController>();
    EXPECT_EQ(sheet->containerHeight(), 360);
    const QString plain = download(sheet->downloadBtn());
    EXPECT_EQ(plain, file("UntitledPdf.pdf"));
    EXPECT_EQ(run("qpdf", {"--check", plain}).exitCode, 0);
    EXPECT_EQ(pdfPageSize(plain), QSizeF(130, 90));
    EXPECT_EQ(pdfImageColor(plain), QStringLiteral("rgb"));
    // At three pixels a point the page is the picture, pixel for pixel.
    EXPECT_LE(maxChannelDifference(pdfRender(plain, 216), picture->bitmap()), 3);
    EXPECT_EQ(receiver.received.last().saveType, SavingtypeMethod::PDFStandard);
    EXPECT_EQ(receiver.received.last().shareimage, picture);

    // The flatten row changes nothing in the file.
    const QByteArray before = readAll(plain);
    QTest::mouseClick(sheet->flattenView(), Qt::LeftButton);
    EXPECT_TRUE(sheet->flattenChoose);
    download(sheet->downloadBtn());
    EXPECT_EQ(readAll(plain), before);

    // Under 150 points wide the note starts left of the page, and only its end can be read.
    QTest::mouseClick(sheet->noteView(), Qt::LeftButton);
    const QString notes = download(sheet->downloadBtn());
    EXPECT_EQ(notes, file("NotesPDF.pdf"));
    EXPECT_EQ(pdfPageSize(notes), QSizeF(130, 190));
    EXPECT_FALSE(run("pdftotext", {notes, "-"}).out.contains("Page 1 of 1"));
    editor->dismiss(false);
    picture = gradientPicture(QSize(600, 270), 3.0);
    sheet = open<PDFStandardController>();
    QTest::mouseClick(sheet->noteView(), Qt::LeftButton);
    EXPECT_EQ(pdfPageSize(download(sheet->downloadBtn())), QSizeF(200, 190));
    EXPECT_TRUE(run("pdftotext", {notes, "-"}).out.contains("Page 1 of 1"));
}

TEST_F(PdfSheet, PrintPagesGrowWithThePixelsAndKeepCmykAsCmyk) {
    struct Case {
        bool notes, crop, cmyk;
        const char* name;
        QSizeF page;
    };
    const Case cases[] = {
        {false, false, false, "UntitledPdf.pdf", {390, 270}},
        {true, false, true, "Notes.pdf", {390, 370}},
        {false, true, true, "CropMarks.pdf", {430, 310}},
        {true, true, false, "Crop&Note.pdf", {430, 360}},
    };
    for (const Case& c : cases) {
        auto* sheet = open<PDFPrintController>();
        EXPECT_EQ(sheet->containerHeight(), 470);
        if (c.notes)
            QTest::mouseClick(sheet->notesView(), Qt::LeftButton);
        if (c.crop)
            QTest::mouseClick(sheet->cropMarksView(), Qt::LeftButton);
        if (c.cmyk)
            sheet->colorProfileChosen(1);
        const QString path = download(sheet->downloadBtn());
        EXPECT_EQ(path, file(c.name));
        EXPECT_EQ(run("qpdf", {"--check", path}).exitCode, 0) << c.name;
        EXPECT_EQ(pdfPageSize(path), c.page) << c.name;
        EXPECT_EQ(pdfImageColor(path), c.cmyk ? QStringLiteral("cmyk") : QStringLiteral("rgb")) << c.name;
        EXPECT_EQ(run("pdftotext", {path, "-"}).out.contains("Page 1 of 1"), c.notes) << c.name;
        // The file names the colours' profile; the share screen shows the converted picture at scale 1.
        EXPECT_EQ(readAll(path).contains("/OutputIntents"),
                  !c.cmyk || !DeviceColor::cmykProfilePath().isEmpty());
        const SaveModelDetails& made = receiver.received.last();
        EXPECT_EQ(made.saveType, SavingtypeMethod::PDFPrint);
        ASSERT_TRUE(made.shareimage);
        EXPECT_EQ(made.shareimage->size(), QSizeF(390, 270));
        editor->dismiss(false);
    }

    // Crop marks where the table puts them: short black strokes in the corners, white paper between.
    const QImage crop = pdfRender(file("CropMarks.pdf"), 72);
    ASSERT_EQ(crop.size(), QSize(430, 310));
    EXPECT_TRUE(dark(crop, 5, 19) || dark(crop, 5, 20));       // mark 1
    EXPECT_TRUE(dark(crop, 19, 5) || dark(crop, 20, 5));       // mark 2
    EXPECT_TRUE(dark(crop, 410, 305) || dark(crop, 409, 305)); // mark 8
    EXPECT_FALSE(dark(crop, 5, 10));
    EXPECT_FALSE(dark(crop, 30, 5));
    EXPECT_FALSE(dark(crop, 215, 300));
    // Below the half-size picture of the crop-with-note page, the lower marks at the foot of the page.
    const QImage cropNote = pdfRender(file("Crop&Note.pdf"), 72);
    ASSERT_EQ(cropNote.size(), QSize(430, 360));
    EXPECT_TRUE(dark(cropNote, 5, 339) || dark(cropNote, 5, 340));
    EXPECT_FALSE(dark(cropNote, 5, 290));
}

TEST_F(PdfSheet, TheProfileSheetMarksTheChosenRowAndNamesItOnThePrintSheet) {
    auto* sheet = open<PDFPrintController>();
    EXPECT_EQ(sheet->colorProfileLbl()->text(), QStringLiteral("RGB (best for digital use)"));
    QTest::mouseClick(sheet->colorprofileView(), Qt::LeftButton);
    auto* profiles = qobject_cast<ColorProfileController*>(sheet->presentedViewController());
    ASSERT_TRUE(profiles);
    EXPECT_FALSE(profiles->cellForRow(0)->doneImgView()->isHidden());
    EXPECT_TRUE(profiles->cellForRow(1)->doneImgView()->isHidden());
    QTest::mouseClick(profiles->cellForRow(1), Qt::LeftButton);
    EXPECT_FALSE(sheet->rgbselect);
    EXPECT_EQ(sheet->colorProfileLbl()->text(), QStringLiteral("CMYK (best for professional printing)"));
    EXPECT_TRUE(testsupport::waitUntil([&] { return !sheet->presentedViewController(); }));

    // Reopened, the CMYK row carries the mark; a drag does not move this sheet.
    profiles = sheet->handleprofileTap();
    EXPECT_TRUE(profiles->cellForRow(0)->doneImgView()->isHidden());
    EXPECT_FALSE(profiles->cellForRow(1)->doneImgView()->isHidden());
    QWidget* container = profiles->containerView();
    QTest::mousePress(container, Qt::LeftButton, {}, QPoint(20, 10));
    QTest::mouseMove(container, QPoint(20, 200));
    EXPECT_EQ(profiles->containerTranslation(), 0);
    QTest::mouseRelease(container, Qt::LeftButton, {}, QPoint(20, 200));
}

TEST(DeviceColorConversion, CmykHasInkWhereThePictureIsDarkAndNoneOnWhite) {
    QImage swatch(4, 1, QImage::Format_RGB32);
    const QRgb colours[] = {qRgb(255, 255, 255), qRgb(0, 0, 0), qRgb(255, 0, 0), qRgb(40, 120, 200)};
    for (int x = 0; x < 4; ++x)
        swatch.setPixel(x, 0, colours[x]);
    // The device formula, forced by a profile that does not exist.
    const auto formula = DeviceColor::toDeviceCMYK(swatch, QStringLiteral("/nonexistent.icc"));
    ASSERT_TRUE(formula);
    EXPECT_TRUE(formula->profile.isEmpty());
    const auto* ink = reinterpret_cast<const uchar*>(formula->raster.samples.constData());
    const uchar expected[] = {0, 0, 0, 0, 0, 0, 0, 255, 0, 255, 255, 0, 204, 102, 0, 55};
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(ink[i], expected[i]) << i;
    EXPECT_EQ(formula->shown.pixel(3, 0), swatch.pixel(3, 0));

    const QString profile = DeviceColor::cmykProfilePath();
    if (profile.isEmpty())
        GTEST_SKIP() << "no CMYK profile installed";
    const auto managed = DeviceColor::toDeviceCMYK(swatch, profile);
    ASSERT_TRUE(managed);
    EXPECT_FALSE(managed->profile.isEmpty());
    const auto* m = reinterpret_cast<const uchar*>(managed->raster.samples.constData());
    EXPECT_LE(std::max({m[0], m[1], m[2], m[3]}), 8); // white paper: no ink
    EXPECT_GE(m[4 + 3], 180);                         // black: mostly K
    EXPECT_GT(m[8 + 1], 180);                         // red: magenta and yellow
    EXPECT_GT(m[8 + 2], 180);
    EXPECT_LT(m[8 + 0], 60);
    // Seen through the same profile, an in-gamut blue stays close to what it was.
    const QColor back = QColor(managed->shown.pixel(3, 0));
    EXPECT_NEAR(back.blue(), 200, 30);
    EXPECT_NEAR(back.red(), 40, 30);
}

} // namespace
