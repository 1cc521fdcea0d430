#include "collage/CollageEditorViewController.h"

#include "collage/CollageCanvasView.h"

// The screen's panels and journeys are being put together; for now it shows the canvas.
CollageEditorViewController::CollageEditorViewController(std::unique_ptr<CollageEditorViewModel> viewModel,
                                                         QWidget* parent)
    : ViewController(parent), viewModel_(std::move(viewModel)) {
    setObjectName(QStringLiteral("collageEditor"));
    setModalPresentationStyle(ModalPresentationStyle::fullScreen);
}

CollageEditorViewController::~CollageEditorViewController() = default;

void CollageEditorViewController::viewDidLoad() {
    canvasView_ = new CollageCanvasView(this);
    canvasView_->setGeometry(12, 126, 366, 366);
    canvasView_->configure(viewModel_->images(), viewModel_->selectedLayoutOption());
}

QSizeF CollageEditorViewController::canvasSizeFor(std::optional<double>, const QSizeF& room) { return room; }
bool CollageEditorViewController::isOptionsPanelVisible() const { return false; }
void CollageEditorViewController::didTapBack() { dismiss(true); }
void CollageEditorViewController::didTapSave() {}
void CollageEditorViewController::didTapExpandChevron() {}
void CollageEditorViewController::didTapLayers() {}
void CollageEditorViewController::didSelectTool(int) {}
void CollageEditorViewController::didSelectOption(int) {}
void CollageEditorViewController::resizeEvent(QResizeEvent* event) { ViewController::resizeEvent(event); }
void CollageEditorViewController::keyPressEvent(QKeyEvent* event) { ViewController::keyPressEvent(event); }
