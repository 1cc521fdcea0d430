#include "mixer/BoundedImageCache.h"

BoundedImageCache::BoundedImageCache(std::int64_t costLimit) : costLimit_(costLimit) {}

BoundedImageCache& BoundedImageCache::shared() {
    static BoundedImageCache instance(kSharedCostLimit);
    return instance;
}

ImagePtr BoundedImageCache::image(const QString& key) {
    std::lock_guard guard(lock_);
    auto it = storage_.find(key);
    if (it == storage_.end())
        return nullptr;
    recency_.splice(recency_.end(), recency_, it->position);
    return it->image;
}

void BoundedImageCache::setImage(ImagePtr image, const QString& key, std::int64_t cost) {
    std::lock_guard guard(lock_);
    auto it = storage_.find(key);
    if (it != storage_.end()) {
        totalCost_ -= it->cost;
        it->image = std::move(image);
        it->cost = cost;
        recency_.splice(recency_.end(), recency_, it->position);
    } else {
        recency_.push_back(key);
        storage_.insert(key, Entry{std::move(image), cost, std::prev(recency_.end())});
    }
    totalCost_ += cost;
    while (totalCost_ > costLimit_ && !recency_.empty()) {
        const QString oldest = recency_.front();
        recency_.pop_front();
        auto victim = storage_.find(oldest);
        if (victim != storage_.end()) {
            totalCost_ -= victim->cost;
            storage_.erase(victim);
        }
    }
}

std::int64_t BoundedImageCache::totalCost() const {
    std::lock_guard guard(lock_);
    return totalCost_;
}

int BoundedImageCache::count() const {
    std::lock_guard guard(lock_);
    return static_cast<int>(storage_.size());
}

QStringList BoundedImageCache::recencyOrder() const {
    std::lock_guard guard(lock_);
    return QStringList(recency_.begin(), recency_.end());
}

void BoundedImageCache::removeAll() {
    std::lock_guard guard(lock_);
    storage_.clear();
    recency_.clear();
    totalCost_ = 0;
}
