#pragma once

#include "platform/Image.h"

#include <QString>
#include <functional>

// One picture freed of its background. `image` should be upright. `completion` receives the cut-out,
// or null when the picture could not be processed, always on the main queue. The work is done on the
// queue the call is made on.
class BackgroundRemoving {
public:
    virtual ~BackgroundRemoving() = default;
    virtual void removeBackground(ImagePtr image, std::function<void(ImagePtr)> completion) = 0;
};

// A modal busy indicator: shown with a status line, blocking touches until it is dismissed.
class HUDPresenting {
public:
    virtual ~HUDPresenting() = default;
    virtual void show(const QString& status) = 0;
    virtual void dismiss() = 0;
};

// The program's busy indicator.
class SVHUDService : public HUDPresenting {
public:
    void show(const QString& status) override;
    void dismiss() override;
};
