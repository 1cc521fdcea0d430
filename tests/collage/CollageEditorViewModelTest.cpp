#include "collage/CollageEditorViewModel.h"

#include <gtest/gtest.h>

#include <QImage>
#include <algorithm>
#include <map>
#include <string>

namespace {

std::vector<ImagePtr> photos(int count) {
    std::vector<ImagePtr> images;
    for (int i = 0; i < count; ++i) {
        QImage bitmap(2, 2, QImage::Format_RGB32);
        bitmap.fill(qRgb(i * 20, 0, 0));
        images.push_back(Image::make(bitmap));
    }
    return images;
}

// Records every callback as one line, in firing order.
struct Recorder {
    std::vector<std::string> events;

    explicit Recorder(CollageEditorViewModel& model) {
        model.onTitleChanged = [this](const QString& title) { add("title " + title.toStdString()); };
        model.onToolSelectionChanged = [this](std::optional<int> i) { add("tool " + number(i)); };
        model.onActivePanelChanged = [this](std::optional<OptionsPanel> panel) {
            add("panel " + (panel ? std::to_string(static_cast<int>(*panel)) : std::string("none")));
        };
        model.onLayoutOptionSelected = [this](CollageLayoutOption option, int index) {
            add("layout " + layoutOptionName(option).toStdString() + " " + std::to_string(index));
        };
        model.onAspectRatioOptionSelected = [this](CollageAspectRatioOption option, int index) {
            add("ratio " + displayName(option).toStdString() + " " + std::to_string(index));
        };
        model.onImagesChanged = [this](const std::vector<ImagePtr>& images,
                                       std::optional<CollageLayoutOption> o) {
            add("images " + std::to_string(images.size()) + " " +
                (o ? layoutOptionName(*o).toStdString() : std::string("none")));
        };
        model.onImportRequested = [this](int limit) { add("import " + std::to_string(limit)); };
        model.onRotateSelectedPaneRequested = [this] { add("rotate"); };
        model.onFlipSelectedPaneRequested = [this] { add("flip"); };
        model.onCropRequested = [this] { add("crop"); };
        model.onResetConfirmationRequested = [this] { add("confirm reset"); };
        model.onResetConfirmed = [this] { add("reset"); };
        model.onDeleteRequested = [this] { add("delete"); };
        model.onDeleteBlockedByMinimum = [this] { add("delete blocked"); };
    }

    void add(std::string event) { events.push_back(std::move(event)); }
    static std::string number(std::optional<int> i) { return i ? std::to_string(*i) : "none"; }
    std::vector<std::string> take() { return std::exchange(events, {}); }
};

using Events = std::vector<std::string>;

constexpr int kFeather = 0, kRatio = 1, kLayout = 2, kTransform = 3, kReset = 4, kDelete = 5;
constexpr int kImport = 0, kSwap = 1, kRotate = 2, kFlip = 3, kCrop = 4;

} // namespace

TEST(CollageEditorViewModelTest, CreationOffersTheFittingLayoutsInCatalogueOrder) {
    const std::map<int, std::size_t> expected{{2, 6}, {3, 10}, {4, 20}, {5, 24}, {6, 21}, {7, 22}, {8, 24}};
    for (const auto& [count, layouts] : expected) {
        CollageEditorViewModel model(photos(count));
        ASSERT_EQ(model.layoutOptions().size(), layouts) << count;
        EXPECT_TRUE(std::is_sorted(model.layoutOptions().begin(), model.layoutOptions().end()));
        EXPECT_EQ(model.selectedLayoutOption(), model.layoutOptions().front());
    }
    CollageEditorViewModel three(photos(3));
    EXPECT_EQ(three.layoutOptions().front(), CollageLayoutOption::threeLeftFullRightSplit);
    EXPECT_EQ(three.selectedLayoutIndex(), 0);
    EXPECT_EQ(three.selectedAspectRatioIndex(), 0);
    EXPECT_EQ(three.selectedAspectRatioOption(), CollageAspectRatioOption::original);
    EXPECT_EQ(three.tools().size(), 6u);
    EXPECT_EQ(three.transformActions().size(), 5u);
    EXPECT_EQ(three.aspectRatioOptions().size(), 17u);
    EXPECT_FALSE(three.selectedTool());
    EXPECT_FALSE(three.activePanel());
}

TEST(CollageEditorViewModelTest, CountsWithoutLayoutsHaveNoEffectiveLayout) {
    for (int count : {0, 1, 9}) {
        CollageEditorViewModel model(photos(count));
        EXPECT_TRUE(model.layoutOptions().empty()) << count;
        EXPECT_FALSE(model.selectedLayoutOption()) << count;
        EXPECT_EQ(model.selectedLayoutIndex(), 0) << count;
    }
    // Dropping to a count without layouts clears the index as well.
    CollageEditorViewModel model(photos(8));
    Recorder recorder(model);
    model.appendImages(photos(1));
    EXPECT_TRUE(recorder.take().empty());
    model.rebuildLayoutOptions();
    EXPECT_EQ(recorder.take(), Events{"images 9 none"});
    EXPECT_FALSE(model.selectedLayoutIndex());
    EXPECT_FALSE(model.selectedLayoutOption());
}

TEST(CollageEditorViewModelTest, SelectingLayoutsAndRatios) {
    CollageEditorViewModel model(photos(2));
    Recorder recorder(model);
    model.selectLayoutOption(3);
    model.selectLayoutOption(3); // the same again still rebuilds the panes
    EXPECT_EQ(recorder.take(), (Events{"layout twoColumnsLeftLarge 3", "layout twoColumnsLeftLarge 3"}));
    EXPECT_EQ(model.selectedLayoutOption(), CollageLayoutOption::twoColumnsLeftLarge);

    model.selectLayoutOption(6);
    model.selectLayoutOption(-1);
    model.selectAspectRatioOption(17);
    model.selectAspectRatioOption(-1);
    EXPECT_TRUE(recorder.take().empty());
    EXPECT_EQ(model.selectedLayoutIndex(), 3);
    EXPECT_EQ(model.selectedAspectRatioIndex(), 0);

    model.selectAspectRatioOption(10);
    EXPECT_EQ(recorder.take(), Events{"ratio Linkedin 10"});
    EXPECT_EQ(model.selectedAspectRatioOption(), CollageAspectRatioOption::linkedin);

    // A change of photos starts again from the first layout, even at the same count; the ratio stays.
    model.replaceImage(0, photos(1).front());
    EXPECT_EQ(recorder.take(), Events{"images 2 twoColumnsLeftLarge"});
    model.rebuildLayoutOptions();
    EXPECT_EQ(recorder.take(), Events{"images 2 twoColumnsEqual"});
    EXPECT_EQ(model.selectedLayoutIndex(), 0);
    EXPECT_EQ(model.selectedAspectRatioOption(), CollageAspectRatioOption::linkedin);
}

TEST(CollageEditorViewModelTest, PanelToolsToggleAndAnnounceInOrder) {
    CollageEditorViewModel model(photos(4));
    Recorder recorder(model);
    model.selectTool(kFeather);
    EXPECT_EQ(recorder.take(), (Events{"title Feather", "tool 0", "panel 0"}));
    EXPECT_EQ(model.activePanel(), OptionsPanel::feather);

    model.selectTool(kLayout);
    EXPECT_EQ(recorder.take(), (Events{"title Layout", "tool 2", "panel 1"}));
    model.selectTool(kLayout);
    EXPECT_EQ(recorder.take(), (Events{"title Layout", "tool 2", "panel none"}));
    EXPECT_FALSE(model.activePanel());
    EXPECT_EQ(model.selectedTool(), CollageTool::layout);

    model.selectTool(kRatio);
    model.selectTool(kTransform);
    EXPECT_EQ(model.activePanel(), OptionsPanel::transform);

    // Reset closes the panel first; with no panel open it still announces the empty panel.
    recorder.take();
    model.selectTool(kReset);
    EXPECT_EQ(recorder.take(), (Events{"title Reset", "tool 4", "panel none", "confirm reset"}));
    model.selectTool(kReset);
    EXPECT_EQ(recorder.take(), (Events{"title Reset", "tool 4", "panel none", "confirm reset"}));
    model.confirmReset();
    EXPECT_EQ(recorder.take(), Events{"reset"});

    model.selectTool(6);
    model.selectTool(-1);
    EXPECT_TRUE(recorder.take().empty());
    EXPECT_EQ(model.selectedTool(), CollageTool::reset);
}

TEST(CollageEditorViewModelTest, CloseActivePanelAnnouncesOnlyAChange) {
    CollageEditorViewModel model(photos(2));
    Recorder recorder(model);
    model.closeActivePanel();
    EXPECT_TRUE(recorder.take().empty());
    model.selectTool(kRatio);
    recorder.take();
    model.closeActivePanel();
    EXPECT_EQ(recorder.take(), Events{"panel none"});
    EXPECT_FALSE(model.activePanel());
}

TEST(CollageEditorViewModelTest, DeleteIsRefusedAtTheMinimum) {
    CollageEditorViewModel model(photos(2));
    const auto before = model.images();
    Recorder recorder(model);
    model.selectTool(kFeather);
    recorder.take();
    model.selectTool(kDelete);
    EXPECT_EQ(recorder.take(), (Events{"title Delete", "tool 5", "panel none", "delete blocked"}));
    EXPECT_FALSE(model.activePanel());
    model.deleteImage(0);
    EXPECT_TRUE(recorder.take().empty());
    EXPECT_EQ(model.images(), before);
}

TEST(CollageEditorViewModelTest, DeleteKeepsOrderAndStartsFromTheFirstLayout) {
    CollageEditorViewModel model(photos(3));
    const auto original = model.images();
    model.selectLayoutOption(7);
    Recorder recorder(model);
    model.selectTool(kDelete);
    EXPECT_EQ(recorder.take(), (Events{"title Delete", "tool 5", "panel none", "delete"}));
    EXPECT_EQ(model.images().size(), 3u); // the controller does the removal

    model.deleteImage(3);
    model.deleteImage(-1);
    EXPECT_TRUE(recorder.take().empty());
    model.deleteImage(0);
    EXPECT_EQ(recorder.take(), Events{"images 2 twoColumnsEqual"});
    EXPECT_EQ(model.images(), (std::vector<ImagePtr>{original[1], original[2]}));
    EXPECT_EQ(model.layoutOptions().size(), 6u);
    EXPECT_EQ(model.selectedLayoutIndex(), 0);
}

TEST(CollageEditorViewModelTest, ImportAsksForWhatIsLeftUpToEight) {
    for (const auto& [count, expected] :
         std::vector<std::pair<int, Events>>{{8, {}}, {7, {"import 1"}}, {2, {"import 6"}}, {9, {}}}) {
        CollageEditorViewModel model(photos(count));
        Recorder recorder(model);
        model.performTransformAction(kImport);
        EXPECT_EQ(recorder.take(), expected) << count;
    }
    CollageEditorViewModel model(photos(5));
    model.appendImages(photos(3));
    Recorder recorder(model);
    model.performTransformAction(kImport);
    EXPECT_TRUE(recorder.take().empty());
}

TEST(CollageEditorViewModelTest, PaneActionsAreForwarded) {
    CollageEditorViewModel model(photos(3));
    Recorder recorder(model);
    model.performTransformAction(kRotate);
    model.performTransformAction(kFlip);
    model.performTransformAction(kCrop);
    model.performTransformAction(5);
    model.performTransformAction(-1);
    EXPECT_EQ(recorder.take(), (Events{"rotate", "flip", "crop"}));
}

TEST(CollageEditorViewModelTest, ImageAccessAndReplacement) {
    CollageEditorViewModel model(photos(3));
    const ImagePtr replacement = photos(1).front();
    EXPECT_EQ(model.image(2), model.images()[2]);
    EXPECT_EQ(model.image(3), nullptr);
    EXPECT_EQ(model.image(-1), nullptr);

    Recorder recorder(model);
    model.replaceImage(3, replacement);
    model.replaceImage(-1, replacement);
    EXPECT_TRUE(recorder.take().empty());
    model.replaceImage(1, replacement);
    EXPECT_EQ(recorder.take(), Events{"images 3 threeLeftFullRightSplit"});
    EXPECT_EQ(model.image(1), replacement);

    const auto extra = photos(2);
    model.appendImages(extra);
    EXPECT_TRUE(recorder.take().empty());
    EXPECT_EQ(model.image(3), extra[0]);
    EXPECT_EQ(model.image(4), extra[1]);
    EXPECT_EQ(model.layoutOptions().size(), 10u); // until the rebuild
}

TEST(CollageEditorViewModelTest, SwapShufflesWithinTheCurrentLayout) {
    CollageEditorViewModel single(photos(1), 7);
    Recorder quiet(single);
    single.performTransformAction(kSwap);
    EXPECT_TRUE(quiet.take().empty());

    CollageEditorViewModel model(photos(6), 7);
    model.selectLayoutOption(2);
    const auto before = model.images();
    Recorder recorder(model);
    model.performTransformAction(kSwap);
    EXPECT_EQ(recorder.take(), Events{"images 6 sixThirdLayout"});
    EXPECT_TRUE(std::is_permutation(model.images().begin(), model.images().end(), before.begin()));
    EXPECT_EQ(model.selectedLayoutIndex(), 2);

    // The same seed gives the same order.
    CollageEditorViewModel again(before, 7);
    again.shuffleImages();
    EXPECT_EQ(again.images(), model.images());
}

// Each shuffle must move the photos by each of the 6 arrangements of 3 equally often. Counted relative to
// the order before the shuffle: repeated shuffles of the running order even out a biased shuffle. A
// shuffle that draws from the whole range at every step (9 equally likely paths onto 6 arrangements)
// fails this by a wide margin.
TEST(CollageEditorViewModelTest, ShuffleIsUniformOverAllOrders) {
    CollageEditorViewModel model(photos(3), 20261121);
    constexpr int kRounds = 60000;
    std::map<std::vector<int>, int> seen;
    for (int i = 0; i < kRounds; ++i) {
        const auto before = model.images();
        model.shuffleImages();
        std::vector<int> moved;
        for (const ImagePtr& image : model.images())
            moved.push_back(
                static_cast<int>(std::find(before.begin(), before.end(), image) - before.begin()));
        ++seen[moved];
    }
    ASSERT_EQ(seen.size(), 6u);
    const double expected = kRounds / 6.0;
    double chiSquare = 0;
    for (const auto& [arrangement, count] : seen)
        chiSquare += (count - expected) * (count - expected) / expected;
    // 5 degrees of freedom: 20.5 is the 0.1 % tail.
    EXPECT_LT(chiSquare, 20.5);
}
