#include "mixer/PicMixerViewModel.h"

#include "platform/Log.h"

#include <array>

template <> std::span<const PicMixerTool> allCases<PicMixerTool>() {
    static constexpr std::array cases{PicMixerTool::feather,  PicMixerTool::ratio,     PicMixerTool::layout,
                                      PicMixerTool::customBG, PicMixerTool::transform, PicMixerTool::reset,
                                      PicMixerTool::delete_};
    return cases;
}

QString title(PicMixerTool tool) {
    switch (tool) {
    case PicMixerTool::customBG:
        return QStringLiteral("Background");
    case PicMixerTool::feather:
        return title(CollageTool::feather);
    case PicMixerTool::ratio:
        return title(CollageTool::ratio);
    case PicMixerTool::layout:
        return title(CollageTool::layout);
    case PicMixerTool::transform:
        return title(CollageTool::transform);
    case PicMixerTool::reset:
        return title(CollageTool::reset);
    case PicMixerTool::delete_:
        return title(CollageTool::delete_);
    }
    return {};
}

QString symbolName(PicMixerTool tool) {
    switch (tool) {
    case PicMixerTool::customBG:
        return QStringLiteral("photo.on.rectangle.angled");
    case PicMixerTool::feather:
        return symbolName(CollageTool::feather);
    case PicMixerTool::ratio:
        return symbolName(CollageTool::ratio);
    case PicMixerTool::layout:
        return symbolName(CollageTool::layout);
    case PicMixerTool::transform:
        return symbolName(CollageTool::transform);
    case PicMixerTool::reset:
        return symbolName(CollageTool::reset);
    case PicMixerTool::delete_:
        return symbolName(CollageTool::delete_);
    }
    return {};
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
    if (onTitleChanged)
        onTitleChanged(title(tool));
    if (onToolSelectionChanged)
        onToolSelectionChanged(index);
    switch (tool) {
    case PicMixerTool::feather:
        togglePanel(OptionsPanel::feather);
        break;
    case PicMixerTool::ratio:
        togglePanel(OptionsPanel::ratio);
        break;
    case PicMixerTool::layout:
        togglePanel(OptionsPanel::layout);
        break;
    case PicMixerTool::customBG:
        setActivePanel(std::nullopt);
        if (onCustomBGRequested)
            onCustomBGRequested();
        break;
    case PicMixerTool::transform:
        togglePanel(OptionsPanel::transform);
        break;
    case PicMixerTool::reset:
        setActivePanel(std::nullopt);
        if (onResetConfirmationRequested)
            onResetConfirmationRequested();
        break;
    case PicMixerTool::delete_:
        setActivePanel(std::nullopt);
        requestDelete();
        break;
    }
}
