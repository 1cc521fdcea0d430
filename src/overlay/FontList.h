#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

// The caption fonts as the font lists show them: 68 names, each beside a sample word written in it.
namespace FontList {

constexpr int count = 68;
// The font of new captions.
constexpr int captionFontIndex = 6;

const QStringList& fontNames();
// The word shown in the font of the same index; the repeats are deliberate.
const QStringList& sampleWords();

// A font by the name a screen uses, at `size` points, rendered by the free face mapped to that name.
// An unknown name gives the default face at that size, as a missing font does on the phone.
QFont font(const QString& name, double size);

} // namespace FontList
