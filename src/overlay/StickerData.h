#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// One category of picture stickers: its title and its picture names in order.
struct StickerData {
    QString categoryName;
    QStringList stickerImgName;

    // The nine categories in catalogue order, 268 pictures in all; made once, on first use.
    static const QList<StickerData>& catalogue();
};
