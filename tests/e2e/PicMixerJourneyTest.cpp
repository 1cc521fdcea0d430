#include "collage/CollageCanvasView.h"
#include "collage/CollageCell.h"
#include "e2e/Journey.h"
#include "export/RateShareController.h"
#include "mixer/CustomBackgroundActionButton.h"
#include "mixer/CustomBackgroundPickerViewController.h"
#include "mixer/CustomBackgroundSliderRow.h"
#include "mixer/GradientColorPickerViewController.h"
#include "mixer/GradientSwatchButton.h"
#include "mixer/PicMixerViewController.h"
#include "platform/ColorPicker.h"
#include "platform/PhotoPicker.h"
#include "platform/ProgressHud.h"
#include "platform/ShareSheet.h"
#include "platform/TestMediaFiles.h"
#include "shell/FeatureGridCell.h"
#include "shell/NewHomePageController.h"

#include <QPushButton>
#include <QSlider>
#include <QTest>

namespace {

using journey::Journey;

// Share of a picture's pixels that are fully clear.
double clearShare(const Image& image) {
    const QImage pixels = image.bitmap().convertToFormat(QImage::Format_ARGB32);
    long long clear = 0;
    for (int y = 0; y < pixels.height(); ++y)
        for (int x = 0; x < pixels.width(); ++x)
            clear += qAlpha(pixels.pixel(x, y)) == 0;
    return double(clear) / (double(pixels.width()) * pixels.height());
}

// Home card, three photos, their cut-outs on the canvas, a gradient background turned in hue, saved.
TEST_F(Journey, ThreePhotosBecomeCutOutsOnAGradientAndAreSaved) {
    const QStringList picked = putIntoPictures(
        {QStringLiteral("messi5.jpg"), QStringLiteral("basketball1.png"), QStringLiteral("fruits.jpg")});
    ShareSheet::resetPresentationRecord();
    ASSERT_TRUE(start());
    NewHomePageController* home = skipToHome();
    ASSERT_NE(home, nullptr);

    click(home->featureCell(4));
    PhotoPicker* picker = waitForPresented<PhotoPicker>();
    ASSERT_NE(picker, nullptr);
    for (const QString& photo : picked)
        QTest::mouseClick(picker->cellForFile(photo), Qt::LeftButton);
    QTest::mouseClick(picker->addButton(), Qt::LeftButton);

    // The photos stand on the canvas at once, behind "Processing...".
    PicMixerViewController* mixer = nullptr;
    ASSERT_TRUE(testsupport::waitUntil([&] {
        mixer = qobject_cast<PicMixerViewController*>(topScreen());
        return mixer != nullptr;
    }));
    ASSERT_TRUE(testsupport::waitUntil([&] { return ProgressHud::isVisible(); }));
    EXPECT_EQ(ProgressHud::status(), QStringLiteral("Processing..."));
    EXPECT_EQ(mixer->canvasView()->paneViews().size(), 3u);

    ASSERT_TRUE(testsupport::waitUntil([&] { return !mixer->isProcessing(); }, 90000));
    EXPECT_FALSE(ProgressHud::isVisible());
    const auto& images = mixer->viewModel().images();
    ASSERT_EQ(images.size(), 3u);
    // The two photos with people come back as cut-outs, and the panes show them.
    for (int i : {0, 1}) {
        EXPECT_GT(clearShare(*images[std::size_t(i)]), 0.3) << i;
        EXPECT_EQ(mixer->canvasView()->paneViews()[std::size_t(i)]->currentImage(), images[std::size_t(i)]);
    }

    // The background tool, from the bar.
    click(mixer->toolCells()[static_cast<int>(PicMixerTool::customBG)]);
    auto* backgrounds = waitForPresented<CustomBackgroundPickerViewController>();
    ASSERT_NE(backgrounds, nullptr);
    EXPECT_FALSE(backgrounds->doneButton()->isEnabled());
    click(backgrounds->gradientButton());
    auto* sheet = waitForPresented<GradientColorPickerViewController>();
    ASSERT_NE(sheet, nullptr);
    click(sheet->endSwatchButton());
    auto* colours = waitForPresented<ColorPicker>();
    ASSERT_NE(colours, nullptr);
    const int teal = 12 + 2 * 12 + 6; // full colour row, half way round the hues
    click(colours->swatches()[teal]);
    const Color picked2 = colours->selectedColor();
    click(colours->doneButton());
    ASSERT_EQ(waitForPresented<GradientColorPickerViewController>(), sheet);
    EXPECT_EQ(sheet->endColor(), picked2);
    // The colour sheet's shield goes with the end of its animation.
    ASSERT_TRUE(testsupport::waitUntil([&] { return sheet->presentedViewController() == nullptr; }));
    testsupport::spin(400);
    click(sheet->confirmButton());
    ASSERT_EQ(waitForPresented<CustomBackgroundPickerViewController>(), backgrounds);
    ASSERT_TRUE(testsupport::waitUntil([&] { return backgrounds->presentedViewController() == nullptr; }));
    testsupport::spin(400);
    ASSERT_TRUE(backgrounds->previewGradientColors());
    const QColor startBefore = backgrounds->previewGradientColors()->first;

    // Hue: a quarter turn by keyboard on the slider.
    QSlider* hue = backgrounds->hueRow()->slider();
    hue->setFocus();
    hue->setValue(90 * CustomBackgroundSliderRow::resolution);
    EXPECT_EQ(backgrounds->hueAmount(), 90.0);
    const QColor startAfter = backgrounds->previewGradientColors()->first;
    EXPECT_NEAR(startAfter.hueF(), std::fmod(startBefore.hueF() + 0.25, 1.0), 0.01);
    click(backgrounds->doneButton());
    ASSERT_EQ(waitForPresented<PicMixerViewController>(), mixer);
    ASSERT_TRUE(testsupport::waitUntil([&] { return mixer->presentedViewController() == nullptr; }));
    testsupport::spin(400);
    EXPECT_TRUE(mixer->canvasView()->isCustomBackgroundActive());

    auto* save = mixer->findChild<QPushButton*>(QStringLiteral("saveButton"));
    ASSERT_NE(save, nullptr);
    click(save);
    // Flattening and writing a full-screen JPG take a while on a busy machine.
    ASSERT_TRUE(testsupport::waitUntil([&] { return ShareSheet::presentationCount() >= 1; }, 20000));
    EXPECT_NE(qobject_cast<RateShareController*>(mixer->presentedViewController()), nullptr);
    ASSERT_TRUE(testsupport::waitUntil([&] { return albumFiles().size() == 1; }, 20000));
    EXPECT_TRUE(albumFiles().front().endsWith(QStringLiteral(".jpg"), Qt::CaseInsensitive));
    const QImage saved = testvideo::decodeFirstPicture(albumFiles().front());
    ASSERT_FALSE(saved.isNull());
    // The top-left corner shows the gradient's start colour turned a quarter round, not a photo's
    // backdrop.
    const QColor corner = saved.pixelColor(4, 4);
    EXPECT_NEAR(corner.hueF(), startAfter.hueF(), 0.06);
}

} // namespace
