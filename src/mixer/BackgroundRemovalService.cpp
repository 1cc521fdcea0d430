#include "mixer/BackgroundRemovalService.h"

#include "platform/Dispatch.h"
#include "platform/ProgressHud.h"

void SVHUDService::show(const QString& status) {
    ProgressHud::show(status);
}

void SVHUDService::dismiss() {
    ProgressHud::dismiss();
}

BackgroundRemovalService::BackgroundRemovalService(std::shared_ptr<const BackgroundRemover> remover)
    : remover(std::move(remover)) {}

void BackgroundRemovalService::removeBackground(ImagePtr image, std::function<void(ImagePtr)> completion) {
    ImagePtr result = image ? remover->removeBackground(*image) : nullptr;
    Dispatch::main().async([completion = std::move(completion), result = std::move(result)]() {
        if (completion)
            completion(result);
    });
}

ImagePtr uprightImage(const ImagePtr& image) {
    if (!image || image->orientation() == ImageOrientation::up)
        return image;
    QImage drawn = image->uprightBitmap().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (drawn.isNull())
        return image;
    ImagePtr upright = Image::make(std::move(drawn), image->scale(), ImageOrientation::up);
    return upright ? upright : image;
}

void removeBackgrounds(const std::shared_ptr<BackgroundRemoving>& service,
                       const std::shared_ptr<HUDPresenting>& hud, const std::vector<ImagePtr>& images,
                       QObject* owner, std::function<void(std::vector<ImagePtr>)> completion) {
    if (images.empty()) {
        if (completion)
            completion({});
        return;
    }
    hud->show(QStringLiteral("Processing..."));
    // Touched on the main queue only: here, in each job's completion and in the notify.
    auto results = std::make_shared<std::vector<ImagePtr>>(images);
    DispatchGroup group;
    for (std::size_t index = 0; index < images.size(); ++index) {
        group.enter();
        ImagePtr upright = uprightImage(images[index]);
        if (!upright || upright->bitmap().isNull()) {
            group.leave();
            continue;
        }
        Dispatch::global(QualityOfService::userInitiated).async([service, upright, results, index, group]() {
            service->removeBackground(upright, [results, index, group](ImagePtr cutout) mutable {
                if (cutout)
                    (*results)[index] = std::move(cutout);
                group.leave();
            });
        });
    }
    QPointer<QObject> guard(owner);
    const bool owned = owner != nullptr;
    group.notify(Dispatch::main(), [guard, owned, hud, results, completion = std::move(completion)]() {
        if (owned && !guard)
            return;
        hud->dismiss();
        if (completion)
            completion(*results);
    });
}
