#pragma once

#include "filters/LookCubeCache.h"
#include "platform/Image.h"

#include <optional>

// One pane's picture and the look on it. The unfiltered picture stays the source and every look starts
// from it, so a second look replaces the first instead of adding to it. Main thread; the cache must
// outlive it.
class FilteredPicture {
public:
    explicit FilteredPicture(LookCubeCache& cache, ImagePtr source = nullptr);

    // A new source drops the look.
    void setSource(ImagePtr source);
    const ImagePtr& source() const { return source_; }

    // What the pane shows: the source with the look, or the source when there is none.
    const ImagePtr& image() const { return look_ ? filtered_ : source_; }
    std::optional<int> lookIndex() const { return look_; }

    // Applies row `index` of the filter table. An index outside the table is ignored; a look that gives
    // no picture (an invalid lookup picture) leaves the source showing without a look.
    void selectLook(int index, const CubeApplyOptions& options = {});
    void clearLook();

private:
    LookCubeCache& cache_;
    ImagePtr source_;
    ImagePtr filtered_;
    std::optional<int> look_;
};
