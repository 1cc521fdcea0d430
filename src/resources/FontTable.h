#pragma once

#include <QList>
#include <QString>

// The caption fonts by the names the screens use, each mapped to a free face that Debian packages and
// that looks close to the named one (or at least gives the list the same variety). The names stay as
// they are; only the face behind each is ours to choose.
namespace FontTable {

struct Face {
    QString name;     // as the screens ask for it
    QString family;   // installed family that renders it
    int weight = 400; // CSS-style weight, 100 to 900
    bool italic = false;
    QString package; // Debian package that provides the family
};

// The font list in its order (68 entries).
const QList<Face>& faces();
// Any font a screen names: the list above and the catalogue titles' "AsimovWid". Null when unknown.
const Face* face(const QString& name);

} // namespace FontTable
