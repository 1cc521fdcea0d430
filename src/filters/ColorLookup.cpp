#include "filters/ColorLookup.h"

#include "filters/CubeKernel.h"
#include "platform/Log.h"

#include <cstring>
#include <new>

std::optional<std::vector<std::uint8_t>> createRGBABitmapFromImage(const QImage& image) {
    if (image.isNull())
        return std::nullopt;
    const QImage rgba = image.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    if (rgba.isNull())
        return std::nullopt;
    const std::size_t rowBytes = std::size_t(rgba.width()) * 4;
    std::vector<std::uint8_t> pixels;
    try {
        pixels.resize(rowBytes * std::size_t(rgba.height()));
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    for (int y = 0; y < rgba.height(); ++y)
        std::memcpy(pixels.data() + rowBytes * std::size_t(y), rgba.constScanLine(y), rowBytes);
    return pixels;
}

std::optional<ColorCube> filterWithLookupImage(const QImage& lookup, int dimension) {
    const int n = dimension;
    const int w = lookup.width(), h = lookup.height();
    const int columns = n > 0 ? w / n : 0, rows = n > 0 ? h / n : 0;
    // columns × rows = N also bounds N by the picture's size, so N³ below cannot overflow.
    if (n <= 0 || w != columns * n || h != rows * n || std::int64_t(columns) * rows != n) {
        printLine("Invalid colorLUT");
        return std::nullopt;
    }
    const auto pixels = createRGBABitmapFromImage(lookup);
    if (!pixels)
        return std::nullopt;
    ColorCube cube;
    cube.dimension = n;
    try {
        cube.data.resize(std::size_t(n) * n * n * 4);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    // The pixels in raster order: tile row, line in the tile, tile column, pixel in the line.
    const std::uint8_t* p = pixels->data();
    for (int r = 0; r < rows; ++r)
        for (int y = 0; y < n; ++y)
            for (int c = 0; c < columns; ++c)
                for (int x = 0; x < n; ++x) {
                    float* entry = cube.data.data() + (std::size_t(r * columns + c) * n * n + y * n + x) * 4;
                    for (int i = 0; i < 4; ++i)
                        entry[i] = float(p[i] / 255.0);
                    p += 4;
                }
    return cube;
}

ImagePtr applyColorLookup(const ImagePtr& lookup, const ImagePtr& source) {
    if (!source || !lookup)
        return nullptr;
    const auto cube = filterWithLookupImage(lookup->bitmap(), lookDimension);
    if (!cube)
        return nullptr;
    const auto packed = packCube(*cube);
    if (!packed)
        return nullptr;
    QImage result = applyCube(*packed, source->bitmap());
    if (result.isNull())
        return nullptr;
    return Image::make(std::move(result), 1.0, source->orientation());
}
