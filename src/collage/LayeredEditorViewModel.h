#pragma once

#include "collage/CollageAspectRatioOption.h"
#include "collage/CollageLayoutOption.h"
#include "collage/CollageTools.h"
#include "platform/Image.h"

#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <vector>

// What the layered editors (the collage and the Pic Mixer) hold that does not depend on the screen:
// the photos in pane order, the layouts that fit them, the chosen layout and ratio, and the active
// panel. It decides what a transform action and a tap on one of the collage's tools mean; each editor
// adds its own tool bar and any tool of its own. It never sees a view; every change is published through the
// on... callbacks, each with one listener, and an empty callback is skipped. Callbacks fire synchronously
// inside the call that caused them. Bad indices are ignored. Main thread only.
class LayeredEditorViewModel {
public:
    static constexpr int maximumImageCount = 8;
    // A photo can be deleted only while more than this many are held.
    static constexpr int minimumImageCount = 2;

    LayeredEditorViewModel(std::vector<ImagePtr> images, std::uint64_t shuffleSeed);
    virtual ~LayeredEditorViewModel() = default;
    LayeredEditorViewModel(const LayeredEditorViewModel&) = delete;
    LayeredEditorViewModel& operator=(const LayeredEditorViewModel&) = delete;

    // The tool bar, in bar order.
    virtual int toolCount() const = 0;
    virtual ToolDisplayable toolDisplayable(int index) const = 0;
    virtual void selectTool(int index) = 0;

    const std::vector<ImagePtr>& images() const { return images_; }
    const std::vector<CollageTransformAction>& transformActions() const { return transformActions_; }
    const std::vector<CollageLayoutOption>& layoutOptions() const { return layoutOptions_; }
    const std::vector<CollageAspectRatioOption>& aspectRatioOptions() const { return aspectRatioOptions_; }
    std::optional<int> selectedLayoutIndex() const { return selectedLayoutIndex_; }
    std::optional<int> selectedAspectRatioIndex() const { return selectedAspectRatioIndex_; }
    std::optional<OptionsPanel> activePanel() const { return activePanel_; }

    std::function<void(const QString& title)> onTitleChanged;
    std::function<void(std::optional<int> index)> onToolSelectionChanged;
    std::function<void(std::optional<OptionsPanel> panel)> onActivePanelChanged;
    std::function<void(CollageLayoutOption option, int index)> onLayoutOptionSelected;
    std::function<void(CollageAspectRatioOption option, int index)> onAspectRatioOptionSelected;
    std::function<void(const std::vector<ImagePtr>& images, std::optional<CollageLayoutOption> option)>
        onImagesChanged;
    std::function<void(int maximumCount)> onImportRequested;
    std::function<void()> onRotateSelectedPaneRequested;
    std::function<void()> onFlipSelectedPaneRequested;
    std::function<void()> onCropRequested;
    std::function<void()> onResetConfirmationRequested;
    std::function<void()> onResetConfirmed;
    std::function<void()> onDeleteRequested;
    std::function<void()> onDeleteBlockedByMinimum;

    // The layout in force: the selected one, else the first that fits, else none (no layout fits the
    // photo count, and the canvas falls back to equal columns).
    std::optional<CollageLayoutOption> selectedLayoutOption() const;
    // The ratio in force, by the same rule.
    std::optional<CollageAspectRatioOption> selectedAspectRatioOption() const;

    // Fires even when the index is the one already selected, so the panes are rebuilt either way.
    void selectLayoutOption(int index);
    void selectAspectRatioOption(int index);
    void performTransformAction(int index);
    // Puts the photos in a uniformly random order and publishes it; the layout stays.
    void shuffleImages();

    // Null when there is no photo at the index.
    ImagePtr image(int index) const;
    void replaceImage(int index, ImagePtr image);
    // Adds photos without telling anyone; rebuildLayoutOptions follows once the import is complete.
    void appendImages(const std::vector<ImagePtr>& images);
    // Refilters the layouts for the current count and starts again from the first one.
    void rebuildLayoutOptions();
    void deleteImage(int index);
    void closeActivePanel();
    // The user agreed in the reset alert; fires onResetConfirmed.
    void confirmReset();

protected:
    // Tells the listeners that the tool at `index`, called `title`, was tapped.
    void announceTool(int index, const QString& title);
    // What a tap on one of the collage's tools does in either editor: a panel tool opens its panel and a
    // second tap closes it; reset and delete close any open panel and ask.
    void runCollageTool(CollageTool tool);
    // A second tap on the same tool closes its panel.
    void togglePanel(OptionsPanel panel);
    void setActivePanel(std::optional<OptionsPanel> panel);
    void requestDelete();
    static std::uint64_t freshSeed();
    // Puts new photos in place of the held ones without telling anyone.
    void assignImages(std::vector<ImagePtr> images) { images_ = std::move(images); }

private:
    void requestImport();

    std::vector<ImagePtr> images_;
    const std::vector<CollageTransformAction> transformActions_;
    std::vector<CollageLayoutOption> layoutOptions_;
    const std::vector<CollageAspectRatioOption> aspectRatioOptions_;
    std::optional<int> selectedLayoutIndex_ = 0;
    std::optional<int> selectedAspectRatioIndex_ = 0;
    std::optional<OptionsPanel> activePanel_;
    std::mt19937_64 random_;
};

// The layouts whose pane count equals the photo count, in catalogue order.
std::vector<CollageLayoutOption> layoutOptionsFitting(int imageCount);
