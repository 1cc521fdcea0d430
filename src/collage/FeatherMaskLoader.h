#pragma once

#include "platform/Dispatch.h"
#include "platform/Image.h"

#include <QObject>
#include <QPointer>
#include <QSizeF>
#include <functional>
#include <optional>

// The feather mask of one view, found or built. A mask already in the shared cache is installed at
// once; otherwise it is built on a worker and installed on the main thread only if the view still
// exists and still has the size and feathers the mask was made for. Pane and backdrop share this.
class FeatherMaskLoader {
public:
    // Makes a mask on the worker from width, height, feathers and scale; FeatherMask::make unless a
    // test holds the worker with one of its own.
    using Builder = std::function<ImagePtr(double, double, double, double, double)>;
    Builder builder;

    struct Request {
        QSizeF size;
        double horizontalFeather = 0.0;
        double verticalFeather = 0.0;
        bool operator==(const Request&) const = default;
    };

    // `current` reads the view's state when a finished mask arrives; `installed` is told after a
    // mask has been installed. Both are called only while `owner` exists.
    void update(QObject* owner, const Request& request, std::function<Request()> current,
                std::function<void()> installed);
    // Installs the mask for `request` here and now unless it is installed already (flattening);
    // answers whether the mask changed.
    bool ensure(const Request& request);
    void cancel();

    bool isBuilding() const { return building_.has_value(); }
    const ImagePtr& mask() const { return mask_; }

    // The mask for a request from the shared cache, built and stored there if it is missing.
    static ImagePtr maskNow(const Request& request);

private:
    std::optional<WorkItem> building_;
    int generation_ = 0;
    ImagePtr mask_;
    Request installedRequest_;
};
