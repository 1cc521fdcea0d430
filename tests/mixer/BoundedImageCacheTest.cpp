#include "mixer/BoundedImageCache.h"

#include <QImage>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

ImagePtr picture() {
    return Image::make(QImage(2, 2, QImage::Format_RGB32));
}

TEST(BoundedImageCache, SameKeyTwiceKeepsOneEntryAndTheSecondCost) {
    BoundedImageCache cache(100);
    const ImagePtr second = picture();
    cache.setImage(picture(), QStringLiteral("a"), 30);
    cache.setImage(second, QStringLiteral("a"), 50);
    EXPECT_EQ(cache.count(), 1);
    EXPECT_EQ(cache.totalCost(), 50);
    EXPECT_EQ(cache.image(QStringLiteral("a")), second);
}

TEST(BoundedImageCache, OversizedImageEmptiesTheCacheItselfIncluded) {
    BoundedImageCache cache(100);
    cache.setImage(picture(), QStringLiteral("a"), 40);
    cache.setImage(picture(), QStringLiteral("b"), 40);
    cache.setImage(picture(), QStringLiteral("huge"), 101);
    EXPECT_EQ(cache.count(), 0);
    EXPECT_EQ(cache.totalCost(), 0);
    EXPECT_EQ(cache.image(QStringLiteral("huge")), nullptr);
}

TEST(BoundedImageCache, ExactlyAtTheLimitEverythingStays) {
    BoundedImageCache cache(100);
    cache.setImage(picture(), QStringLiteral("a"), 60);
    cache.setImage(picture(), QStringLiteral("b"), 40);
    EXPECT_EQ(cache.count(), 2);
    EXPECT_EQ(cache.totalCost(), 100);
    cache.setImage(picture(), QStringLiteral("c"), 1); // one past: the oldest goes
    EXPECT_EQ(cache.recencyOrder(), QStringList({"b", "c"}));
    EXPECT_EQ(cache.totalCost(), 41);
}

TEST(BoundedImageCache, ReadingSavesAnEntryFromTheNextEviction) {
    BoundedImageCache cache(100);
    cache.setImage(picture(), QStringLiteral("A"), 40);
    cache.setImage(picture(), QStringLiteral("B"), 40);
    ASSERT_NE(cache.image(QStringLiteral("A")), nullptr);
    cache.setImage(picture(), QStringLiteral("C"), 40);
    EXPECT_EQ(cache.image(QStringLiteral("B")), nullptr);
    EXPECT_NE(cache.image(QStringLiteral("A")), nullptr);
    EXPECT_NE(cache.image(QStringLiteral("C")), nullptr);
    EXPECT_EQ(cache.totalCost(), 80);
    // Eviction runs from the oldest use onwards until the total fits.
    cache.setImage(picture(), QStringLiteral("D"), 90);
    EXPECT_EQ(cache.recencyOrder(), QStringList({QStringLiteral("D")}));
    EXPECT_EQ(cache.totalCost(), 90);
}

TEST(BoundedImageCache, ReplacingAKeyMakesItTheNewestAndMayEvictOthers) {
    BoundedImageCache cache(100);
    cache.setImage(picture(), QStringLiteral("A"), 30);
    cache.setImage(picture(), QStringLiteral("B"), 30);
    cache.setImage(picture(), QStringLiteral("A"), 60);
    EXPECT_EQ(cache.recencyOrder(), QStringList({QStringLiteral("B"), QStringLiteral("A")}));
    EXPECT_EQ(cache.totalCost(), 90);
    cache.setImage(picture(), QStringLiteral("A"), 80);
    EXPECT_EQ(cache.recencyOrder(), QStringList({QStringLiteral("A")}));
    EXPECT_EQ(cache.totalCost(), 80);
}

TEST(BoundedImageCache, ConcurrentUseKeepsTheTotalConsistent) {
    BoundedImageCache cache(1000);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&cache, t] {
            for (int i = 0; i < 2000; ++i) {
                const QString key = QString::number((i * 7 + t) % 37);
                if (i % 3 == 0)
                    cache.image(key);
                else
                    cache.setImage(picture(), key, 10 + (i % 50));
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_LE(cache.totalCost(), cache.costLimit());
    EXPECT_EQ(cache.recencyOrder().size(), cache.count());
    std::int64_t sum = 0;
    // Re-storing every key with cost 1 shows what the recorded total was made of.
    for (const QString& key : cache.recencyOrder()) {
        cache.setImage(picture(), key, 1);
        ++sum;
    }
    EXPECT_EQ(cache.totalCost(), sum);
}

} // namespace
