#include "mixer/PicMixerViewModel.h"

#include "platform/Log.h"

#include <array>

template <> std::span<const PicMixerTool> allCases<PicMixerTool>() {
    static constexpr std::array cases{PicMixerTool::feather,  PicMixerTool::ratio,     PicMixerTool::layout,
                                      PicMixerTool::customBG, PicMixerTool::transform, PicMixerTool::reset,
                                      PicMixerTool::delete_};
    return cases;
}

std::optional<CollageTool> collageTool(PicMixerTool tool) {
    switch (tool) {
    case PicMixerTool::feather:
        return CollageTool::feather;
    case PicMixerTool::ratio:
        return CollageTool::ratio;
    case PicMixerTool::layout:
        return CollageTool::layout;
    case PicMixerTool::transform:
        return CollageTool::transform;
    case PicMixerTool::reset:
        return CollageTool::reset;
    case PicMixerTool::delete_:
        return CollageTool::delete_;
    case PicMixerTool::customBG:
        break;
    }
    return std::nullopt;
}

QString title(PicMixerTool tool) {
    const std::optional<CollageTool> shared = collageTool(tool);
    return shared ? title(*shared) : QStringLiteral("Background");
}

QString symbolName(PicMixerTool tool) {
    const std::optional<CollageTool> shared = collageTool(tool);
    return shared ? symbolName(*shared) : QStringLiteral("photo.on.rectangle.angled");
}

ToolDisplayable toolDisplayable(PicMixerTool tool) {
    return {title(tool), symbolName(tool), tool == PicMixerTool::delete_};
}

namespace {
std::vector<PicMixerTool> allTools() {
    const auto cases = allCases<PicMixerTool>();
    return {cases.begin(), cases.end()};
}
} // namespace

PicMixerViewModel::PicMixerViewModel(std::vector<ImagePtr> images)
    : PicMixerViewModel(std::move(images), freshSeed()) {}

PicMixerViewModel::PicMixerViewModel(std::vector<ImagePtr> images, std::uint64_t shuffleSeed)
    : LayeredEditorViewModel(std::move(images), shuffleSeed), tools_(allTools()) {}

ToolDisplayable PicMixerViewModel::toolDisplayable(int index) const {
    return index >= 0 && index < toolCount() ? ::toolDisplayable(tools_[std::size_t(index)])
                                             : ToolDisplayable{};
}

void PicMixerViewModel::selectTool(int index) {
    if (index < 0 || index >= toolCount())
        fatalError("Index out of range");
    const PicMixerTool tool = tools_[std::size_t(index)];
    selectedTool_ = tool;
    announceTool(index, title(tool));
    if (const std::optional<CollageTool> shared = collageTool(tool)) {
        runCollageTool(*shared);
        return;
    }
    setActivePanel(std::nullopt);
    if (onCustomBGRequested)
        onCustomBGRequested();
}
