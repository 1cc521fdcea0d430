#include "collage/PhotoLoading.h"

#include "platform/Dispatch.h"

#include <QPointer>
#include <map>
#include <memory>
#include <mutex>

namespace {

// Filled from the loaders' worker threads, read on the main queue once all have finished.
struct LoadedImages {
    std::mutex mutex;
    std::map<std::size_t, ImagePtr> byIndex;
};

} // namespace

void loadImagesInOrder(const std::vector<PickerResult>& results, QObject* owner,
                       std::function<void(std::vector<ImagePtr>)> done) {
    auto loaded = std::make_shared<LoadedImages>();
    DispatchGroup group;
    for (std::size_t index = 0; index < results.size(); ++index) {
        const auto& provider = results[index].itemProvider;
        if (!provider || !provider->canLoadImage())
            continue;
        group.enter();
        provider->loadImage([loaded, group, index](ImagePtr image, QString) mutable {
            if (image) {
                std::lock_guard lock(loaded->mutex);
                loaded->byIndex[index] = std::move(image);
            }
            group.leave();
        });
    }
    const bool guarded = owner != nullptr;
    QPointer<QObject> weakOwner(owner);
    group.notify(Dispatch::main(), [loaded, guarded, weakOwner, done = std::move(done)]() {
        if ((guarded && !weakOwner) || !done)
            return;
        std::vector<ImagePtr> images;
        {
            std::lock_guard lock(loaded->mutex);
            images.reserve(loaded->byIndex.size());
            for (auto& [index, image] : loaded->byIndex)
                images.push_back(image);
        }
        done(std::move(images));
    });
}
