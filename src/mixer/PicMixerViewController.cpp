#include "mixer/PicMixerViewController.h"

#include "collage/CollageCanvasView.h"
#include "mixer/BackgroundRemovalService.h"
#include "mixer/CustomBackgroundPickerViewController.h"

#include <QPointer>

namespace {

LayeredEditorViewController::Texts mixerTexts() {
    return {QStringLiteral("Pic Mixer needs at least %1 photos."), QStringLiteral("Pic Mixer Is Full"),
            QStringLiteral("Pic Mixer holds at most %1 photos."),
            QStringLiteral("Pic Mixer holds at most %1 photos; only the first %2 dropped were added.")};
}

} // namespace

PicMixerViewController::PicMixerViewController(std::unique_ptr<PicMixerViewModel> viewModel, QWidget* parent)
    : PicMixerViewController(
          std::move(viewModel),
          std::make_shared<BackgroundRemovalService>(std::make_shared<BackgroundRemover>()),
          std::make_shared<SVHUDService>(), parent) {}

PicMixerViewController::PicMixerViewController(std::unique_ptr<PicMixerViewModel> viewModel,
                                               std::shared_ptr<BackgroundRemoving> bgRemoverServices,
                                               std::shared_ptr<HUDPresenting> hud, QWidget* parent)
    : LayeredEditorViewController(std::move(viewModel), mixerTexts(), QStringLiteral("picMixer"), parent),
      model_(static_cast<PicMixerViewModel&>(editorModel())), bgRemoverServices(std::move(bgRemoverServices)),
      hud(std::move(hud)) {}

void PicMixerViewController::viewDidLoad() {
    // The photos as they came stand on the canvas at once, behind the progress display.
    LayeredEditorViewController::viewDidLoad();
    QPointer<PicMixerViewController> self(this);
    model_.onCustomBGRequested = [self]() {
        if (self)
            self->presentBackgroundPicker();
    };
    ++processing_;
    removeBackgrounds(bgRemoverServices, hud, model_.images(), this, [self](std::vector<ImagePtr> results) {
        if (!self)
            return;
        --self->processing_;
        // Photos deleted or added meanwhile make the results stale; the panes are rebuilt either way.
        if (results.size() == self->model_.images().size())
            self->model_.replaceImages(std::move(results));
        self->canvasView()->configure(self->model_.images(), self->model_.selectedLayoutOption());
    });
}

void PicMixerViewController::takeImportedImages(std::vector<ImagePtr> images) {
    QPointer<PicMixerViewController> self(this);
    ++processing_;
    removeBackgrounds(bgRemoverServices, hud, images, this, [self](std::vector<ImagePtr> results) {
        if (!self)
            return;
        --self->processing_;
        if (results.empty())
            return;
        self->model_.appendImages(results);
        self->model_.rebuildLayoutOptions();
    });
}

void PicMixerViewController::presentBackgroundPicker() {
    auto* picker = new CustomBackgroundPickerViewController();
    QPointer<PicMixerViewController> self(this);
    picker->onDone = [self](ImagePtr image) {
        if (self && image)
            self->canvasView()->setCustomBackground(std::move(image));
    };
    picker->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    present(picker, true);
}

void PicMixerViewController::didTapNext() {
    // Without advertising the share step runs at once.
    presentShareScreen();
}
