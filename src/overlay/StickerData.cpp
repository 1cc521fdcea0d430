#include "overlay/StickerData.h"

#include "resources/AssetNames.h"

const QList<StickerData>& StickerData::catalogue() {
    // The names come from the asset tables, so the catalogue and the artwork cannot drift apart.
    static const QList<StickerData> list = [] {
        QList<StickerData> made;
        for (const AssetNames::NumberedGroup& group : AssetNames::stickerCategories())
            made.append(StickerData{group.title, group.names()});
        return made;
    }();
    return list;
}
