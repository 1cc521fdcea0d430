#pragma once

// Row kernels behind applyCube; private to the filters library.

// Kept free of library headers: the AVX2 file includes it, and an inline function compiled there with
// AVX2 enabled could be the copy the linker keeps for everyone.
#include <cstdint>

namespace cuberows {

// A packed cube as the kernels read it.
struct CubeView {
    const std::uint32_t* entries; // dimension³ pixels 0xAARRGGBB, red fastest
    int dimension;                // at least 2
    bool opaque;                  // every entry's alpha is 255
};

enum class Interpolation { trilinear, tetrahedral };

enum class PixelAlpha {
    opaque,       // RGB32: the alpha byte is 255 by definition and is written as 255
    premultiplied // ARGB32_Premultiplied
};

// Portable kernel: maps `count` pixels from `source` to `destination` (which may be the same memory).
void plainRow(CubeView cube, const std::uint32_t* source, std::uint32_t* destination, int count,
              PixelAlpha alpha, Interpolation interpolation);

// AVX2 and FMA kernel, eight pixels at a time; gives the plain kernel's bytes within one level. Blocks
// with a transparent pixel, the tail of the row and cubes with transparent entries go to plainRow.
// Only call it when cpuHasAvx2() answers true.
void avx2Row(CubeView cube, const std::uint32_t* source, std::uint32_t* destination, int count,
             PixelAlpha alpha, Interpolation interpolation);

} // namespace cuberows
