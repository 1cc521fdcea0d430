// Compiled with AVX2 and FMA enabled; nothing here runs unless cpuHasAvx2() said yes.
#include "filters/CubeRows.h"

#include <immintrin.h>

namespace cuberows {

namespace {

struct Constants {
    __m256 scale;
    __m256i lastCell, greenStep, blueStep, byteMask;
};

// The cell and the position in it along one axis, eight pixels at once, as plainRow computes them.
inline void axis(const Constants& k, __m256i value, __m256i& cell, __m256& fraction) {
    const __m256 position = _mm256_mul_ps(_mm256_cvtepi32_ps(value), k.scale);
    cell = _mm256_min_epi32(_mm256_cvttps_epi32(position), k.lastCell);
    fraction = _mm256_sub_ps(position, _mm256_cvtepi32_ps(cell));
}

inline __m256 channel(__m256i entries, int shift, __m256i byteMask) {
    switch (shift) {
    case 16:
        return _mm256_cvtepi32_ps(_mm256_and_si256(_mm256_srli_epi32(entries, 16), byteMask));
    case 8:
        return _mm256_cvtepi32_ps(_mm256_and_si256(_mm256_srli_epi32(entries, 8), byteMask));
    default:
        return _mm256_cvtepi32_ps(_mm256_and_si256(entries, byteMask));
    }
}

inline __m256 lerp(__m256 a, __m256 b, __m256 t) {
    return _mm256_fmadd_ps(t, _mm256_sub_ps(b, a), a);
}

inline __m256i gather(const int* table, __m256i index) {
    return _mm256_i32gather_epi32(table, index, 4);
}

// Three float channels rounded to bytes and packed as opaque 0xAARRGGBB.
inline __m256i pack(__m256 red, __m256 green, __m256 blue) {
    const __m256 half = _mm256_set1_ps(0.5f);
    const __m256i r = _mm256_cvttps_epi32(_mm256_add_ps(red, half));
    const __m256i g = _mm256_cvttps_epi32(_mm256_add_ps(green, half));
    const __m256i b = _mm256_cvttps_epi32(_mm256_add_ps(blue, half));
    return _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi32(r, 16), _mm256_slli_epi32(g, 8)),
                           _mm256_or_si256(b, _mm256_set1_epi32(int(0xff000000u))));
}

// Trilinear in 16-bit fixed point. Red is the fastest axis, so the two red corners of a cell are
// neighbours in the table and one 64-bit gather fetches both: four gathers of pairs per four pixels
// instead of eight single ones. The red blend weighs each pair with 7-bit weights (pmaddubsw), giving
// channels scaled by 127; green and blue blend those with 15-bit fractions (pmulhrsw).
struct HalfWeights {
    __m256i red, green, blue; // per pixel, repeated over the pixel's 64 bits
};

// The 16-bit word at the bottom of each of four pixels' 32 bits, spread over that pixel's 64 bits.
inline __m256i spread(__m128i words) {
    const __m256i repeatLowWord = _mm256_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 8, 9, 8, 9, 8, 9, 8, 9, 0, 1, 0, 1,
                                                   0, 1, 0, 1, 8, 9, 8, 9, 8, 9, 8, 9);
    return _mm256_shuffle_epi8(_mm256_cvtepu32_epi64(words), repeatLowWord);
}

inline __m256i blendRed(const int* table, int offset, __m128i base, __m256i redWeights) {
    // Bytes B0 G0 R0 A0 B1 G1 R1 A1 of each pair, reordered so each channel's two corners sit side by side.
    const __m256i byChannel = _mm256_setr_epi8(0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15, 0, 4, 1,
                                               5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15);
    const __m256i pairs = _mm256_i32gather_epi64(reinterpret_cast<const long long*>(table + offset), base, 4);
    return _mm256_maddubs_epi16(_mm256_shuffle_epi8(pairs, byChannel), redWeights);
}

inline __m256i lerp16(__m256i a, __m256i b, __m256i weight) {
    return _mm256_add_epi16(a, _mm256_mulhrs_epi16(_mm256_sub_epi16(b, a), weight));
}

// Four pixels: their cells' lowest corners in `base`; channels B, G, R, A as words, scaled by 127.
inline __m256i trilinearHalf(const int* table, __m128i base, const HalfWeights& w, int n) {
    const int nn = n * n;
    const __m256i c00 = blendRed(table, 0, base, w.red), c10 = blendRed(table, n, base, w.red);
    const __m256i c01 = blendRed(table, nn, base, w.red), c11 = blendRed(table, nn + n, base, w.red);
    return lerp16(lerp16(c00, c10, w.green), lerp16(c01, c11, w.green), w.blue);
}

inline __m256i trilinear(const int* table, __m256i base, __m256 fr, __m256 fg, __m256 fb, int n) {
    const __m256 half = _mm256_set1_ps(0.5f);
    const __m256i red = _mm256_cvttps_epi32(_mm256_fmadd_ps(fr, _mm256_set1_ps(127.0f), half));
    const __m256i redPair =
        _mm256_or_si256(_mm256_sub_epi32(_mm256_set1_epi32(127), red), _mm256_slli_epi32(red, 8));
    const __m256 q15 = _mm256_set1_ps(32767.0f);
    const __m256i green = _mm256_cvttps_epi32(_mm256_fmadd_ps(fg, q15, half));
    const __m256i blue = _mm256_cvttps_epi32(_mm256_fmadd_ps(fb, q15, half));
    const auto weights = [&](int upper) {
        const auto part = [&](__m256i v) {
            return upper ? _mm256_extracti128_si256(v, 1) : _mm256_castsi256_si128(v);
        };
        return HalfWeights{spread(part(redPair)), spread(part(green)), spread(part(blue))};
    };
    const __m256i low = trilinearHalf(table, _mm256_castsi256_si128(base), weights(0), n);
    const __m256i high = trilinearHalf(table, _mm256_extracti128_si256(base, 1), weights(1), n);
    // Back from 127ths to bytes: 258 / 32768 is 1 / 127 to within 0.02 of a level over the range.
    const __m256i toBytes = _mm256_set1_epi16(258);
    const __m256i packed =
        _mm256_packus_epi16(_mm256_mulhrs_epi16(low, toBytes), _mm256_mulhrs_epi16(high, toBytes));
    // packus works per 128-bit lane: pixels come out 0 1 4 5 2 3 6 7.
    return _mm256_or_si256(_mm256_permute4x64_epi64(packed, 0xd8), _mm256_set1_epi32(int(0xff000000u)));
}

inline __m256 negate(__m256 mask) {
    return _mm256_xor_ps(mask, _mm256_castsi256_ps(_mm256_set1_epi32(-1)));
}

inline __m256 select(__m256 whenFalse, __m256 whenTrue, __m256 mask) {
    return _mm256_blendv_ps(whenFalse, whenTrue, mask);
}

inline __m256i select(__m256i whenFalse, __m256i whenTrue, __m256 mask) {
    return _mm256_castps_si256(
        _mm256_blendv_ps(_mm256_castsi256_ps(whenFalse), _mm256_castsi256_ps(whenTrue), mask));
}

// The same choice of tetrahedron as plainRow's comparisons, made with masks: the axis with the largest
// fraction is stepped first, the one with the smallest last.
inline __m256i tetrahedral(const Constants& k, const int* table, __m256i base, __m256 fr, __m256 fg,
                           __m256 fb, int n) {
    const __m256 a = _mm256_cmp_ps(fr, fg, _CMP_GT_OQ), b = _mm256_cmp_ps(fg, fb, _CMP_GT_OQ);
    const __m256 c = _mm256_cmp_ps(fr, fb, _CMP_GT_OQ), d = _mm256_cmp_ps(fb, fg, _CMP_GT_OQ);
    const __m256 e = _mm256_cmp_ps(fb, fr, _CMP_GT_OQ);
    const __m256 maxIsR = _mm256_and_ps(a, c);
    const __m256 maxIsB = _mm256_or_ps(_mm256_andnot_ps(c, a), _mm256_andnot_ps(a, d));
    const __m256 minIsR = _mm256_andnot_ps(a, _mm256_or_ps(d, e));
    const __m256 minIsG = _mm256_andnot_ps(b, a);
    const __m256 minIsB = _mm256_or_ps(_mm256_and_ps(a, b), negate(_mm256_or_ps(a, _mm256_or_ps(d, e))));
    const __m256 midIsR = negate(_mm256_or_ps(maxIsR, minIsR));
    const __m256 midIsB = negate(_mm256_or_ps(maxIsB, minIsB));

    const __m256 fMax = select(select(fg, fb, maxIsB), fr, maxIsR);
    const __m256 fMid = select(select(fg, fb, midIsB), fr, midIsR);
    const __m256 fMin = select(select(fr, fg, minIsG), fb, minIsB);
    const __m256i one = _mm256_set1_epi32(1);
    const __m256i first = select(select(k.greenStep, k.blueStep, maxIsB), one, maxIsR);
    const __m256i minStep = select(select(one, k.greenStep, minIsG), k.blueStep, minIsB);
    const int far = 1 + n + n * n;
    const __m256i second = _mm256_sub_epi32(_mm256_set1_epi32(far), minStep);

    const __m256i e0 = gather(table, base);
    const __m256i e1 = gather(table, _mm256_add_epi32(base, first));
    const __m256i e2 = gather(table, _mm256_add_epi32(base, second));
    const __m256i e3 = gather(table + far, base);
    const __m256 w0 = _mm256_sub_ps(_mm256_set1_ps(1.0f), fMax), w1 = _mm256_sub_ps(fMax, fMid);
    const __m256 w2 = _mm256_sub_ps(fMid, fMin), w3 = fMin;
    __m256 out[3];
    const int shifts[3] = {16, 8, 0};
    for (int i = 0; i < 3; ++i) {
        const int s = shifts[i];
        __m256 v = _mm256_mul_ps(w0, channel(e0, s, k.byteMask));
        v = _mm256_fmadd_ps(w1, channel(e1, s, k.byteMask), v);
        v = _mm256_fmadd_ps(w2, channel(e2, s, k.byteMask), v);
        out[i] = _mm256_fmadd_ps(w3, channel(e3, s, k.byteMask), v);
    }
    return pack(out[0], out[1], out[2]);
}

} // namespace

void avx2Row(CubeView cube, const std::uint32_t* source, std::uint32_t* destination, int count,
             PixelAlpha alpha, Interpolation interpolation) {
    if (!cube.opaque) {
        plainRow(cube, source, destination, count, alpha, interpolation);
        return;
    }
    const int n = cube.dimension;
    const Constants k{_mm256_set1_ps(float(n - 1) / 255.0f), _mm256_set1_epi32(n - 2), _mm256_set1_epi32(n),
                      _mm256_set1_epi32(n * n), _mm256_set1_epi32(0xff)};
    const int* table = reinterpret_cast<const int*>(cube.entries);
    int x = 0;
    for (; x + 8 <= count; x += 8) {
        const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source + x));
        if (alpha == PixelAlpha::premultiplied) {
            const __m256i opaqueLanes = _mm256_cmpeq_epi32(_mm256_srli_epi32(pixels, 24), k.byteMask);
            if (_mm256_movemask_epi8(opaqueLanes) != -1) {
                plainRow(cube, source + x, destination + x, 8, alpha, interpolation);
                continue;
            }
        }
        __m256i cr, cg, cb;
        __m256 fr, fg, fb;
        axis(k, _mm256_and_si256(_mm256_srli_epi32(pixels, 16), k.byteMask), cr, fr);
        axis(k, _mm256_and_si256(_mm256_srli_epi32(pixels, 8), k.byteMask), cg, fg);
        axis(k, _mm256_and_si256(pixels, k.byteMask), cb, fb);
        const __m256i base = _mm256_add_epi32(
            cr, _mm256_add_epi32(_mm256_mullo_epi32(cg, k.greenStep), _mm256_mullo_epi32(cb, k.blueStep)));
        const __m256i out = interpolation == Interpolation::tetrahedral
                                ? tetrahedral(k, table, base, fr, fg, fb, n)
                                : trilinear(table, base, fr, fg, fb, n);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(destination + x), out);
    }
    if (x < count)
        plainRow(cube, source + x, destination + x, count - x, alpha, interpolation);
}

} // namespace cuberows
