#pragma once

#include <QString>

// The user's documents folder, where the format sheets write their fixed-name files.
namespace Documents {

// $LUMIVEX_DOCUMENTS_DIR when set, else the desktop's documents folder (XDG), else ~/Documents.
QString folder();

// The path of `name` inside folder(), the folder made when it is missing. When it cannot be made, the
// write that follows fails and says why.
QString fileURL(const QString& name);

} // namespace Documents
