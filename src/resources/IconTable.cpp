#include "resources/IconTable.h"

namespace IconTable {

namespace {

Icon glyph(const char* name, char16_t codePoint, int quarterTurns = 0) {
    return Icon{QString::fromLatin1(name), codePoint, QChar(), quarterTurns};
}

Icon badge(const char* name, char letter) {
    return Icon{QString::fromLatin1(name), 0, QLatin1Char(letter), 0};
}

} // namespace

const QList<Icon>& symbols() {
    static const QList<Icon> icons{
        // editor tools and transform actions
        glyph("wind", 0xefd8),
        glyph("rectangle.split.2x1", 0xe85b),
        glyph("square.grid.2x2", 0xe9b0),
        glyph("arrow.left.and.right.righttriangle.left.righttriangle.right", 0xe3e8),
        glyph("arrow.counterclockwise", 0xf053),
        glyph("trash", 0xe872),
        glyph("square.and.arrow.down", 0xf090),
        glyph("arrow.2.squarepath", 0xe8d4),
        glyph("arrow.clockwise", 0xe41a),
        glyph("crop", 0xe3be),
        glyph("photo.on.rectangle.angled", 0xe3b6),
        // panes, panels and navigation
        glyph("checkmark.circle.fill", 0xe86c),
        glyph("square.3.layers.3d", 0xe53b),
        glyph("xmark", 0xe5cd),
        glyph("chevron.left", 0xe5cb),
        glyph("chevron.down", 0xe5cf),
        glyph("chevron.up", 0xe5ce),
        glyph("arrow.up.and.down", 0xea16),
        glyph("arrow.left.and.right", 0xea16, 1),
        // background picker and AI blend
        glyph("photo.on.rectangle", 0xe413),
        glyph("eyedropper", 0xe3b8),
        glyph("circle.lefthalf.filled", 0xeb37),
        glyph("drop.fill", 0xe798),
        glyph("paintpalette.fill", 0xe40a),
        glyph("sparkles", 0xe65f),
        // ratio brands
        glyph("play.rectangle.fill", 0xe41b),
        glyph("camera.aperture", 0xe3af),
        badge("f.square.fill", 'f'),
        badge("x.square.fill", 'x'),
        badge("l.square.fill", 'l'),
        badge("p.square.fill", 'p'),
    };
    return icons;
}

const Icon* symbol(const QString& name) {
    for (const Icon& icon : symbols())
        if (icon.name == name)
            return &icon;
    return nullptr;
}

const QList<Icon>& tools() {
    static const QList<Icon> icons{
        // mirror editor
        glyph("ic_2d", 0xe3e8),
        glyph("ic_3d", 0xe9fe),
        glyph("ic_effect", 0xe663),
        glyph("ic_edittext", 0xe262),
        glyph("ic_sticker", 0xea22),
        glyph("ic_addimage", 0xe43e),
        // text tools
        glyph("ic_addtext", 0xe264),
        glyph("ic_font", 0xe167),
        glyph("ic_color", 0xe40a),
        glyph("ic_alignment", 0xe234),
        glyph("ic_opacity", 0xe91c),
        glyph("ic_caps", 0xe245),
        // classic collage
        glyph("ic_fcollage", 0xe660),
        glyph("ic_filter", 0xe43b),
        glyph("ic_adjustments", 0xe429),
        glyph("ic_newgallery", 0xe413),
    };
    return icons;
}

QString selectedName(const QString& toolIcon) {
    return toolIcon + QLatin1Char('1');
}

} // namespace IconTable
