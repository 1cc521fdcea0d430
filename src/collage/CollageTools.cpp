#include "collage/CollageTools.h"

#include <array>

namespace {

struct Label {
    const char* title;
    const char* symbolName;
};

constexpr Label kToolLabels[] = {
    {"Feather", "wind"},
    {"Ratio", "rectangle.split.2x1"},
    {"Layout", "square.grid.2x2"},
    {"Transform", "arrow.left.and.right.righttriangle.left.righttriangle.right"},
    {"Reset", "arrow.counterclockwise"},
    {"Delete", "trash"},
};

constexpr Label kActionLabels[] = {
    {"Import", "square.and.arrow.down"},
    {"Swap", "arrow.2.squarepath"},
    {"Rotate", "arrow.clockwise"},
    {"Flip", "arrow.left.and.right.righttriangle.left.righttriangle.right"},
    {"Crop", "crop"},
};

template <typename Enum, std::size_t N> constexpr std::array<Enum, N> makeCases() {
    std::array<Enum, N> cases{};
    for (std::size_t i = 0; i < N; ++i)
        cases[i] = static_cast<Enum>(i);
    return cases;
}

constexpr auto kTools = makeCases<CollageTool, std::size(kToolLabels)>();
constexpr auto kActions = makeCases<CollageTransformAction, std::size(kActionLabels)>();
constexpr auto kPanels = makeCases<OptionsPanel, 4>();

template <std::size_t N> const Label* labelAt(const Label (&labels)[N], int ordinal) {
    return ordinal >= 0 && ordinal < static_cast<int>(N) ? &labels[ordinal] : nullptr;
}

QString titleOf(const Label* label) {
    return label ? QString::fromLatin1(label->title) : QString();
}
QString symbolOf(const Label* label) {
    return label ? QString::fromLatin1(label->symbolName) : QString();
}

} // namespace

template <> std::span<const CollageTool> allCases<CollageTool>() {
    return kTools;
}
template <> std::span<const CollageTransformAction> allCases<CollageTransformAction>() {
    return kActions;
}
template <> std::span<const OptionsPanel> allCases<OptionsPanel>() {
    return kPanels;
}

QString title(CollageTool tool) {
    return titleOf(labelAt(kToolLabels, static_cast<int>(tool)));
}
QString symbolName(CollageTool tool) {
    return symbolOf(labelAt(kToolLabels, static_cast<int>(tool)));
}
QString title(CollageTransformAction action) {
    return titleOf(labelAt(kActionLabels, static_cast<int>(action)));
}
QString symbolName(CollageTransformAction action) {
    return symbolOf(labelAt(kActionLabels, static_cast<int>(action)));
}

ToolDisplayable toolDisplayable(CollageTool tool) {
    return {title(tool), symbolName(tool), tool == CollageTool::delete_};
}
