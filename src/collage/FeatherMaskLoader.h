#pragma once

#include "platform/Dispatch.h"
#include "platform/Image.h"

#include <QObject>
#include <QPointer>
#include <QSizeF>
#include <functional>
#include <optional>

// Finds or builds the feather mask of one view. A mask already in the shared cache is installed at
// once; otherwise it is built on a worker and installed on the main thread only if the view still
// exists and still has the size and feathers the mask was made for. Pane and backdrop share this.
class FeatherMaskLoader {
public:
    struct Request {
        QSizeF size;
        double horizontalFeather = 0.0;
        double verticalFeather = 0.0;
        bool operator==(const Request&) const = default;
    };

    // `current` reads the view's state when a finished mask arrives; `install` takes the mask.
    void update(QObject* owner, const Request& request, std::function<Request()> current,
                std::function<void(ImagePtr)> install);
    void cancel();
    bool isBuilding() const { return building_.has_value(); }

    // The mask for a request, built here and now if the cache lacks it (used when flattening).
    static ImagePtr maskNow(const Request& request);

private:
    std::optional<WorkItem> building_;
    int generation_ = 0;
};
