#pragma once

#include "collage/LayeredEditorViewModel.h"
#include "mixer/PicMixerTool.h"

// The Pic Mixer's model: the layered editor with seven tools, the custom background among them. A tap
// on a tool out of range is a programmer's error here and stops the program.
class PicMixerViewModel : public LayeredEditorViewModel {
public:
    explicit PicMixerViewModel(std::vector<ImagePtr> images);
    PicMixerViewModel(std::vector<ImagePtr> images, std::uint64_t shuffleSeed);

    const std::vector<PicMixerTool>& tools() const { return tools_; }
    std::optional<PicMixerTool> selectedTool() const { return selectedTool_; }

    // The custom background tool was tapped, after any open panel was closed.
    std::function<void()> onCustomBGRequested;

    int toolCount() const override { return static_cast<int>(tools_.size()); }
    ToolDisplayable toolDisplayable(int index) const override;
    void selectTool(int index) override;

    // The cut-outs in place of the photos, one for one, without telling anyone.
    void replaceImages(std::vector<ImagePtr> images) { assignImages(std::move(images)); }

private:
    const std::vector<PicMixerTool> tools_;
    std::optional<PicMixerTool> selectedTool_;
};
