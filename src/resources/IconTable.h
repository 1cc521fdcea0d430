#pragma once

#include <QList>
#include <QString>

// Which picture stands for each symbol name and tool icon. Icons are glyphs of the Material Icons font
// (fonts-material-design-icons-iconfont); the few brand marks that free sets lack are a letter on a
// rounded square. The asset generator draws from this table, and the program looks the names up
// through Assets, so a user's own icon file replaces any of them.
namespace IconTable {

struct Icon {
    QString name;
    char16_t glyph = 0;   // Material Icons code point; 0 for a letter badge
    QChar badge;          // letter drawn on a rounded square when glyph is 0
    int quarterTurns = 0; // clockwise turns of the glyph, to reuse one arrow for another axis
};

// Symbol names used by the screens ("chevron.left", "trash", ...). Drawn white on transparent, since
// the screens tint them.
const QList<Icon>& symbols();
const Icon* symbol(const QString& name);

// Tool strip icons ("ic_2d", "ic_filter", ...). Each has a selected variant, see selectedName.
const QList<Icon>& tools();
QString selectedName(const QString& toolIcon); // "ic_2d" → "ic_2d1"

} // namespace IconTable
