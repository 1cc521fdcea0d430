#include "collage/CollageEditorViewController.h"
#include "collage/CollageCanvasView.h"
#include "collage/CollageCell.h"
#include "collage/CropViewController.h"
#include "collage/FeatherOptionsView.h"
#include "collage/FeatherSliderRow.h"
#include "collage/LayerCell.h"
#include "collage/LayersPanelView.h"
#include "export/ExportScreens.h"
#include "export/RateShareController.h"
#include "platform/Alert.h"
#include "platform/AppWindow.h"
#include "platform/PhotoPicker.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

ImagePtr photo(const QColor& color, QSize size = QSize(320, 240)) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return Image::make(image);
}

std::vector<ImagePtr> photos(int count) {
    std::vector<ImagePtr> list;
    for (int i = 0; i < count; ++i)
        list.push_back(photo(QColor::fromHsv(i * 40, 160, 200)));
    return list;
}

int toolIndex(CollageTool tool) {
    return static_cast<int>(tool);
}

// The editor presented full screen in a phone-sized window, as the home screen does.
struct Editor {
    AppWindow window;
    ViewController* root = new ViewController;
    CollageEditorViewController* editor;
    explicit Editor(std::vector<ImagePtr> images, QSize size = QSize(390, 844)) {
        window.resize(size);
        window.setRootViewController(root);
        window.makeKeyAndVisible();
        editor = new CollageEditorViewController(std::make_unique<CollageEditorViewModel>(std::move(images)));
        root->present(editor, false);
        QCoreApplication::processEvents();
    }
    CollageCanvasView* canvas() const { return editor->canvasView(); }
};

TEST(CollageEditor, FeatherToolTwiceClosesThePanelAndTheChevronPointsDown) {
    Editor e(photos(3));
    EXPECT_EQ(e.editor->expandChevronSymbol(), QStringLiteral("chevron.down"));
    e.editor->didSelectTool(toolIndex(CollageTool::feather));
    EXPECT_EQ(e.editor->panelMode(), OptionsPanel::feather);
    EXPECT_TRUE(e.editor->isOptionsPanelVisible());
    EXPECT_EQ(e.editor->optionsPanelHeight(), 130);
    EXPECT_EQ(e.editor->expandChevronSymbol(), QStringLiteral("chevron.up"));
    EXPECT_EQ(e.editor->titleLabel()->text(), QStringLiteral("Feather"));
    e.editor->didSelectTool(toolIndex(CollageTool::feather));
    EXPECT_FALSE(e.editor->panelMode().has_value());
    EXPECT_FALSE(e.editor->isOptionsPanelVisible());
    EXPECT_EQ(e.editor->expandChevronSymbol(), QStringLiteral("chevron.down"));

    e.editor->didSelectTool(toolIndex(CollageTool::transform));
    EXPECT_EQ(e.editor->optionsPanelHeight(), 96);
    EXPECT_EQ(e.editor->optionCells().size(), 5);
    QTest::mouseClick(e.editor->expandChevronButton(), Qt::LeftButton);
    EXPECT_FALSE(e.editor->panelMode().has_value());
}

TEST(CollageEditor, FeatherSlidersFollowTheSelectedPane) {
    Editor e(photos(3));
    e.editor->didSelectTool(toolIndex(CollageTool::feather));
    FeatherSliderRow* horizontal = e.editor->featherOptionsView()->horizontalRow();
    FeatherSliderRow* vertical = e.editor->featherOptionsView()->verticalRow();
    EXPECT_DOUBLE_EQ(horizontal->value(), 25.0);
    horizontal->slider()->setValue(horizontal->slider()->maximum() * 60 / 100);
    vertical->slider()->setValue(vertical->slider()->maximum() * 10 / 100);
    EXPECT_EQ(e.canvas()->selectedPaneFeather(), std::make_pair(60.0, 10.0));

    e.canvas()->selectPane(2);
    EXPECT_DOUBLE_EQ(horizontal->value(), 25.0);
    EXPECT_DOUBLE_EQ(vertical->value(), 25.0);
    e.canvas()->selectPane(0);
    EXPECT_DOUBLE_EQ(horizontal->value(), 60.0);
    EXPECT_DOUBLE_EQ(vertical->value(), 10.0);
}

TEST(CollageEditor, LayersListTheFrontPaneFirstAndSelectFromTheList) {
    const auto images = photos(3);
    Editor e(images);
    e.editor->didTapLayers();
    LayersPanelView* layers = e.editor->layersPanelView();
    ASSERT_TRUE(layers->isOpen());
    ASSERT_EQ(layers->rowCount(), 3);
    EXPECT_EQ(layers->cellForRow(0)->title(), QStringLiteral("Layer 01"));
    EXPECT_EQ(layers->cellForRow(0)->thumbnail(), images[2]);
    layers->onSelectRow(0);
    EXPECT_EQ(e.canvas()->selectedIndex(), 2);
    e.editor->didTapLayers();
    EXPECT_FALSE(layers->isOpen());
}

TEST(CollageEditor, DeleteNeedsThreePhotosAndSaysSoAtTwo) {
    Editor e(photos(3));
    e.canvas()->selectPane(1);
    e.editor->didSelectTool(toolIndex(CollageTool::delete_));
    EXPECT_EQ(e.editor->viewModel().images().size(), 2u);
    EXPECT_EQ(e.canvas()->paneViews().size(), 2u);
    EXPECT_EQ(e.editor->viewModel().selectedLayoutIndex(), 0);

    e.editor->didSelectTool(toolIndex(CollageTool::delete_));
    Alert* alert = Alert::visibleAlert(&e.window);
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title(), QStringLiteral("Minimum Photos Required"));
    EXPECT_EQ(alert->message(), QStringLiteral("A collage needs at least 2 photos."));
    EXPECT_TRUE(alert->triggerAction(QStringLiteral("OK")));
    EXPECT_EQ(e.editor->viewModel().images().size(), 2u);
}

TEST(CollageEditor, ResetAsksFirstThenResetsTheSelectedPane) {
    Editor e(photos(2));
    CollagePaneView* pane = e.canvas()->paneViews()[0];
    e.canvas()->handleCanvasPinch(GestureState::began, 2.0);
    e.canvas()->handleCanvasPinch(GestureState::ended);
    e.editor->didSelectTool(toolIndex(CollageTool::reset));
    Alert* alert = Alert::visibleAlert(&e.window);
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title(), QStringLiteral("Reset All"));
    EXPECT_EQ(alert->message(), QStringLiteral("Are you sure you want to reset?"));
    alert->triggerAction(QStringLiteral("Cancel"));
    EXPECT_DOUBLE_EQ(pane->scale(), 2.0);
    e.editor->didSelectTool(toolIndex(CollageTool::reset));
    Alert::visibleAlert(&e.window)->triggerAction(QStringLiteral("Reset"));
    EXPECT_DOUBLE_EQ(pane->scale(), 1.0);
}

TEST(CollageEditor, ImportOffersWhatIsLeftOfEightAndAppends) {
    QTemporaryDir dir;
    QStringList files;
    for (int i = 0; i < 3; ++i) {
        const QString path = dir.filePath(QStringLiteral("import%1.png").arg(i));
        ASSERT_TRUE(photo(Qt::darkGreen)->bitmap().save(path));
        files << path;
    }
    PhotoPicker::setTestSource(
        [files](const PickerConfiguration&) { return std::optional<QStringList>(files); });
    Editor e(photos(5));
    e.editor->didSelectTool(toolIndex(CollageTool::transform));
    e.editor->didSelectOption(static_cast<int>(CollageTransformAction::importImages));
    ASSERT_TRUE(testsupport::waitUntil([&] { return e.editor->viewModel().images().size() == 8; }));
    PhotoPicker::setTestSource({});
    ASSERT_TRUE(PhotoPicker::lastConfiguration().has_value());
    EXPECT_EQ(PhotoPicker::lastConfiguration()->selectionLimit, 3);
    EXPECT_EQ(e.canvas()->paneViews().size(), 8u);
    for (CollageLayoutOption option : e.editor->viewModel().layoutOptions())
        EXPECT_EQ(paneCount(option), 8);
}

TEST(CollageEditor, ImportOfFilesThatAreNoPicturesKeepsTheCollageAsItWas) {
    QTemporaryDir dir;
    const QString text = dir.filePath(QStringLiteral("notes.png"));
    const QString empty = dir.filePath(QStringLiteral("empty.jpg"));
    const QString truncated = dir.filePath(QStringLiteral("half.jpg"));
    {
        QFile file(text);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("not a picture at all");
    }
    QFile(empty).open(QIODevice::WriteOnly);
    {
        QByteArray jpeg;
        QBuffer buffer(&jpeg);
        buffer.open(QIODevice::WriteOnly);
        ASSERT_TRUE(photo(Qt::red, QSize(400, 300))->bitmap().save(&buffer, "JPEG"));
        QFile file(truncated);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(jpeg.left(jpeg.size() / 2));
    }
    const QStringList files = {text, empty, truncated};
    PhotoPicker::setTestSource(
        [files](const PickerConfiguration&) { return std::optional<QStringList>(files); });
    const auto images = photos(4);
    Editor e(images);
    e.canvas()->selectPane(2);
    e.editor->didSelectTool(toolIndex(CollageTool::transform));
    e.editor->didSelectOption(static_cast<int>(CollageTransformAction::importImages));
    testsupport::spin(300);
    PhotoPicker::setTestSource({});
    EXPECT_EQ(e.editor->viewModel().images(), images);
    EXPECT_EQ(e.canvas()->paneViews().size(), 4u);
    EXPECT_EQ(e.canvas()->selectedIndex(), 2);
}

TEST(CollageEditor, CropReplacesTheSelectedPhotoWithTheCroppedOne) {
    Editor e(photos(2));
    e.canvas()->selectPane(1);
    e.editor->didSelectTool(toolIndex(CollageTool::transform));
    e.editor->didSelectOption(static_cast<int>(CollageTransformAction::crop));
    auto* cropper = qobject_cast<CropViewController*>(e.editor->presentedViewController());
    ASSERT_NE(cropper, nullptr);
    CropperState state;
    state.cropRect = QRect(10, 20, 100, 50);
    cropper->onConfirm(state);
    ASSERT_NE(e.editor->viewModel().image(1), nullptr);
    EXPECT_EQ(e.editor->viewModel().image(1)->pixelSize(), QSize(100, 50));
    EXPECT_EQ(e.editor->presentedViewController(), nullptr);
}

TEST(CollageEditor, TallRatioOnAShortScreenKeepsTheSheetInView) {
    Editor e(photos(2), QSize(390, 640));
    const auto& ratios = e.editor->viewModel().aspectRatioOptions();
    const int tall = static_cast<int>(
        std::find(ratios.begin(), ratios.end(), CollageAspectRatioOption::portrait1x2) - ratios.begin());
    e.editor->didSelectTool(toolIndex(CollageTool::ratio));
    e.editor->didSelectOption(tall);
    const QRect canvas = e.canvas()->geometry();
    EXPECT_LE(canvas.bottom(), e.editor->expandChevronButton()->y());
    EXPECT_GE(e.editor->expandChevronButton()->y(), 0);
    EXPECT_NEAR(static_cast<double>(canvas.width()) / canvas.height(), 0.5, 0.02);
}

TEST(CollageEditor, SaveShowsTheShareScreenWithTheFlattenedCanvas) {
    registerExportScreens();
    Editor e(photos(2));
    e.editor->didTapSave();
    auto* share = qobject_cast<RateShareController*>(e.editor->presentedViewController());
    ASSERT_NE(share, nullptr);
    ASSERT_NE(share->shareImage, nullptr);
    EXPECT_EQ(share->fetchData, SavingtypeMethod::JPG);
    const QSizeF points = e.canvas()->canvasSize();
    EXPECT_EQ(share->shareImage->pixelSize(), (points * 3.0).toSize());
}

} // namespace

namespace {

// The light strokes of a white symbol drawn on a dark button, as the screen shows them at scale 1.
QRect inkBounds(QWidget* widget) {
    const QImage image = widget->grab().toImage();
    QRect ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) >= 160)
                ink |= QRect(x, y, 1, 1);
    return ink;
}

TEST(CollageEditor, SwitchingPanelsDirectlyShowsEveryOptionOfTheNewPanel) {
    Editor e(photos(3));
    const int layouts = static_cast<int>(e.editor->viewModel().layoutOptions().size());
    struct Step {
        CollageTool tool;
        int count;
        QSize item;
        int panelHeight;
    };
    // From the closed state, then from one open panel straight to the next.
    const Step steps[] = {
        {CollageTool::ratio, 17, {64, 64}, 76},       {CollageTool::layout, layouts, {64, 64}, 76},
        {CollageTool::ratio, 17, {64, 64}, 76},       {CollageTool::transform, 5, {64, 88}, 96},
        {CollageTool::layout, layouts, {64, 64}, 76}, {CollageTool::feather, 0, {}, 130},
        {CollageTool::transform, 5, {64, 88}, 96},    {CollageTool::ratio, 17, {64, 64}, 76}};
    for (const Step& step : steps) {
        e.editor->didSelectTool(toolIndex(step.tool));
        QCoreApplication::processEvents();
        const std::string panel = title(step.tool).toStdString();
        ASSERT_EQ(e.editor->optionCells().size(), step.count) << panel;
        EXPECT_EQ(e.editor->optionsPanelHeight(), step.panelHeight) << panel;
        for (CollageCell* cell : e.editor->optionCells()) {
            EXPECT_TRUE(cell->isVisible()) << panel;
            EXPECT_EQ(cell->size(), step.item) << panel;
            EXPECT_TRUE(cell->parentWidget()->rect().contains(cell->geometry())) << panel;
        }
        if (step.count > 0) {
            // The first options can be seen on the screen, inside the open panel.
            CollageCell* first = e.editor->optionCells().front();
            EXPECT_EQ(first->visibleRegion().boundingRect(), first->rect()) << panel;
            EXPECT_GE(first->mapTo(e.editor, QPoint(0, 0)).y(), e.canvas()->geometry().bottom()) << panel;
        }
    }
}

TEST(CollageEditor, ChevronsAreDrawnLargeEnoughToReadInTheirButtons) {
    Editor e(photos(2));
    auto* back = e.editor->findChild<QPushButton*>(QStringLiteral("backButton"));
    ASSERT_NE(back, nullptr);
    const QRect backInk = inkBounds(back);
    EXPECT_GE(backInk.height(), 12) << "in a 32-point circle";
    EXPECT_GE(backInk.width(), 7);
    EXPECT_LE(backInk.height(), 24);
    EXPECT_LE(std::abs(backInk.center().y() - back->height() / 2), 2);
    EXPECT_LE(std::abs(backInk.center().x() - back->width() / 2), 3);

    for (bool open : {false, true}) {
        if (open)
            e.editor->didSelectTool(toolIndex(CollageTool::layout));
        const QRect ink = inkBounds(e.editor->expandChevronButton());
        EXPECT_GE(ink.width(), 12) << (open ? "chevron.up" : "chevron.down");
        EXPECT_GE(ink.height(), 6) << (open ? "chevron.up" : "chevron.down");
    }
}

} // namespace
