#pragma once

#include "filters/CubeKernel.h"
#include "platform/Image.h"

#include <QString>
#include <list>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

// One row of the filter table: the lookup picture and the thumbnail the strip shows for it.
struct FilterTableEntry {
    QString lookupImage;
    QString thumbnail;
};

// The 35 looks in strip order.
const std::vector<FilterTableEntry>& filterTable();

// Cubes of the looks last used, built once from their lookup pictures. A user taps through looks, and
// building a 64-cube costs more than applying it to a screen-sized picture. Safe to use from any thread.
class LookCubeCache {
public:
    static constexpr int defaultCapacity = 4; // 1 MiB each

    explicit LookCubeCache(int capacity = defaultCapacity);

    // The cube of the lookup picture `lookupName` at the look dimension. A name the assets do not have is
    // a programmer's error and stops the process, naming it. A picture that is not a whole grid logs
    // "Invalid colorLUT" and gives null, and nothing is kept for it.
    std::shared_ptr<const PackedCube> cube(const QString& lookupName);

    int count() const;
    void clear();

private:
    int capacity_;
    mutable std::mutex mutex_;
    std::list<std::pair<QString, std::shared_ptr<const PackedCube>>> entries_; // most recent first
};

// `source` with the look of `lookupName`, at scale 1.0 and with the source's orientation. Null for a
// missing source or an invalid lookup picture.
ImagePtr applyLook(LookCubeCache& cache, const QString& lookupName, const ImagePtr& source,
                   const CubeApplyOptions& options = {});
