#include "overlay/FontList.h"

#include "resources/FontTable.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>

namespace FontList {

const QStringList& fontNames() {
    static const QStringList names = [] {
        QStringList list;
        for (const FontTable::Face& face : FontTable::faces())
            list << face.name;
        return list;
    }();
    return names;
}

const QStringList& sampleWords() {
    static const QStringList words = [] {
        const QStringList run{"Clarity", "Creative", "Happy",    "Delight",    "Making",    "Excite",
                              "Golden",  "Enjoy",    "Disco",    "Growth",     "Love",      "Faith",
                              "Believe", "Clarity",  "Colorful", "Enjoy",      "Energetic", "Confidence",
                              "Inspire", "Cheerful", "Change",   "Sweet",      "Improve",   "Accept",
                              "Dream",   "Fair",     "Grateful", "Expressive", "Sweet",     "Humble",
                              "Healthy", "Profit",   "Chaired"};
        return QStringList() << run << run << QStringLiteral("Change") << QStringLiteral("Enjoy");
    }();
    return words;
}

namespace {

// The family's italic style closest to `weight`, or "" when it has none.
QString italicStyle(const QString& family, int weight) {
    QString best;
    int bestDistance = 10000;
    for (const QString& style : QFontDatabase::styles(family)) {
        if (!QFontDatabase::italic(family, style))
            continue;
        const int distance = std::abs(QFontDatabase::weight(family, style) - weight);
        if (distance < bestDistance) {
            best = style;
            bestDistance = distance;
        }
    }
    return best;
}

} // namespace

QFont font(const QString& name, double size) {
    QFont font = QGuiApplication::font();
    if (const FontTable::Face* face = FontTable::face(name)) {
        font.setFamilies({face->family});
        font.setWeight(static_cast<QFont::Weight>(face->weight));
        // An italic face is asked for by its style name, not by the italic flag: the flag would also be
        // asked of the faces that stand in for scripts this one lacks, and the italic of the usual stand-in
        // has no Arabic, so those letters would come out as empty boxes.
        // A family without a real italic is drawn upright: a slanted one would bring the same boxes.
        if (face->italic) {
            const QString style = italicStyle(face->family, face->weight);
            if (!style.isEmpty())
                font.setStyleName(style);
        }
    }
    // Points of the phone are pixels of the window at scale 1.
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(size))));
    return font;
}

} // namespace FontList
