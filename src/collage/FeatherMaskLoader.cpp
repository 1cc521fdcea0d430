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

void FeatherMaskLoader::update(QObject* owner, const Request& request, std::function<Request()> current,
                               std::function<void(ImagePtr)> install) {
    cancel();
    const double scale = Screen::main().scale();
    if (hasArea(request.size)) {
        const QString key = FeatherMask::key(request.size.width(), request.size.height(),
                                             request.horizontalFeather, request.verticalFeather, scale);
        if (ImagePtr cached = BoundedImageCache::shared().image(key)) {
            install(cached);
            return;
        }
    }
    QPointer<QObject> guard(owner);
    const int generation = generation_;
    WorkItem item([guard, request, scale, current = std::move(current), install = std::move(install), this,
                   generation]() {
        if (!hasArea(request.size))
            return;
        const double w = request.size.width();
        const double h = request.size.height();
        ImagePtr mask = FeatherMask::make(w, h, request.horizontalFeather, request.verticalFeather, scale);
        if (!mask)
            return;
        BoundedImageCache::shared().setImage(
            mask, FeatherMask::key(w, h, request.horizontalFeather, request.verticalFeather, scale),
            FeatherMask::cost(w, h, scale));
        Dispatch::main().async([guard, request, mask, current, install, this, generation]() {
            // A view that is gone, resized or re-feathered since drops the mask; it stays cached.
            if (!guard || !(current() == request))
                return;
            if (generation == generation_)
                building_.reset();
            install(mask);
        });
    });
    building_ = item;
    Dispatch::global(QualityOfService::userInitiated).async(item);
}
