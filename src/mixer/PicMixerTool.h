#pragma once

#include "collage/CollageTools.h"

#include <optional>

// The Pic Mixer's bottom bar, in bar order: the collage's tools and the custom background.
enum class PicMixerTool : int {
    feather,
    ratio,
    layout,
    customBG,
    transform,
    reset,
    delete_, // `delete` is a keyword
};

template <> std::span<const PicMixerTool> allCases<PicMixerTool>();

// The collage's tool a mixer tool is; none for the custom background, the mixer's own.
std::optional<CollageTool> collageTool(PicMixerTool tool);
QString title(PicMixerTool tool);
QString symbolName(PicMixerTool tool);
ToolDisplayable toolDisplayable(PicMixerTool tool);
