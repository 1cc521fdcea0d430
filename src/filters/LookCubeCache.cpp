#include "filters/LookCubeCache.h"

#include "platform/Assets.h"
#include "platform/Log.h"
#include "resources/AssetNames.h"

const std::vector<FilterTableEntry>& filterTable() {
    static const std::vector<FilterTableEntry> table = [] {
        const QStringList lookups = AssetNames::filterLookups();
        const QStringList thumbnails = AssetNames::filterThumbnails();
        if (lookups.size() != 35 || thumbnails.size() != lookups.size())
            fatalError("The filter table needs 35 lookup pictures and as many thumbnails");
        std::vector<FilterTableEntry> rows;
        for (int i = 0; i < lookups.size(); ++i)
            rows.push_back({lookups[i], thumbnails[i]});
        return rows;
    }();
    return table;
}

LookCubeCache::LookCubeCache(int capacity) : capacity_(std::max(1, capacity)) {}

std::shared_ptr<const PackedCube> LookCubeCache::cube(const QString& lookupName) {
    std::lock_guard lock(mutex_);
    for (auto it = entries_.begin(); it != entries_.end(); ++it)
        if (it->first == lookupName) {
            entries_.splice(entries_.begin(), entries_, it);
            return it->second;
        }
    const ImagePtr picture = Assets::image(lookupName);
    if (!picture)
        fatalError("Lookup picture \"" + lookupName.toStdString() + "\" is not in the assets");
    const auto cube = filterWithLookupImage(picture->bitmap(), lookDimension);
    std::shared_ptr<const PackedCube> packed = cube ? packCube(*cube) : nullptr;
    if (!packed)
        return nullptr;
    entries_.emplace_front(lookupName, packed);
    if (int(entries_.size()) > capacity_)
        entries_.pop_back();
    return packed;
}

int LookCubeCache::count() const {
    std::lock_guard lock(mutex_);
    return int(entries_.size());
}

void LookCubeCache::clear() {
    std::lock_guard lock(mutex_);
    entries_.clear();
}

ImagePtr applyLook(LookCubeCache& cache, const QString& lookupName, const ImagePtr& source,
                   const CubeApplyOptions& options) {
    if (!source)
        return nullptr;
    const auto cube = cache.cube(lookupName);
    if (!cube)
        return nullptr;
    QImage result = applyCube(*cube, source->bitmap(), options);
    if (result.isNull())
        return nullptr;
    return Image::make(std::move(result), 1.0, source->orientation());
}
