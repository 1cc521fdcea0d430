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
    announceTool(index, title(tool));
    runCollageTool(tool);
}
