#pragma once

#include "platform/Image.h"

#include <QColor>

// The two picture helpers of the PNG sheet, which the SVG sheet shares. Both draw into a clear context
// at the screen's scale; both may run on any thread.
class PNGFunctionClass {
public:
    // The picture drawn in its own size, centred, on a `width` × `height` (points) plane of `color`.
    // Null when there is no picture or no pixels.
    static ImagePtr renderFlattened(const ImagePtr& image, const QColor& color, double width, double height);

    // The picture redrawn on a clear background and passed through PNG bytes and back, so what comes
    // out is what a PNG file of it holds. Falls back to the picture itself when a step gives nothing.
    static ImagePtr renderClearBacked(const ImagePtr& image);
};
