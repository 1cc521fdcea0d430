#pragma once

#include "mixer/BackgroundRemover.h"
#include "mixer/BackgroundRemoving.h"

#include <QObject>
#include <QPointer>
#include <memory>
#include <vector>

// Background removal with a remover of its own.
class BackgroundRemovalService : public BackgroundRemoving {
public:
    explicit BackgroundRemovalService(std::shared_ptr<const BackgroundRemover> remover);

    const std::shared_ptr<const BackgroundRemover> remover;

    void removeBackground(ImagePtr image, std::function<void(ImagePtr)> completion) override;
};

// Frees every picture of a list at once, behind the busy indicator "Processing...". Each picture is
// first drawn upright on the main thread, then sent to `service` on its own job on the user-initiated
// queue; all run side by side. `completion` gets a list of the same length and order, on the main
// queue: a cut-out where one came back, the picture as given where none did. An empty list goes to
// `completion` at once, with no indicator. When `owner` is gone by the end, the results are dropped,
// nothing is called and the indicator stays as it is.
void removeBackgrounds(const std::shared_ptr<BackgroundRemoving>& service,
                       const std::shared_ptr<HUDPresenting>& hud, const std::vector<ImagePtr>& images,
                       QObject* owner, std::function<void(std::vector<ImagePtr>)> completion);

// The picture as it is seen, orientation up, drawn on a transparent bitmap at its own scale; the
// picture itself when it is already upright or cannot be drawn.
ImagePtr uprightImage(const ImagePtr& image);
