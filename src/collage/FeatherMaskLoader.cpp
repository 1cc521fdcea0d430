#include "collage/FeatherMaskLoader.h"

#include "collage/FeatherMask.h"
#include "mixer/BoundedImageCache.h"
#include "platform/Screen.h"

#include <future>
#include <map>
#include <mutex>

namespace {
bool hasArea(const QSizeF& size) {
    return size.width() > 0.0 && size.height() > 0.0;
}

// A pane and its backdrop, and panes of one size, ask for the same mask at the same moment, before
// any of them has reached the cache. One worker builds it; the others wait for that mask instead of
// making their own.
ImagePtr buildOnce(const QString& key, const std::function<ImagePtr()>& build) {
    static std::mutex mutex;
    static std::map<QString, std::shared_future<ImagePtr>> building;
    std::promise<ImagePtr> promise;
    {
        std::unique_lock lock(mutex);
        if (ImagePtr cached = BoundedImageCache::shared().image(key))
            return cached;
        if (auto found = building.find(key); found != building.end()) {
            const std::shared_future<ImagePtr> pending = found->second;
            lock.unlock();
            return pending.get();
        }
        building.emplace(key, promise.get_future().share());
    }
    ImagePtr mask = build();
    {
        std::lock_guard lock(mutex);
        building.erase(key);
    }
    promise.set_value(mask);
    return mask;
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
    const bool shared = !builder;
    Builder build = builder ? builder : Builder(&FeatherMask::make);
    WorkItem item([guard, request, scale, current = std::move(current), installed = std::move(installed),
                   this, generation, build = std::move(build), key, shared]() {
        const double w = request.size.width();
        const double h = request.size.height();
        auto make = [&]() {
            ImagePtr made = build(w, h, request.horizontalFeather, request.verticalFeather, scale);
            if (made)
                BoundedImageCache::shared().setImage(made, key, FeatherMask::cost(w, h, scale));
            return made;
        };
        ImagePtr mask = shared ? buildOnce(key, make) : make();
        if (!mask)
            return;
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
