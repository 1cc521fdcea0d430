#pragma once

// Independent references for the cube tests: written from the definition of the lookup picture and of
// the interpolations, in doubles, one pixel at a time, sharing nothing with the kernels.

#include "filters/ColorLookup.h"
#include "filters/CubeKernel.h"

#include <QImage>
#include <QString>
#include <array>
#include <memory>

namespace cubetest {

using Rgb = std::array<double, 3>;

// The colour the cube gives for straight bytes r, g, b, in 0…255 units.
Rgb trilinearReference(const ColorCube& cube, int r, int g, int b);
Rgb tetrahedralReference(const ColorCube& cube, int r, int g, int b);

// A lookup picture for `map` (0…1 in, 0…1 out) at dimension n, as columns × rows tiles.
QImage lookupPicture(int n, int columns, int rows, const std::function<Rgb(const Rgb&)>& map);
QImage identityPicture(int n = 64);

// The lookup picture of a look from the assets, and its cubes.
QImage assetLookup(const QString& name);
ColorCube cubeOf(const QImage& lookup, int n = 64);
std::shared_ptr<const PackedCube> packedOf(const QImage& lookup, int n = 64);

// A sample photo scaled to `size`, RGB32. Fails the test when it is missing.
QImage samplePhoto(const QString& file, QSize size);

// Every colour of the 8-bit cube once, 4096 × 4096.
QImage everyColour();

// Largest difference of any channel (alpha included) between two images of the same size and format.
int worstDifference(const QImage& a, const QImage& b);

} // namespace cubetest
