#pragma once

#include "collage/LayeredEditorViewController.h"
#include "mixer/BackgroundRemoving.h"
#include "mixer/PicMixerViewModel.h"

#include <memory>

// The Pic Mixer: the layered editor over cut-out subjects. The photos stand on the canvas at once;
// every photo, and every one imported later, is then freed of its background behind "Processing...",
// and the panes are rebuilt with the cut-outs (a photo that could not be freed keeps its background,
// silently). The custom background tool opens the background picker, whose picture lies behind all
// panes until it is replaced or the editor is reset. "Save" opens the share screen as a JPG.
class PicMixerViewController : public LayeredEditorViewController {
    Q_OBJECT
public:
    explicit PicMixerViewController(std::unique_ptr<PicMixerViewModel> viewModel, QWidget* parent = nullptr);
    // With services of the caller's choosing.
    PicMixerViewController(std::unique_ptr<PicMixerViewModel> viewModel,
                           std::shared_ptr<BackgroundRemoving> bgRemoverServices,
                           std::shared_ptr<HUDPresenting> hud, QWidget* parent = nullptr);

    PicMixerViewModel& viewModel() const { return model_; }
    // Whether a batch of background removal is under way.
    bool isProcessing() const { return processing_ > 0; }

    void didTapNext();

protected:
    void viewDidLoad() override;
    void saveButtonTapped() override { didTapNext(); }
    void takeImportedImages(std::vector<ImagePtr> images) override;

private:
    void presentBackgroundPicker();

    PicMixerViewModel& model_;
    std::shared_ptr<BackgroundRemoving> bgRemoverServices;
    std::shared_ptr<HUDPresenting> hud;
    int processing_ = 0;
};
