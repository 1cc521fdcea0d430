#include "filters/CubeRows.h"

#include <algorithm>
#include <initializer_list>

namespace cuberows {

namespace {

// A colour index 0…255 as a cell of the cube and the position inside it. The lowest corner stops at
// N − 2, so the top value lands on the far side of the last cell rather than outside the cube.
struct Axis {
    int cell;
    float fraction;
};

inline Axis axis(int value, float scale, int lastCell) {
    const float position = float(value) * scale;
    const int cell = std::min(int(position), lastCell);
    return {cell, position - float(cell)};
}

inline float channel(std::uint32_t entry, int shift) {
    return float((entry >> shift) & 0xff);
}

inline std::uint32_t toByte(float value) {
    return std::uint32_t(std::clamp(int(value + 0.5f), 0, 255));
}

struct Corners {
    const std::uint32_t* base; // the cell's lowest corner
    int dg, db;                // steps to the next green and the next blue entry
};

// One channel of the eight corners, blended along red, then green, then blue.
inline float trilinear(const Corners& c, Axis r, Axis g, Axis b, int shift) {
    const auto at = [&](int dr, int dgreen, int dblue) {
        return channel(c.base[dr + dgreen * c.dg + dblue * c.db], shift);
    };
    const float c00 = at(0, 0, 0) + r.fraction * (at(1, 0, 0) - at(0, 0, 0));
    const float c10 = at(0, 1, 0) + r.fraction * (at(1, 1, 0) - at(0, 1, 0));
    const float c01 = at(0, 0, 1) + r.fraction * (at(1, 0, 1) - at(0, 0, 1));
    const float c11 = at(0, 1, 1) + r.fraction * (at(1, 1, 1) - at(0, 1, 1));
    const float c0 = c00 + g.fraction * (c10 - c00);
    const float c1 = c01 + g.fraction * (c11 - c01);
    return c0 + b.fraction * (c1 - c0);
}

// The tetrahedron is picked by the order of the three fractions: from the lowest corner, step along
// the axis with the largest fraction, then the middle one, then the last, to the far corner.
struct Tetrahedron {
    int first, second; // offsets of the two inner corners from the lowest one
    float w0, w1, w2, w3;
};

inline Tetrahedron tetrahedron(const Corners& c, Axis r, Axis g, Axis b) {
    const float fr = r.fraction, fg = g.fraction, fb = b.fraction;
    const int dr = 1, dg = c.dg, db = c.db;
    if (fr > fg) {
        if (fg > fb)
            return {dr, dr + dg, 1 - fr, fr - fg, fg - fb, fb};
        if (fr > fb)
            return {dr, dr + db, 1 - fr, fr - fb, fb - fg, fg};
        return {db, db + dr, 1 - fb, fb - fr, fr - fg, fg};
    }
    if (fb > fg)
        return {db, db + dg, 1 - fb, fb - fg, fg - fr, fr};
    if (fb > fr)
        return {dg, dg + db, 1 - fg, fg - fb, fb - fr, fr};
    return {dg, dg + dr, 1 - fg, fg - fr, fr - fb, fb};
}

inline float tetrahedral(const Corners& c, const Tetrahedron& t, int shift) {
    return t.w0 * channel(c.base[0], shift) + t.w1 * channel(c.base[t.first], shift) +
           t.w2 * channel(c.base[t.second], shift) + t.w3 * channel(c.base[1 + c.dg + c.db], shift);
}

// The cube's colour (and alpha) for straight red, green and blue bytes.
inline std::uint32_t lookup(CubeView cube, int red, int green, int blue, Interpolation interpolation) {
    const int n = cube.dimension;
    const float scale = float(n - 1) / 255.0f;
    const Axis r = axis(red, scale, n - 2), g = axis(green, scale, n - 2), b = axis(blue, scale, n - 2);
    const Corners c{cube.entries + (b.cell * n + g.cell) * n + r.cell, n, n * n};
    std::uint32_t out = 0;
    if (interpolation == Interpolation::tetrahedral) {
        const Tetrahedron t = tetrahedron(c, r, g, b);
        for (int shift : {0, 8, 16})
            out |= toByte(tetrahedral(c, t, shift)) << shift;
        out |= (cube.opaque ? 255u : toByte(tetrahedral(c, t, 24))) << 24;
    } else {
        for (int shift : {0, 8, 16})
            out |= toByte(trilinear(c, r, g, b, shift)) << shift;
        out |= (cube.opaque ? 255u : toByte(trilinear(c, r, g, b, 24))) << 24;
    }
    return out;
}

inline int scaledByte(int value, int alpha) {
    return (value * alpha + 127) / 255;
}

} // namespace

void plainRow(CubeView cube, const std::uint32_t* source, std::uint32_t* destination, int count,
              PixelAlpha alpha, Interpolation interpolation) {
    for (int x = 0; x < count; ++x) {
        const std::uint32_t pixel = source[x];
        const int a = alpha == PixelAlpha::opaque ? 255 : int(pixel >> 24);
        if (a == 255) {
            const std::uint32_t mapped = lookup(cube, int((pixel >> 16) & 0xff), int((pixel >> 8) & 0xff),
                                                int(pixel & 0xff), interpolation);
            destination[x] = alpha == PixelAlpha::opaque ? (mapped | 0xff000000u) : mapped;
            continue;
        }
        if (a == 0) {
            destination[x] = 0;
            continue;
        }
        // Look up the straight colour, then scale the cube's premultiplied entry by the pixel's alpha.
        const auto straight = [&](int shift) {
            return std::min(255, (int((pixel >> shift) & 0xff) * 255 + a / 2) / a);
        };
        const std::uint32_t mapped = lookup(cube, straight(16), straight(8), straight(0), interpolation);
        std::uint32_t out = 0;
        for (int shift : {0, 8, 16, 24})
            out |= std::uint32_t(scaledByte(int((mapped >> shift) & 0xff), a)) << shift;
        destination[x] = out;
    }
}

} // namespace cuberows
