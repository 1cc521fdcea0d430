#include "collage/CollageEditorViewModel.h"

namespace {

std::vector<CollageTool> allTools() {
    const auto cases = allCases<CollageTool>();
    return {cases.begin(), cases.end()};
}

} // namespace

CollageEditorViewModel::CollageEditorViewModel(std::vector<ImagePtr> images)
    : CollageEditorViewModel(std::move(images), freshSeed()) {}

CollageEditorViewModel::CollageEditorViewModel(std::vector<ImagePtr> images, std::uint64_t shuffleSeed)
    : LayeredEditorViewModel(std::move(images), shuffleSeed), tools_(allTools()) {}

ToolDisplayable CollageEditorViewModel::toolDisplayable(int index) const {
    return index >= 0 && index < toolCount() ? ::toolDisplayable(tools_[index]) : ToolDisplayable{};
}

void CollageEditorViewModel::selectTool(int index) {
    if (index < 0 || index >= toolCount())
        return;
    const CollageTool tool = tools_[index];
    selectedTool_ = tool;
    if (onTitleChanged)
        onTitleChanged(title(tool));
    if (onToolSelectionChanged)
        onToolSelectionChanged(index);
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
