#include "ExportFileReaders.h"
#include "export/ExportScreens.h"
#include "export/JPGController.h"
#include "export/PNGController.h"
#include "export/PNGFunctionClass.h"
#include "export/RasterExport.h"
#include "export/SheetControls.h"
#include "platform/AppWindow.h"
#include "platform/Assets.h"
#include "platform/ImageView.h"
#include "platform/Screen.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using namespace exportfiles;

TEST(RasterWords, QualityWordsFollowSinglePrecisionBoundsAndWrapBelowATenth) {
    const struct {
        float value;
        const char* tenths;
        const char* words;
    } rows[] = {
        {0.05f, "0", "File size: Large"},
        {0.0999f, "0", "File size: Large"},
        {0.1f, "1", "File size: Small"},
        {0.29f, "2", "File size: Small"},
        {0.3f, "3", "File size: Medium"},
        {0.69f, "6", "File size: Medium"},
        // 0.7f × 10 rounds to 7 in single precision; in double it would truncate to 6.
        {0.7f, "7", "File size: Large"},
        {1.0f, "10", "File size: Large"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(RasterExport::qualityValueText(row.value), QString::fromLatin1(row.tenths)) << row.value;
        EXPECT_EQ(RasterExport::fileSizeText(row.value), QString::fromLatin1(row.words)) << row.value;
    }
}

TEST(RasterWords, DecimalDescriptionsAlwaysCarryAFraction) {
    EXPECT_EQ(RasterExport::decimalDescription(1080), QStringLiteral("1080.0"));
    EXPECT_EQ(RasterExport::decimalDescription(0), QStringLiteral("0.0"));
    EXPECT_EQ(RasterExport::decimalDescription(100.25), QStringLiteral("100.25"));
    EXPECT_EQ(RasterExport::decimalDescription(0.1), QStringLiteral("0.1"));
    EXPECT_EQ(RasterExport::decimalDescription(1.0 / 3), QStringLiteral("0.3333333333333333"));
    EXPECT_EQ(RasterExport::decimalDescription(1e16), QStringLiteral("1e+16"));
    EXPECT_EQ(RasterExport::pixelLabelAtLoad(1080, 1350), QStringLiteral("1080.0 x 1350.0 px"));
    EXPECT_EQ(RasterExport::pixelLabel(100.25, 50.04), QStringLiteral("100.2 x 50.0 px"));
    // The smaller factor wins, whichever side it is on.
    EXPECT_EQ(RasterExport::fitFactor(150, 200, QSizeF(300, 200)), 0.5);
    EXPECT_EQ(RasterExport::fitFactor(300, 50, QSizeF(300, 200)), 0.25);
}

class RasterSheet : public ::testing::Test {
protected:
    void SetUp() override {
        registerExportScreens();
        qputenv("LUMIVEX_DOCUMENTS_DIR", documents.path().toUtf8());
        Screen::main().setScale(3);
        window.resize(390, 844);
        window.setRootViewController(editor = new ViewController);
        window.makeKeyAndVisible();
    }
    void TearDown() override { qunsetenv("LUMIVEX_DOCUMENTS_DIR"); }

    template <typename Sheet> Sheet* open(ImagePtr image) {
        auto* sheet = new Sheet;
        sheet->shareImage = std::move(image);
        sheet->savingDelegate = &receiver;
        editor->present(sheet, true);
        return sheet;
    }

    QTemporaryDir documents;
    AppWindow window;
    ViewController* editor = nullptr;
    Receiver receiver;
};

TEST_F(RasterSheet, JpgLabelsStartAtTheWholePictureAndFollowTheSizeSlider) {
    // 401 × 201 pixels at scale 4: 100.25 × 50.25 points, whose descriptions differ from "%.1f".
    JPGController* sheet = open<JPGController>(gradientPicture(QSize(401, 201), 4));
    EXPECT_EQ(sheet->containerHeight(), 480);
    EXPECT_EQ(sheet->pxLbl()->text(), QStringLiteral("100.25 x 50.25 px"));
    EXPECT_EQ(sheet->SizeValueLbl()->text(), QStringLiteral("1.0"));
    EXPECT_EQ(sheet->qualityValueLbl()->text(), QStringLiteral("10"));
    EXPECT_EQ(sheet->fileSizeLbl()->text(), QStringLiteral("File size: Large"));
    EXPECT_EQ(sheet->qualityParameter, 1.0);

    sheet->sizeSlider()->setValue(500);
    EXPECT_EQ(sheet->SizeValueLbl()->text(), QStringLiteral("0.5"));
    EXPECT_DOUBLE_EQ(sheet->newWidth, 50.125);
    EXPECT_EQ(sheet->pxLbl()->text(), QStringLiteral("50.1 x 25.1 px"));

    sheet->qualitySlider()->setValue(300);
    EXPECT_EQ(sheet->qualityValueLbl()->text(), QStringLiteral("3"));
    EXPECT_EQ(sheet->fileSizeLbl()->text(), QStringLiteral("File size: Medium"));
    EXPECT_EQ(sheet->qualityParameter, static_cast<double>(0.3f));
}

TEST_F(RasterSheet, JpgDownloadHandsOnTheRecompressedPictureAtTheTargetSizeWithoutAFile) {
    const ImagePtr picture = gradientPicture(QSize(900, 600), 3); // 300 × 200 points
    JPGController* sheet = open<JPGController>(picture);
    // Untouched, the whole picture at the screen's scale.
    sheet->donwloadbtnAction();
    ASSERT_EQ(receiver.received.size(), 1);
    EXPECT_EQ(receiver.received[0].shareimage->pixelSize(), QSize(900, 600));
    EXPECT_EQ(receiver.received[0].shareimage->size(), QSizeF(300, 200));
    EXPECT_FALSE(receiver.received[0].sharedURL.has_value());
    EXPECT_EQ(receiver.received[0].saveType, SavingtypeMethod::JPG);

    // A target out of proportion: the smaller factor (0.5) wins.
    sheet->newWidth = 150;
    sheet->newheight = 200;
    sheet->donwloadbtnAction();
    EXPECT_EQ(receiver.received[1].shareimage->pixelSize(), QSize(450, 300));

    // The quality shows only as the loss of that one compression.
    sheet->newWidth = 300;
    sheet->newheight = 200;
    sheet->qualitySlideraction(0.0f);
    sheet->donwloadbtnAction();
    const QImage original = picture->bitmap();
    EXPECT_LE(maxChannelDifference(receiver.received[0].shareimage->bitmap(), original), 12);
    EXPECT_GT(maxChannelDifference(receiver.received[2].shareimage->bitmap(), original), 12);
    EXPECT_TRUE(QDir(documents.path()).isEmpty());
}

TEST_F(RasterSheet, PngFlattensOnWhiteUnlessTransparencyIsTicked) {
    const ImagePtr picture = gradientPicture(QSize(300, 150), 3, 60); // 100 × 50 points, left fifth clear
    PNGController* sheet = open<PNGController>(picture);
    EXPECT_EQ(sheet->containerHeight(), 450);
    EXPECT_FALSE(sheet->trasparentBool);
    EXPECT_EQ(sheet->trasnparentCheck()->image(), Assets::image(QStringLiteral("ic_checkbox")));

    sheet->sizeSlider()->setValue(500);
    EXPECT_EQ(sheet->pxLbl()->text(), QStringLiteral("50.0 x 25.0 px"));
    sheet->downloadbtnAction();
    ASSERT_EQ(receiver.received.size(), 1);
    const SaveModelDetails flat = receiver.received[0];
    EXPECT_EQ(flat.shareimage, picture); // the picture as it came, not resized
    EXPECT_EQ(flat.saveType, SavingtypeMethod::PNG);
    ASSERT_EQ(flat.sharedURL, QDir(documents.path()).filePath(QStringLiteral("default.png")));
    const QImage flatPixels = readPngIndependently(*flat.sharedURL);
    ASSERT_EQ(flatPixels.size(), QSize(150, 75));
    for (int y = 0; y < flatPixels.height(); ++y)
        for (int x = 0; x < flatPixels.width(); ++x)
            ASSERT_EQ(flatPixels.pixelColor(x, y).alpha(), 255) << x << "," << y;
    EXPECT_EQ(flatPixels.pixelColor(5, 40), QColor(Qt::white));

    // A real click on the row ticks the box; the same file name is written again.
    QTest::mouseClick(sheet->trasnparentView(), Qt::LeftButton);
    EXPECT_TRUE(sheet->trasparentBool);
    EXPECT_EQ(sheet->trasnparentCheck()->image(), Assets::image(QStringLiteral("ic_checkbox1")));
    sheet->downloadbtnAction();
    const QImage clearPixels = readPngIndependently(*receiver.received[1].sharedURL);
    ASSERT_EQ(clearPixels.size(), QSize(150, 75));
    EXPECT_EQ(clearPixels.pixelColor(5, 40).alpha(), 0);
    EXPECT_EQ(clearPixels.pixelColor(120, 40).alpha(), 255);
    EXPECT_EQ(QDir(documents.path()).entryList(QDir::Files), QStringList{QStringLiteral("default.png")});

    // Tapping again unticks.
    sheet->handletrasnparentTap();
    EXPECT_FALSE(sheet->trasparentBool);
    EXPECT_EQ(sheet->trasnparentCheck()->image(), Assets::image(QStringLiteral("ic_checkbox")));
}

TEST_F(RasterSheet, PngCompressBoxTogglesItsPictureAndChangesNoByte) {
    PNGController* sheet = open<PNGController>(gradientPicture(QSize(90, 60), 3, 10));
    const QString path = QDir(documents.path()).filePath(QStringLiteral("default.png"));
    sheet->downloadbtnAction();
    const QByteArray before = readAll(path);
    ASSERT_FALSE(before.isEmpty());
    QTest::mouseClick(sheet->compressQualityView(), Qt::LeftButton);
    EXPECT_EQ(sheet->compressQuailityCheck()->image(), Assets::image(QStringLiteral("ic_checkbox1")));
    EXPECT_FALSE(sheet->trasparentBool);
    sheet->downloadbtnAction();
    EXPECT_EQ(readAll(path), before);
}

TEST_F(RasterSheet, PngIntoADocumentsFolderThatCannotBeWrittenGoesOnWithoutAFile) {
    const QString blocker = documents.filePath(QStringLiteral("blocker"));
    ASSERT_TRUE(QFile(blocker).open(QIODevice::WriteOnly));
    qputenv("LUMIVEX_DOCUMENTS_DIR", (blocker + QStringLiteral("/docs")).toUtf8());
    PNGController* sheet = open<PNGController>(gradientPicture(QSize(30, 30), 3));
    sheet->downloadbtnAction();
    ASSERT_EQ(receiver.received.size(), 1);
    EXPECT_FALSE(receiver.received[0].sharedURL.has_value());
    EXPECT_EQ(QDir(documents.path()).entryList(QDir::Files), QStringList{QStringLiteral("blocker")});
}

TEST(PngFunctions, FlattenedCentresOnTheColourAndClearBackedKeepsAlphaThroughPng) {
    Screen::main().setScale(2);
    const ImagePtr picture = gradientPicture(QSize(20, 10), 2, 4); // 10 × 5 points
    const ImagePtr flat = PNGFunctionClass::renderFlattened(picture, Qt::red, 20, 9);
    ASSERT_TRUE(flat);
    EXPECT_EQ(flat->pixelSize(), QSize(40, 18));
    EXPECT_EQ(flat->bitmap().pixelColor(2, 2), QColor(Qt::red));  // margin
    EXPECT_EQ(flat->bitmap().pixelColor(11, 9), QColor(Qt::red)); // the picture's clear columns
    EXPECT_EQ(flat->bitmap().pixelColor(25, 9).rgb(),
              picture->bitmap().pixelColor(15, 5).rgb()); // centred: offset (10, 4) pixels

    const ImagePtr clear = PNGFunctionClass::renderClearBacked(picture);
    ASSERT_TRUE(clear);
    EXPECT_EQ(clear->pixelSize(), QSize(20, 10));
    EXPECT_EQ(clear->bitmap().pixelColor(1, 5).alpha(), 0);
    EXPECT_EQ(clear->bitmap().pixelColor(15, 5).rgb(), picture->bitmap().pixelColor(15, 5).rgb());
    EXPECT_EQ(PNGFunctionClass::renderFlattened(nullptr, Qt::white, 1, 1), nullptr);
    Screen::main().setScale(3);
}

} // namespace
