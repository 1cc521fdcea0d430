#include "filters/FilteredPicture.h"

FilteredPicture::FilteredPicture(LookCubeCache& cache, ImagePtr source)
    : cache_(cache), source_(std::move(source)) {}

void FilteredPicture::setSource(ImagePtr source) {
    source_ = std::move(source);
    clearLook();
}

void FilteredPicture::selectLook(int index, const CubeApplyOptions& options) {
    const auto& table = filterTable();
    if (index < 0 || index >= int(table.size()))
        return;
    filtered_ = applyLook(cache_, table[std::size_t(index)].lookupImage, source_, options);
    look_ = filtered_ ? std::optional<int>(index) : std::nullopt;
}

void FilteredPicture::clearLook() {
    filtered_.reset();
    look_.reset();
}
