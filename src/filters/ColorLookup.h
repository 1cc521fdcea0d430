#pragma once

#include "platform/Image.h"

#include <QImage>
#include <cstdint>
#include <optional>
#include <vector>

// A colour lookup picture turned into a cube, and a cube applied to a picture.
//
// A lookup picture of dimension N is a grid of N × N tiles: inside a tile x is the red index and y the
// green index, and the tile number, row by row, is the blue index. The standard looks are 64-cubes in
// 8 × 8 tiles, 512 × 512 pixels.

// The cube in its portable form: N³ entries of four floats (red, green, blue, alpha in 0…1), red varying
// fastest, then green, then blue.
struct ColorCube {
    int dimension = 0;
    std::vector<float> data; // dimension³ × 4
};

// The picture's pixels as bytes R, G, B, A, alpha premultiplied, top row first, w × 4 bytes a row.
// Nothing for a null picture or when the memory cannot be had.
std::optional<std::vector<std::uint8_t>> createRGBABitmapFromImage(const QImage& image);

// The cube held by `lookup` at `dimension`. A picture that is not a whole grid of `dimension` tiles
// logs "Invalid colorLUT" and gives nothing; so does a dimension below 1.
std::optional<ColorCube> filterWithLookupImage(const QImage& lookup, int dimension);

// The dimension every look of the program is made at.
constexpr int lookDimension = 64;

// `source` with the colours of `lookup` (a 64-cube), at scale 1.0 and with the source's orientation:
// the pixels are mapped where they are stored, never turned. Nothing for a missing source or an
// invalid lookup picture. Builds the cube on every call; callers that switch between looks keep cubes
// in a LookCubeCache instead.
ImagePtr applyColorLookup(const ImagePtr& lookup, const ImagePtr& source);
