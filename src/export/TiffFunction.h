#pragma once

#include "platform/Image.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>

// Saves a picture as TIFF: 8-bit RGBA with an sRGB profile unless the picture names its own colour
// space, written to a fresh file in the system's temporary folder and then added to the album as an
// asset of its own. The temporary file is kept: the share screen reads and shares it afterwards.
class TiffFunction {
public:
    // Told whether the album took the file, with the temporary file's path when it did. Called on a
    // worker thread; callers hop to the main queue themselves.
    using Completion = std::function<void(bool success, std::optional<QString> url)>;

    // The TIFF bytes of the upright picture; empty when it cannot be encoded.
    static QByteArray tiffData(const Image& image);

    // A new path in the temporary folder: an upper-case UUID with the extension "tiff".
    static QString temporaryFileURL();

    // Encodes, writes and adds to the album in `albumFolder` on a worker. A missing picture, no data or
    // a failed write end the operation without calling `completion` (the failure is printed); an album
    // that refuses the file calls it with false.
    static void saveImageAsTIFF(ImagePtr image, QString albumFolder, Completion completion);
};
