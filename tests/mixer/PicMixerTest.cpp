#include "collage/CollageBackdropPaneView.h"
#include "collage/CollageCanvasView.h"
#include "collage/CollageCell.h"
#include "collage/ToolButtonCell.h"
#include "mixer/BackgroundRemovalService.h"
#include "mixer/CustomBackgroundPickerViewController.h"
#include "mixer/CustomBackgroundSliderRow.h"
#include "mixer/PicMixerViewController.h"
#include "platform/Alert.h"
#include "platform/AppWindow.h"
#include "platform/Assets.h"
#include "platform/ColorPicker.h"
#include "platform/ImageView.h"
#include "platform/PhotoPicker.h"
#include "platform/ProgressHud.h"
#include "platform/Screen.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

ImagePtr plain(const QColor& colour, QSize size = QSize(200, 150)) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return Image::make(image);
}

std::vector<ImagePtr> plains(int count) {
    std::vector<ImagePtr> list;
    for (int i = 0; i < count; ++i)
        list.push_back(plain(QColor::fromHsv(i * 40, 160, 200)));
    return list;
}

// A coloured square on black: a subject that stands out from the picture's border.
ImagePtr withSubject(const QColor& colour) {
    QImage image(300, 300, QImage::Format_RGB32);
    image.fill(Qt::black);
    for (int y = 100; y < 200; ++y)
        for (int x = 100; x < 200; ++x)
            image.setPixel(x, y, colour.rgb());
    return Image::make(image);
}

struct Screen390 {
    AppWindow window;
    ViewController* root = new ViewController;
    Screen390() {
        window.resize(390, 844);
        window.setRootViewController(root);
        window.makeKeyAndVisible();
        ProgressHud::setHost(&window);
    }
    ~Screen390() {
        ProgressHud::dismiss();
        ProgressHud::setHost(nullptr);
    }
};

PicMixerViewController* mixerOver(Screen390& screen, std::vector<ImagePtr> images) {
    auto* mixer = new PicMixerViewController(std::make_unique<PicMixerViewModel>(std::move(images)));
    screen.root->present(mixer, false);
    QCoreApplication::processEvents();
    return mixer;
}

TEST(PicMixerViewModel, SevenToolsWithTheBackgroundFourthThatClosesThePanelFirst) {
    PicMixerViewModel model(plains(3), 1);
    ASSERT_EQ(model.toolCount(), 7);
    EXPECT_EQ(model.toolDisplayable(3).title, QStringLiteral("Background"));
    EXPECT_EQ(model.toolDisplayable(3).symbolName, QStringLiteral("photo.on.rectangle.angled"));
    EXPECT_TRUE(model.toolDisplayable(6).isDestructive);
    EXPECT_FALSE(model.toolDisplayable(0).isDestructive);
    QStringList events;
    model.onActivePanelChanged = [&](std::optional<OptionsPanel> panel) {
        events << (panel ? QStringLiteral("panel") : QStringLiteral("none"));
    };
    model.onCustomBGRequested = [&] { events << QStringLiteral("background"); };
    model.onTitleChanged = [&](const QString& title) { events << title; };
    model.selectTool(0);
    model.selectTool(3);
    EXPECT_EQ(events, (QStringList{"Feather", "panel", "Background", "none", "background"}));
    EXPECT_FALSE(model.activePanel());
    EXPECT_EQ(model.selectedTool(), PicMixerTool::customBG);
}

TEST(PicMixerViewModelDeathTest, AToolOutOfRangeStopsTheProgram) {
    PicMixerViewModel model(plains(2), 1);
    EXPECT_DEATH(model.selectTool(7), "");
}

TEST(PicMixer, PhotosAreReplacedByTheirCutOutsAndFailuresKeepTheirBackground) {
    Screen390 screen;
    const ImagePtr flat = plain(Qt::darkGreen);
    PicMixerViewController* mixer = mixerOver(screen, {withSubject(Qt::red), flat, withSubject(Qt::blue)});
    EXPECT_TRUE(mixer->isProcessing());
    EXPECT_TRUE(ProgressHud::isVisible());
    ASSERT_TRUE(testsupport::waitUntil([&] { return !mixer->isProcessing(); }, 20000));
    EXPECT_FALSE(ProgressHud::isVisible());
    const auto& images = mixer->viewModel().images();
    ASSERT_EQ(images.size(), 3u);
    EXPECT_EQ(qAlpha(images[0]->bitmap().pixel(10, 10)), 0);
    EXPECT_EQ(qAlpha(images[0]->bitmap().pixel(150, 150)), 255);
    EXPECT_EQ(images[1], flat);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(mixer->canvasView()->paneViews()[i]->currentImage(), images[i]);
    // The delete tool is red whether it is selected or not.
    mixer->didSelectTool(6);
    auto* deleteCell = static_cast<ToolButtonCell*>(mixer->toolCells()[6]);
    EXPECT_TRUE(deleteCell->isSelected());
    EXPECT_GT(deleteCell->tintColor().red(), 200);
    EXPECT_LT(deleteCell->tintColor().blue(), 100);
}

TEST(PicMixer, AResultForAnotherPhotoCountLeavesThePhotosButRebuildsThePanes) {
    Screen390 screen;
    PicMixerViewController* mixer =
        mixerOver(screen, {withSubject(Qt::red), withSubject(Qt::blue), plain(Qt::gray)});
    const auto before = mixer->viewModel().images();
    // Deleting while the batch runs (the indicator would block a finger, not this call).
    mixer->canvasView()->selectPane(2);
    mixer->viewModel().deleteImage(2);
    const auto* firstPane = mixer->canvasView()->paneViews().front();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !mixer->isProcessing(); }, 20000));
    ASSERT_EQ(mixer->viewModel().images().size(), 2u);
    EXPECT_EQ(mixer->viewModel().images()[0], before[0]);
    EXPECT_NE(mixer->canvasView()->paneViews().front(), firstPane);
}

TEST(PicMixer, ImportedPhotosAreCutOutAndUnreadableOnesDropped) {
    Screen390 screen;
    PicMixerViewController* mixer = mixerOver(screen, {withSubject(Qt::red), withSubject(Qt::blue)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return !mixer->isProcessing(); }, 20000));
    QTemporaryDir dir;
    const QString a = dir.filePath(QStringLiteral("a.png")), b = dir.filePath(QStringLiteral("b.png")),
                  c = dir.filePath(QStringLiteral("c.png"));
    ASSERT_TRUE(withSubject(Qt::yellow)->bitmap().save(a));
    QFile broken(b);
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("not a picture");
    broken.close();
    ASSERT_TRUE(withSubject(Qt::cyan)->bitmap().save(c));
    PhotoPicker::setTestSource([&](const PickerConfiguration& configuration) -> std::optional<QStringList> {
        EXPECT_EQ(configuration.selectionLimit, 6);
        return QStringList{a, b, c};
    });
    mixer->didSelectTool(static_cast<int>(PicMixerTool::transform));
    mixer->didSelectOption(static_cast<int>(CollageTransformAction::importImages));
    ASSERT_TRUE(testsupport::waitUntil([&] { return mixer->viewModel().images().size() == 4u; }, 20000));
    PhotoPicker::setTestSource({});
    const auto& images = mixer->viewModel().images();
    EXPECT_EQ(QColor(images[2]->bitmap().pixel(150, 150)).rgb() & 0xFFFFFF,
              QColor(Qt::yellow).rgb() & 0xFFFFFF);
    EXPECT_EQ(QColor(images[3]->bitmap().pixel(150, 150)).rgb() & 0xFFFFFF,
              QColor(Qt::cyan).rgb() & 0xFFFFFF);
    EXPECT_EQ(qAlpha(images[3]->bitmap().pixel(5, 5)), 0);
    EXPECT_EQ(mixer->canvasView()->paneViews().size(), 4u);
}

TEST(PicMixer, TheChosenBackgroundLiesBehindThePanesUntilAReset) {
    Screen390 screen;
    PicMixerViewController* mixer = mixerOver(screen, {withSubject(Qt::red), withSubject(Qt::blue)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return !mixer->isProcessing(); }, 20000));
    mixer->didSelectTool(static_cast<int>(PicMixerTool::layout));
    mixer->didSelectTool(static_cast<int>(PicMixerTool::customBG));
    EXPECT_FALSE(mixer->panelMode());
    auto* picker = qobject_cast<CustomBackgroundPickerViewController*>(mixer->presentedViewController());
    ASSERT_NE(picker, nullptr);
    ASSERT_TRUE(picker->onDone);
    picker->onDone(plain(Qt::magenta, QSize(300, 300)));
    EXPECT_TRUE(mixer->canvasView()->isCustomBackgroundActive());
    for (auto* backdrop : mixer->canvasView()->backdropViews())
        EXPECT_FALSE(backdrop->isVisible());
    mixer->viewModel().confirmReset();
    EXPECT_FALSE(mixer->canvasView()->isCustomBackgroundActive());
}

TEST(PicMixer, DeletingAtTheMinimumNamesThePicMixer) {
    Screen390 screen;
    PicMixerViewController* mixer = mixerOver(screen, {withSubject(Qt::red), withSubject(Qt::blue)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return !mixer->isProcessing(); }, 20000));
    mixer->canvasView()->selectPane(0);
    mixer->didSelectTool(static_cast<int>(PicMixerTool::delete_));
    auto* alert = qobject_cast<Alert*>(mixer->presentedViewController());
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title(), QStringLiteral("Minimum Photos Required"));
    EXPECT_EQ(alert->message(), QStringLiteral("Pic Mixer needs at least 2 photos."));
}

class BackgroundPicker : public ::testing::Test {
protected:
    void SetUp() override {
        picker = new CustomBackgroundPickerViewController;
        screen.root->present(picker, false);
        QCoreApplication::processEvents();
    }
    Screen390 screen;
    CustomBackgroundPickerViewController* picker = nullptr;
};

TEST_F(BackgroundPicker, DoneWaitsForASelectionAndDeliversTheSquarePreviewAtScreenScale) {
    EXPECT_FALSE(picker->doneButton()->isEnabled());
    EXPECT_TRUE(picker->slidersStackView()->isHidden());
    EXPECT_FALSE(picker->previewPlaceholderLabel()->isHidden());
    ImagePtr delivered;
    picker->onDone = [&](ImagePtr image) { delivered = image; };
    picker->didTapDone();
    EXPECT_FALSE(delivered);

    QTemporaryDir assets;
    ASSERT_TRUE(plain(QColor(30, 90, 200), QSize(64, 48))->bitmap().save(assets.filePath("texture3.png")));
    const QStringList saved = Assets::searchPaths();
    Assets::setSearchPaths({assets.path()});
    picker->didSelectCatalogItem(2, 2);
    picker->didSelectCatalogItem(0, 0); // a missing asset changes nothing
    Assets::setSearchPaths(saved);
    ASSERT_EQ(picker->selectedCatalogIndexPath(), (CustomBackgroundPickerViewController::IndexPath{2, 2}));
    EXPECT_TRUE(picker->doneButton()->isEnabled());
    EXPECT_TRUE(picker->previewPlaceholderLabel()->isHidden());
    picker->didTapDone();
    ASSERT_TRUE(delivered);
    const QSize side = picker->previewContainerView()->size();
    EXPECT_EQ(side.width(), side.height());
    EXPECT_EQ(delivered->pixelSize(), side * Screen::main().scale());
    EXPECT_EQ(QColor(delivered->bitmap().pixel(10, 10)), QColor(30, 90, 200));
}

TEST_F(BackgroundPicker, SlidersStartAtZeroForEveryNewSelectionAndOnlyPicturesBlur) {
    picker->hueChanged(0); // without a selection: nothing happens
    QTemporaryDir assets;
    ASSERT_TRUE(plain(Qt::red, QSize(40, 40))->bitmap().save(assets.filePath("wallpaper1.png")));
    const QStringList saved = Assets::searchPaths();
    Assets::setSearchPaths({assets.path()});
    picker->didSelectCatalogItem(1, 0);
    Assets::setSearchPaths(saved);
    picker->blurRow()->slider()->setValue(100 * CustomBackgroundSliderRow::resolution);
    EXPECT_DOUBLE_EQ(picker->previewBlurFraction(), 1.0);
    picker->hueRow()->slider()->setValue(120 * CustomBackgroundSliderRow::resolution);
    // The picture's hue turned a third round in YIQ, the way a rising hue goes: red becomes a green.
    const QImage shown = picker->previewImageView()->image()->bitmap();
    EXPECT_GT(qGreen(shown.pixel(5, 5)), 150);
    EXPECT_LT(qRed(shown.pixel(5, 5)), 60);
    EXPECT_EQ(picker->baseImageForFilters()->bitmap().pixel(5, 5), qRgb(255, 0, 0));

    // A colour: the sliders are back at 0, and a full blur leaves it sharp though the label says 100.
    picker->didTapColor();
    auto* colours = qobject_cast<ColorPicker*>(picker->presentedViewController());
    ASSERT_NE(colours, nullptr);
    colours->pick(Color::rgb(0.2, 0.4, 0.8));
    EXPECT_EQ(picker->hueRow()->value(), 0.0);
    EXPECT_EQ(picker->blurRow()->value(), 0.0);
    EXPECT_FALSE(picker->selectedCatalogIndexPath());
    picker->blurRow()->slider()->setValue(100 * CustomBackgroundSliderRow::resolution);
    EXPECT_EQ(picker->blurRow()->valueLabel()->text(), QStringLiteral("100"));
    EXPECT_EQ(picker->previewBlurFraction(), 0.0);
    // Half a turn either way gives the same colour.
    picker->hueRow()->slider()->setValue(180 * CustomBackgroundSliderRow::resolution);
    const QColor forward = picker->previewBackgroundColor();
    picker->hueRow()->slider()->setValue(-180 * CustomBackgroundSliderRow::resolution);
    EXPECT_EQ(picker->previewBackgroundColor(), forward);
    EXPECT_NE(forward, Color::rgb(0.2, 0.4, 0.8).toQColor());
}

TEST(CustomBackgrounds, HueTurnsKeepOrientationAndWrapAround) {
    QImage stored(4, 2, QImage::Format_RGB32);
    stored.fill(qRgb(200, 30, 30));
    const ImagePtr sideways = Image::make(stored, 2.0, ImageOrientation::right);
    const ImagePtr turned = CustomBackgrounds::hueAdjusted(sideways, 1.0);
    EXPECT_EQ(turned->orientation(), ImageOrientation::right);
    EXPECT_EQ(turned->scale(), 2.0);
    EXPECT_NE(turned->bitmap().pixel(0, 0), stored.pixel(0, 0));
    EXPECT_EQ(CustomBackgrounds::hueAdjusted(sideways, 0.0), sideways);
    // A picture turns the same way round the colour wheel as a plain colour does: a sixth of a turn
    // takes red towards yellow on both, not towards magenta.
    const double redHue = QColor(stored.pixel(0, 0)).hsvHueF();
    for (const double turn : {M_PI / 3, -M_PI / 3}) {
        const double pictureHue =
            QColor(CustomBackgrounds::hueAdjusted(sideways, turn)->bitmap().pixel(0, 0)).hsvHueF();
        const double colourHue =
            CustomBackgrounds::rotatedHue(Color::rgb(200 / 255.0, 30 / 255.0, 30 / 255.0), turn).hsb().hue;
        const auto distance = [](double a, double b) {
            return std::min(std::abs(a - b), 1 - std::abs(a - b));
        };
        EXPECT_LT(distance(pictureHue, colourHue), 0.1) << turn;
        EXPECT_GT(distance(pictureHue, redHue), 0.08) << turn;
    }
    const Color colour = Color::rgb(0.9, 0.5, 0.1);
    const Color back = CustomBackgrounds::rotatedHue(CustomBackgrounds::rotatedHue(colour, 2.0), -2.0);
    EXPECT_NEAR(back.red, colour.red, 1e-9);
    EXPECT_NEAR(back.green, colour.green, 1e-9);
    // An orange turned back by more than its own hue wraps round to the red-magenta end of the wheel.
    for (const double turn : {-0.5, -1.0, -7.0})
        EXPECT_NEAR(CustomBackgrounds::rotatedHue(colour, turn).hsb().hue,
                    std::fmod(colour.hsb().hue + turn / (2 * M_PI) + 2.0, 1.0), 1e-9)
            << turn;
}

} // namespace
