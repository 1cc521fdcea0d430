#pragma once

#include "filters/ColorLookup.h"

#include <QImage>
#include <cstdint>
#include <memory>
#include <vector>

// The fast form of a cube and the kernel that applies it to 32-bit pixels.
//
// Each entry is one 32-bit pixel 0xAARRGGBB, the layout of QImage's 32-bit formats, so a 64-cube takes
// 1 MiB and stays in the second-level cache while a picture streams past it. The standard looks are read
// from 8-bit pictures, so bytes hold them exactly.

struct PackedCube {
    int dimension = 0;                  // at least 2; a 1-cube is widened to a constant 2-cube
    std::vector<std::uint32_t> entries; // dimension³, red fastest, then green, then blue
    bool opaque = true;                 // every entry's alpha is 255
};

// Entries rounded to bytes; nothing for an empty or inconsistent cube.
std::shared_ptr<const PackedCube> packCube(const ColorCube& cube);

enum class CubeInterpolation {
    trilinear,  // the eight corners of the cell, as the platform filter does
    tetrahedral // four corners of the tetrahedron holding the colour: no cross-axis blur of greys
};

enum class KernelPath {
    automatic, // AVX2 when the processor has it
    plain,     // portable scalar code
    avx2,      // AVX2 and FMA; falls back to plain where the processor lacks them
};

struct CubeApplyOptions {
    CubeInterpolation interpolation = CubeInterpolation::trilinear;
    KernelPath path = KernelPath::automatic;
    // Split the rows over the calling thread and the global worker queues.
    bool useWorkerPool = true;
};

// Whether this processor runs the AVX2 kernel (checked once, at run time).
bool cpuHasAvx2();

// `source` mapped through `cube`, each pixel on its own. RGB32 stays RGB32 and premultiplied pixels stay
// premultiplied (the colour is un-premultiplied for the lookup, then the alpha is put back); any other
// format is worked on as premultiplied ARGB32. A cube with transparent entries gives premultiplied
// ARGB32. Null for a null source.
QImage applyCube(const PackedCube& cube, const QImage& source, const CubeApplyOptions& options = {});

// The same into a caller's buffer, which must have the source's size and the format applyCube would
// give (it is reallocated otherwise). Lets a caller reuse one large buffer between looks.
void applyCube(const PackedCube& cube, const QImage& source, QImage& destination,
               const CubeApplyOptions& options = {});
