#pragma once

#include "platform/Image.h"

#include <QString>
#include <functional>
#include <vector>

// Where the photos picked on the home screen go.
enum class EditorDestination { collage, picMixer };

// The home screen's one decision: whether the loaded photos are enough to open an editor.
class HomeViewModel {
public:
    static constexpr int minimumImageCount = 2;
    static constexpr int maximumImageCount = 8;

    std::function<void(std::vector<ImagePtr>)> onImagesReady;
    std::function<void()> onInsufficientSelection;

    // Fires onImagesReady with enough photos, else onInsufficientSelection.
    void handleLoadedImages(std::vector<ImagePtr> images) const;

    static QString insufficientSelectionTitle();
    static QString insufficientSelectionMessage();
};
