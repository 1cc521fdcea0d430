#include "CollageTestSupport.h"
#include "collage/FeatherMaskLoader.h"

#include <QObject>
#include <array>
#include <gtest/gtest.h>

namespace {

// Several views of one size and feather asking at once share one built mask: they install the very
// same bitmap, and the cache answers with it afterwards.
TEST(FeatherMaskSharing, ViewsAskingAtOnceInstallOneMask) {
    // A size no other test uses, so the cache cannot answer before the workers do.
    const FeatherMaskLoader::Request request{QSizeF(131.25, 77.5), 13.0, 7.0};
    QObject owner;
    std::array<FeatherMaskLoader, 4> loaders;
    int installed = 0;
    for (auto& loader : loaders)
        loader.update(
            &owner, request, [&] { return request; }, [&] { ++installed; });
    ASSERT_TRUE(collagetest::drainWorkers());
    ASSERT_EQ(installed, 4);
    for (const auto& loader : loaders) {
        ASSERT_TRUE(loader.mask());
        EXPECT_EQ(loader.mask().get(), loaders.front().mask().get());
        EXPECT_FALSE(loader.isBuilding());
    }
    EXPECT_EQ(FeatherMaskLoader::maskNow(request).get(), loaders.front().mask().get());
}

// A view that changed size while its mask was shared with another still gets nothing stale, and the
// other still gets its mask.
TEST(FeatherMaskSharing, AResizedViewDropsTheSharedMask) {
    const FeatherMaskLoader::Request request{QSizeF(97.5, 143.25), 11.0, 5.0};
    const FeatherMaskLoader::Request resized{QSizeF(98.5, 143.25), 11.0, 5.0};
    QObject owner;
    FeatherMaskLoader kept, moved;
    // Every worker is held until both views have asked, so neither finds the mask already made.
    const collagetest::WorkerHold hold;
    for (int i = 0; i < Dispatch::workerCount(); ++i)
        Dispatch::global(QualityOfService::userInitiated).async(hold.gate());
    for (int i = 0; i < Dispatch::workerCount(); ++i)
        ASSERT_TRUE(hold.waitUntilHeld());
    kept.update(
        &owner, request, [&] { return request; }, nullptr);
    moved.update(
        &owner, request, [&] { return resized; }, nullptr);
    EXPECT_FALSE(moved.mask());
    for (int i = 0; i < Dispatch::workerCount(); ++i)
        hold.release();
    ASSERT_TRUE(collagetest::drainWorkers());
    ASSERT_TRUE(kept.mask());
    EXPECT_EQ(kept.mask()->bitmap().width(), FeatherMaskLoader::maskNow(request)->bitmap().width());
    EXPECT_FALSE(moved.mask());
}

} // namespace
