#include "collage/FeatherMaskLoader.h"

#include "collage/FeatherMask.h"
#include "mixer/BoundedImageCache.h"
#include "platform/Screen.h"

namespace {
bool hasArea(const QSizeF& size) {
    return size.width() > 0.0 && size.height() > 0.0;
}
} // namespace

void FeatherMaskLoader::cancel() {
    if (building_)
        building_->cancel();
    building_.reset();
    ++generation_;
}

ImagePtr FeatherMaskLoader::maskNow(const Request& request) {
    if (!hasArea(request.size))
        return nullptr;
    const double scale = Screen::main().scale();
    const QString key = FeatherMask::key(request.size.width(), request.size.height(),
                                         request.horizontalFeather, request.verticalFeather, scale);
    if (ImagePtr cached = BoundedImageCache::shared().image(key))
        return cached;
    ImagePtr mask = FeatherMask::make(request.size.width(), request.size.height(), request.horizontalFeather,
                                      request.verticalFeather, scale);
    if (mask)
        BoundedImageCache::shared().setImage(
            mask, key, FeatherMask::cost(request.size.width(), request.size.height(), scale));
    return mask;
}

bool FeatherMaskLoader::ensure(const Request& request) {
    if (mask_ && installedRequest_ == request)
        return false;
    cancel();
    ImagePtr mask = maskNow(request);
    if (!mask)
        return false;
    mask_ = std::move(mask);
    installedRequest_ = request;
    return true;
}

void FeatherMaskLoader::update(QObject* owner, const Request& request, std::function<Request()> current,
                               std::function<void()> installed) {
    cancel();
    // A view without area has no mask to make; it keeps what it had.
    if (!hasArea(request.size))
        return;
    const double scale = Screen::main().scale();
    const QString key = FeatherMask::key(request.size.width(), request.size.height(),
                                         request.horizontalFeather, request.verticalFeather, scale);
    if (ImagePtr cached = BoundedImageCache::shared().image(key)) {
        mask_ = std::move(cached);
        installedRequest_ = request;
        if (installed)
            installed();
        return;
    }
    QPointer<QObject> guard(owner);
    const int generation = generation_;
    Builder build = builder ? builder : Builder(&FeatherMask::make);
    WorkItem item([guard, request, scale, current = std::move(current), installed = std::move(installed),
                   this, generation, build = std::move(build)]() {
        const double w = request.size.width();
        const double h = request.size.height();
        ImagePtr mask = build(w, h, request.horizontalFeather, request.verticalFeather, scale);
        if (!mask)
            return;
        BoundedImageCache::shared().setImage(
            mask, FeatherMask::key(w, h, request.horizontalFeather, request.verticalFeather, scale),
            FeatherMask::cost(w, h, scale));
        Dispatch::main().async([guard, request, mask, current, installed, this, generation]() {
            // A view that is gone, resized or re-feathered since drops the mask; it stays cached.
            if (!guard || !(current() == request))
                return;
            if (generation == generation_)
                building_.reset();
            mask_ = mask;
            installedRequest_ = request;
            if (installed)
                installed();
        });
    });
    building_ = item;
    Dispatch::global(QualityOfService::userInitiated).async(item);
}
