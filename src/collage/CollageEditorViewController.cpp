#include "collage/CollageEditorViewController.h"

namespace {

LayeredEditorViewController::Texts collageTexts() {
    return {QStringLiteral("A collage needs at least %1 photos."), QStringLiteral("Collage Is Full"),
            QStringLiteral("A collage holds at most %1 photos."),
            QStringLiteral("A collage holds at most %1 photos; only the first %2 dropped were added.")};
}

} // namespace

CollageEditorViewController::CollageEditorViewController(std::unique_ptr<CollageEditorViewModel> viewModel,
                                                         QWidget* parent)
    : LayeredEditorViewController(std::move(viewModel), collageTexts(), QStringLiteral("collageEditor"),
                                  parent),
      model_(static_cast<CollageEditorViewModel&>(editorModel())) {}

void CollageEditorViewController::didTapSave() {
    // Without advertising the save always takes the direct path.
    presentShareScreen();
}
