#include "collage/LayeredEditorViewModel.h"

#include <utility>

namespace {

template <typename Enum> std::vector<Enum> casesVector() {
    const auto cases = allCases<Enum>();
    return {cases.begin(), cases.end()};
}

template <typename T> std::optional<T> elementAt(const std::vector<T>& list, std::optional<int> index) {
    if (index && *index >= 0 && *index < static_cast<int>(list.size()))
        return list[*index];
    if (!list.empty())
        return list.front();
    return std::nullopt;
}

bool inBounds(int index, std::size_t count) {
    return index >= 0 && index < static_cast<int>(count);
}

} // namespace

std::vector<CollageLayoutOption> layoutOptionsFitting(int imageCount) {
    std::vector<CollageLayoutOption> fitting;
    for (CollageLayoutOption option : allCases<CollageLayoutOption>()) {
        if (paneCount(option) == imageCount)
            fitting.push_back(option);
    }
    return fitting;
}

LayeredEditorViewModel::LayeredEditorViewModel(std::vector<ImagePtr> images, std::uint64_t shuffleSeed)
    : images_(std::move(images)), transformActions_(casesVector<CollageTransformAction>()),
      layoutOptions_(layoutOptionsFitting(static_cast<int>(images_.size()))),
      aspectRatioOptions_(casesVector<CollageAspectRatioOption>()), random_(shuffleSeed) {}

std::uint64_t LayeredEditorViewModel::freshSeed() {
    std::random_device device;
    return (static_cast<std::uint64_t>(device()) << 32) ^ device();
}

std::optional<CollageLayoutOption> LayeredEditorViewModel::selectedLayoutOption() const {
    return elementAt(layoutOptions_, selectedLayoutIndex_);
}

std::optional<CollageAspectRatioOption> LayeredEditorViewModel::selectedAspectRatioOption() const {
    return elementAt(aspectRatioOptions_, selectedAspectRatioIndex_);
}

void LayeredEditorViewModel::announceTool(int index, const QString& title) {
    if (onTitleChanged)
        onTitleChanged(title);
    if (onToolSelectionChanged)
        onToolSelectionChanged(index);
}

void LayeredEditorViewModel::runCollageTool(CollageTool tool) {
    switch (tool) {
    case CollageTool::feather:
        togglePanel(OptionsPanel::feather);
        break;
    case CollageTool::ratio:
        togglePanel(OptionsPanel::ratio);
        break;
    case CollageTool::layout:
        togglePanel(OptionsPanel::layout);
        break;
    case CollageTool::transform:
        togglePanel(OptionsPanel::transform);
        break;
    case CollageTool::reset:
        setActivePanel(std::nullopt);
        if (onResetConfirmationRequested)
            onResetConfirmationRequested();
        break;
    case CollageTool::delete_:
        setActivePanel(std::nullopt);
        requestDelete();
        break;
    }
}

void LayeredEditorViewModel::togglePanel(OptionsPanel panel) {
    setActivePanel(activePanel_ == panel ? std::nullopt : std::optional(panel));
}

// Tool taps announce the panel every time, changed or not, so the sheet always settles to it.
void LayeredEditorViewModel::setActivePanel(std::optional<OptionsPanel> panel) {
    activePanel_ = panel;
    if (onActivePanelChanged)
        onActivePanelChanged(panel);
}

void LayeredEditorViewModel::requestDelete() {
    // The canvas knows which pane is selected, so the controller does the delete itself.
    if (static_cast<int>(images_.size()) > minimumImageCount) {
        if (onDeleteRequested)
            onDeleteRequested();
    } else if (onDeleteBlockedByMinimum) {
        onDeleteBlockedByMinimum();
    }
}

void LayeredEditorViewModel::selectLayoutOption(int index) {
    if (!inBounds(index, layoutOptions_.size()))
        return;
    selectedLayoutIndex_ = index;
    if (onLayoutOptionSelected)
        onLayoutOptionSelected(layoutOptions_[index], index);
}

void LayeredEditorViewModel::selectAspectRatioOption(int index) {
    if (!inBounds(index, aspectRatioOptions_.size()))
        return;
    selectedAspectRatioIndex_ = index;
    if (onAspectRatioOptionSelected)
        onAspectRatioOptionSelected(aspectRatioOptions_[index], index);
}

void LayeredEditorViewModel::performTransformAction(int index) {
    if (!inBounds(index, transformActions_.size()))
        return;
    switch (transformActions_[index]) {
    case CollageTransformAction::importImages:
        requestImport();
        break;
    case CollageTransformAction::swap:
        shuffleImages();
        break;
    case CollageTransformAction::rotate:
        if (onRotateSelectedPaneRequested)
            onRotateSelectedPaneRequested();
        break;
    case CollageTransformAction::flip:
        if (onFlipSelectedPaneRequested)
            onFlipSelectedPaneRequested();
        break;
    case CollageTransformAction::crop:
        if (onCropRequested)
            onCropRequested();
        break;
    }
}

void LayeredEditorViewModel::requestImport() {
    const int remaining = maximumImageCount - static_cast<int>(images_.size());
    if (remaining >= 1 && onImportRequested)
        onImportRequested(remaining);
}

void LayeredEditorViewModel::shuffleImages() {
    const int count = static_cast<int>(images_.size());
    if (count < 2)
        return;
    for (int i = 0; i < count - 1; ++i) {
        std::uniform_int_distribution<int> pick(i, count - 1);
        const int j = pick(random_);
        if (i != j)
            std::swap(images_[i], images_[j]);
    }
    if (onImagesChanged)
        onImagesChanged(images_, selectedLayoutOption());
}

ImagePtr LayeredEditorViewModel::image(int index) const {
    return inBounds(index, images_.size()) ? images_[index] : nullptr;
}

void LayeredEditorViewModel::replaceImage(int index, ImagePtr image) {
    if (!inBounds(index, images_.size()))
        return;
    images_[index] = std::move(image);
    if (onImagesChanged)
        onImagesChanged(images_, selectedLayoutOption());
}

void LayeredEditorViewModel::appendImages(const std::vector<ImagePtr>& images) {
    images_.insert(images_.end(), images.begin(), images.end());
}

void LayeredEditorViewModel::rebuildLayoutOptions() {
    layoutOptions_ = layoutOptionsFitting(static_cast<int>(images_.size()));
    // The old choice is dropped even when the count comes out the same.
    selectedLayoutIndex_ = layoutOptions_.empty() ? std::nullopt : std::optional(0);
    if (onImagesChanged)
        onImagesChanged(images_,
                        layoutOptions_.empty() ? std::nullopt : std::optional(layoutOptions_.front()));
}

void LayeredEditorViewModel::deleteImage(int index) {
    if (static_cast<int>(images_.size()) <= minimumImageCount || !inBounds(index, images_.size()))
        return;
    images_.erase(images_.begin() + index);
    rebuildLayoutOptions();
}

void LayeredEditorViewModel::closeActivePanel() {
    if (!activePanel_)
        return;
    activePanel_.reset();
    if (onActivePanelChanged)
        onActivePanelChanged(std::nullopt);
}

void LayeredEditorViewModel::confirmReset() {
    if (onResetConfirmed)
        onResetConfirmed();
}
