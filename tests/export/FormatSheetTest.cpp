#include "export/ExportScreens.h"
#include "export/FileTypeRowView.h"
#include "export/FormatSheetController.h"
#include "export/SavingTypeController.h"
#include "platform/AppWindow.h"
#include "platform/ShareSheet.h"
#include "platform/TestMediaFiles.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

// The smallest format sheet: a PNG sheet with one option, enough to drive the shared behaviour.
class TestSheet : public FormatSheetController {
public:
    SavingtypeMethod savingType() const override { return SavingtypeMethod::PNG; }
    int option = 0;
};

struct Editor : ViewController, NewSavingMethod {
    QList<SavingtypeMethod> switched;
    bool sheetGoneWhenTold = false;
    void newSavingMethodChosen(SavingtypeMethod type) override {
        switched << type;
        sheetGoneWhenTold = presentedViewController() == nullptr;
    }
};

ImagePtr picture(int w, int h, ImageOrientation orientation = ImageOrientation::up) {
    QImage bitmap(w, h, QImage::Format_RGB32);
    bitmap.fill(Qt::white);
    bitmap.setPixelColor(0, 0, Qt::red); // marks the stored top-left corner
    return Image::make(bitmap, 2.0, orientation);
}

class FormatSheet : public ::testing::Test {
protected:
    void SetUp() override {
        registerExportScreens();
        window.resize(390, 844);
        window.setRootViewController(editor = new Editor);
        window.makeKeyAndVisible();
    }
    TestSheet* open(ImagePtr image, std::optional<QString> video = std::nullopt) {
        auto* sheet = new TestSheet;
        sheet->shareImage = std::move(image);
        sheet->videoUrl = std::move(video);
        sheet->delegate = editor;
        editor->present(sheet, true);
        return sheet;
    }
    static void flush() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    AppWindow window;
    Editor* editor = nullptr;
};

TEST_F(FormatSheet, WithAPictureTheSheetTakesItsFormatsHeightAndHidesTheNotice) {
    const ImagePtr image = picture(10, 10);
    TestSheet* sheet = open(image);
    EXPECT_EQ(sheet->tobeSavedimage, image);
    EXPECT_EQ(sheet->containerHeight(), 450);
    EXPECT_EQ(sheet->infoLabel()->maximumHeight(), 0);
    EXPECT_EQ(sheet->containerCornerRadius(), 30);
    EXPECT_EQ(sheet->containerView()->geometry().bottom(), sheet->rect().bottom());
    EXPECT_EQ(FileTypeRowView::kCornerRadius, 8);
    EXPECT_EQ(FileTypeRowView::borderColor(), QColor(0x94, 0x94, 0x94));
    EXPECT_EQ(FileTypeRowView::kBorderWidth, 0.5);

    const std::pair<SavingtypeMethod, double> heights[] = {
        {SavingtypeMethod::JPG, 480},         {SavingtypeMethod::PNG, 450},
        {SavingtypeMethod::SVG, 300},         {SavingtypeMethod::TIFF, 267},
        {SavingtypeMethod::PDFStandard, 360}, {SavingtypeMethod::PDFPrint, 470}};
    for (const auto& [type, height] : heights)
        EXPECT_EQ(FormatSheetController::sheetHeight(type), height);
    EXPECT_FALSE(FormatSheetController::sheetHeight(SavingtypeMethod::MP4Video).has_value());
}

TEST_F(FormatSheet, WithAVideoTheFrameAtOneThirtiethIsTheWorkingPicture) {
    QTemporaryDir temp;
    const QString path = temp.filePath(QStringLiteral("clip.mp4"));
    ASSERT_TRUE(
        testvideo::writeMp4(path, testvideo::Options{}, [](int i) { return testvideo::numberedFrame(i); }));
    TestSheet* sheet = open(nullptr, path);
    ASSERT_TRUE(sheet->tobeSavedimage);
    EXPECT_EQ(testvideo::frameNumberOf(sheet->tobeSavedimage->bitmap()), 1);
    EXPECT_EQ(sheet->infoLabel()->text(), QStringLiteral("This file type isn't supporting video and audio "
                                                         "playback. Consider downloading it in MP4 format."));
    EXPECT_FALSE(sheet->infoLabel()->isHidden());
    editor->dismiss(false);

    // A video without frames leaves the working picture empty, and nothing breaks.
    TestSheet* broken = open(nullptr, temp.filePath(QStringLiteral("missing.mp4")));
    EXPECT_FALSE(broken->tobeSavedimage);
}

TEST_F(FormatSheet, ADragOfExactlyTheThresholdSnapsBackAndOnlyMoreCloses) {
    QPointer<TestSheet> sheet = open(picture(10, 10));
    const double threshold = sheet->height() / 3.5;
    ASSERT_GT(threshold, 0);

    sheet->panChanged(-50); // upward: nothing moves
    EXPECT_EQ(sheet->containerTranslation(), 0);
    sheet->panChanged(threshold);
    EXPECT_EQ(sheet->containerTranslation(), threshold);
    sheet->panEnded(threshold);
    EXPECT_EQ(sheet->containerTranslation(), 0);
    EXPECT_EQ(editor->presentedViewController(), sheet);

    sheet->panChanged(threshold + 1);
    sheet->panEnded(threshold + 1);
    EXPECT_EQ(editor->presentedViewController(), nullptr);
    flush();
    EXPECT_TRUE(sheet.isNull());
}

TEST_F(FormatSheet, ARealMouseDragMovesTheContainerAndATapOnTopCloses) {
    TestSheet* sheet = open(picture(10, 10));
    QWidget* container = sheet->containerView();
    const QPoint start(container->width() / 2, container->height() - 10);
    QTest::mousePress(container, Qt::LeftButton, {}, start);
    QMouseEvent move(QEvent::MouseMove, QPointF(start + QPoint(0, 40)),
                     container->mapToGlobal(QPointF(start + QPoint(0, 40))), Qt::LeftButton, Qt::LeftButton,
                     {});
    QCoreApplication::sendEvent(container, &move);
    EXPECT_EQ(sheet->containerTranslation(), 40);
    QTest::mouseRelease(container, Qt::LeftButton, {}, start + QPoint(0, 40));
    EXPECT_EQ(sheet->containerTranslation(), 0);

    QTest::mouseClick(sheet->topView(), Qt::LeftButton, {}, QPoint(10, 10));
    EXPECT_EQ(sheet->backgroundColor().alpha(), 0);
    EXPECT_EQ(editor->presentedViewController(), nullptr);
}

TEST_F(FormatSheet, TheFileTypeRowOpensTheChooserMarkedWithTheSheetsType) {
    TestSheet* sheet = open(nullptr, QStringLiteral("/nonexistent.mp4"));
    QTest::mouseClick(sheet->fileTypeRow(), Qt::LeftButton);
    auto* chooser = qobject_cast<SavingTypeController*>(sheet->presentedViewController());
    ASSERT_NE(chooser, nullptr);
    EXPECT_EQ(chooser->selectedIndex, static_cast<int>(SavingtypeMethod::PNG));
    EXPECT_FALSE(chooser->isimage);
    EXPECT_EQ(chooser->delegate.get(), static_cast<SavingMethodPass*>(sheet));
}

TEST_F(FormatSheet, PickingTheSameFormatLeavesTheSheetAsItWas) {
    QPointer<TestSheet> sheet = open(picture(10, 10));
    sheet->option = 7;
    sheet->openSavingTypeChooser()->didSelectRow(static_cast<int>(SavingtypeMethod::PNG));
    flush();
    ASSERT_FALSE(sheet.isNull());
    EXPECT_EQ(editor->presentedViewController(), sheet);
    EXPECT_EQ(sheet->presentedViewController(), nullptr);
    EXPECT_EQ(sheet->option, 7);
    EXPECT_EQ(sheet->backgroundColor(), FormatSheetController::dimmingColor());
    EXPECT_TRUE(editor->switched.isEmpty());

    // Another format closes the sheet first, then the editor hears of it.
    sheet->openSavingTypeChooser()->didSelectRow(static_cast<int>(SavingtypeMethod::SVG));
    EXPECT_EQ(editor->switched, QList<SavingtypeMethod>{SavingtypeMethod::SVG});
    EXPECT_TRUE(editor->sheetGoneWhenTold);
}

TEST(FormatSheetHelpers, UprightImageTurnsOnlyWhatIsNotUp) {
    EXPECT_EQ(FormatSheetController::uprightImage(nullptr), nullptr);
    const ImagePtr up = picture(4, 2);
    EXPECT_EQ(FormatSheetController::uprightImage(up), up);

    const ImagePtr right = FormatSheetController::uprightImage(picture(4, 2, ImageOrientation::right));
    ASSERT_TRUE(right);
    EXPECT_EQ(right->orientation(), ImageOrientation::up);
    EXPECT_EQ(right->pixelSize(), QSize(2, 4));
    EXPECT_EQ(right->scale(), 2.0);
    EXPECT_EQ(right->bitmap().pixelColor(1, 0), QColor(Qt::red)); // a quarter turn clockwise

    const ImagePtr down = FormatSheetController::uprightImage(picture(4, 2, ImageOrientation::down));
    EXPECT_EQ(down->bitmap().pixelColor(3, 1), QColor(Qt::red));
    const ImagePtr left = FormatSheetController::uprightImage(picture(4, 2, ImageOrientation::left));
    EXPECT_EQ(left->bitmap().pixelColor(0, 3), QColor(Qt::red));
}

TEST(FormatSheetHelpers, ShareFileUrlArrivesATurnLater) {
    AppWindow window;
    auto* root = new ViewController;
    window.setRootViewController(root);
    window.makeKeyAndVisible();
    ShareSheet::resetPresentationRecord();
    FormatSheetController::shareFileURL(QStringLiteral("/tmp/some.pdf"), root);
    EXPECT_EQ(ShareSheet::presentationCount(), 0);
    EXPECT_TRUE(testsupport::waitUntil([] { return ShareSheet::presentationCount() == 1; }));
    EXPECT_EQ(ShareSheet::lastPresentedItem().filePath, QStringLiteral("/tmp/some.pdf"));
}

} // namespace
