#include "shell/HomeViewModel.h"

void HomeViewModel::handleLoadedImages(std::vector<ImagePtr> images) const {
    if (static_cast<int>(images.size()) >= minimumImageCount) {
        if (onImagesReady)
            onImagesReady(std::move(images));
    } else if (onInsufficientSelection) {
        onInsufficientSelection();
    }
}

QString HomeViewModel::insufficientSelectionTitle() {
    return QStringLiteral("Select More Photos");
}

QString HomeViewModel::insufficientSelectionMessage() {
    return QStringLiteral("Please choose at least ") + QString::number(minimumImageCount) +
           QStringLiteral(" photos to create a lumivex.");
}
