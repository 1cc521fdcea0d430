#pragma once

#include "platform/Image.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <list>
#include <mutex>

// A thread-safe least-recently-used cache of images limited by the callers' estimate of their
// memory. The shared instance holds the feather masks of every collage pane and backdrop.
class BoundedImageCache {
public:
    static constexpr std::int64_t kSharedCostLimit = 25'165'824; // 24 MiB

    explicit BoundedImageCache(std::int64_t costLimit);
    BoundedImageCache(const BoundedImageCache&) = delete;
    BoundedImageCache& operator=(const BoundedImageCache&) = delete;

    // The process-wide instance, made on first use.
    static BoundedImageCache& shared();

    // The cached image, or null; a hit counts as a use.
    ImagePtr image(const QString& key);
    // Stores the image under the key, replacing any entry, then evicts from the least recently
    // used end while the total is above the limit (which can evict the new entry itself).
    void setImage(ImagePtr image, const QString& key, std::int64_t cost);

    std::int64_t costLimit() const { return costLimit_; }
    std::int64_t totalCost() const;
    int count() const;
    // Keys from the least to the most recently used.
    QStringList recencyOrder() const;
    // Empties the cache (tests and memory pressure).
    void removeAll();

private:
    struct Entry {
        ImagePtr image;
        std::int64_t cost = 0;
        std::list<QString>::iterator position;
    };

    const std::int64_t costLimit_;
    mutable std::mutex lock_;
    QHash<QString, Entry> storage_;
    std::list<QString> recency_;
    std::int64_t totalCost_ = 0;
};
