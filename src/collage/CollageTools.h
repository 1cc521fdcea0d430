#pragma once

#include "collage/CollageCases.h"

#include <QString>

// The collage editor's bottom bar, in bar order.
enum class CollageTool : int {
    feather,
    ratio,
    layout,
    transform,
    reset,
    delete_, // `delete` is a keyword
};

// The transform panel's actions, in panel order.
enum class CollageTransformAction : int {
    importImages,
    swap,
    rotate,
    flip,
    crop,
};

// The panels above the tool bar; held as an optional, empty while no panel is open.
enum class OptionsPanel : int {
    feather,
    layout,
    ratio,
    transform,
};

template <> std::span<const CollageTool> allCases<CollageTool>();
template <> std::span<const CollageTransformAction> allCases<CollageTransformAction>();
template <> std::span<const OptionsPanel> allCases<OptionsPanel>();

QString title(CollageTool tool);
QString symbolName(CollageTool tool);
QString title(CollageTransformAction action);
QString symbolName(CollageTransformAction action);

// What a bottom-bar button shows, whichever editor's tool enumeration it comes from. A destructive
// tool is drawn in red whether it is selected or not.
struct ToolDisplayable {
    QString title;
    QString symbolName;
    bool isDestructive = false;
};

ToolDisplayable toolDisplayable(CollageTool tool);
