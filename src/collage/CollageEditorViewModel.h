#pragma once

#include "collage/LayeredEditorViewModel.h"

// The collage editor's model: the layered editor with the collage's six tools.
class CollageEditorViewModel : public LayeredEditorViewModel {
public:
    explicit CollageEditorViewModel(std::vector<ImagePtr> images);
    // Same, with a fixed seed for the shuffle so that a run can be repeated.
    CollageEditorViewModel(std::vector<ImagePtr> images, std::uint64_t shuffleSeed);

    const std::vector<CollageTool>& tools() const { return tools_; }
    std::optional<CollageTool> selectedTool() const { return selectedTool_; }

    int toolCount() const override { return static_cast<int>(tools_.size()); }
    ToolDisplayable toolDisplayable(int index) const override;
    void selectTool(int index) override;

private:
    const std::vector<CollageTool> tools_;
    std::optional<CollageTool> selectedTool_;
};
