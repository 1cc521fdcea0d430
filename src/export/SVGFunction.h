#pragma once

#include "platform/Image.h"

#include <QString>
#include <optional>

// The SVG the program writes is a wrapper, not a drawing: the picture as PNG, in base64, inside one
// image element sized in points.
class SVGFunction {
public:
    // The document for `image` at `width` × `height` points; empty when the picture gives no PNG.
    static QString svgText(const ImagePtr& image, double width, double height);

    // Writes `text` as UTF-8 to `path`, replacing what is there only once the whole text is on disk.
    // The path on success; nothing on failure, with the reason printed.
    static std::optional<QString> writeText(const QString& text, const QString& path);
};
