#pragma once

#include "collage/CollageEditorViewModel.h"
#include "collage/LayeredEditorViewController.h"

// The collage editor screen: the layered editor over a collage model, saving straight to the share
// screen.
class CollageEditorViewController : public LayeredEditorViewController {
    Q_OBJECT
public:
    explicit CollageEditorViewController(std::unique_ptr<CollageEditorViewModel> viewModel,
                                         QWidget* parent = nullptr);

    CollageEditorViewModel& viewModel() const { return model_; }

    void didTapSave();

protected:
    void saveButtonTapped() override { didTapSave(); }

private:
    CollageEditorViewModel& model_;
};
