#pragma once

#include <QIcon>

#include "platform/Image.h"

#include <QString>
#include <QStringList>
#include <optional>

// Artwork and bundled files looked up by name in a list of folders; the first folder that has the name
// wins, so a user's folder placed first overrides any name.
//
// Default order: the user's folder ($LUMIVEX_ASSETS_DIR, else <generic data>/lumivex/assets), the
// artwork generated in the build tree, the installed share folder, and share/lumivex/assets next to
// the program. Safe to call from any thread.
namespace Assets {

// The picture for `name`, tried as name@3x, name@2x and name with the extensions png, jpg, jpeg, webp
// and svg; an @2x or @3x file gives an image of that scale. A name that already ends in one of those
// extensions is tried as it is first. Null when nothing is found or the file cannot be decoded.
// Results, misses included, are cached by name until clearCache() or setSearchPaths().
ImagePtr image(const QString& name);

// The picture of that name as a button icon; a null icon when there is none.
QIcon icon(const QString& name);

// A symbol at a size, as a button icon: the picture cropped to what it draws and fitted, centred, into a
// square of `side` points, so a glyph drawn with a wide margin still fills the place it is given. Null
// when there is no such picture or it draws nothing.
QIcon symbol(const QString& name, int side);

// Absolute path of the file `name.ext` (or just `name` when `ext` is empty) in the first folder that
// has it.
std::optional<QString> resourceURL(const QString& name, const QString& ext);

QStringList searchPaths();
QStringList defaultSearchPaths();
void setSearchPaths(const QStringList& paths);
// Back to the default folders, read again from the environment.
void resetSearchPaths();
void clearCache();

} // namespace Assets
