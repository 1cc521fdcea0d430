#include "CubeTestSupport.h"

#include "platform/Assets.h"

#include <QColor>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace cubetest {

namespace {

Rgb entry(const ColorCube& cube, int r, int g, int b) {
    const int n = cube.dimension;
    const float* e = cube.data.data() + (std::size_t(b) * n * n + std::size_t(g) * n + r) * 4;
    return {e[0] * 255.0, e[1] * 255.0, e[2] * 255.0};
}

struct Cell {
    int lo[3];
    double t[3];
};

Cell cellOf(const ColorCube& cube, int r, int g, int b) {
    const int n = cube.dimension;
    Cell cell{};
    const int v[3] = {r, g, b};
    for (int i = 0; i < 3; ++i) {
        const double position = v[i] * (n - 1) / 255.0;
        cell.lo[i] = std::min(int(std::floor(position)), n - 2);
        cell.t[i] = position - cell.lo[i];
    }
    return cell;
}

} // namespace

Rgb trilinearReference(const ColorCube& cube, int r, int g, int b) {
    const Cell c = cellOf(cube, r, g, b);
    Rgb out{0, 0, 0};
    for (int corner = 0; corner < 8; ++corner) {
        const int dr = corner & 1, dg = (corner >> 1) & 1, db = (corner >> 2) & 1;
        const double w = (dr ? c.t[0] : 1 - c.t[0]) * (dg ? c.t[1] : 1 - c.t[1]) * (db ? c.t[2] : 1 - c.t[2]);
        const Rgb e = entry(cube, c.lo[0] + dr, c.lo[1] + dg, c.lo[2] + db);
        for (int i = 0; i < 3; ++i)
            out[i] += w * e[i];
    }
    return out;
}

// Walk from the lowest corner to the highest, one axis at a time in decreasing order of the fractions;
// each corner weighs the drop in fraction from the axis before.
Rgb tetrahedralReference(const ColorCube& cube, int r, int g, int b) {
    const Cell c = cellOf(cube, r, g, b);
    int order[3] = {0, 1, 2};
    std::stable_sort(order, order + 3, [&](int x, int y) { return c.t[x] > c.t[y]; });
    int at[3] = {c.lo[0], c.lo[1], c.lo[2]};
    double previous = 1.0;
    Rgb out{0, 0, 0};
    for (int step = 0; step <= 3; ++step) {
        const double fraction = step < 3 ? c.t[order[step]] : 0.0;
        const Rgb e = entry(cube, at[0], at[1], at[2]);
        for (int i = 0; i < 3; ++i)
            out[i] += (previous - fraction) * e[i];
        previous = fraction;
        if (step < 3)
            ++at[order[step]];
    }
    return out;
}

QImage lookupPicture(int n, int columns, int rows, const std::function<Rgb(const Rgb&)>& map) {
    QImage picture(n * columns, n * rows, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const int r = x % n, g = y % n, b = (y / n) * columns + x / n;
            const Rgb out = map({r / double(n - 1), g / double(n - 1), b / double(n - 1)});
            const auto byte = [](double v) { return int(std::lround(std::clamp(v, 0.0, 1.0) * 255)); };
            picture.setPixel(x, y, qRgb(byte(out[0]), byte(out[1]), byte(out[2])));
        }
    return picture;
}

QImage identityPicture(int n) {
    return lookupPicture(n, 8, n / 8, [](const Rgb& c) { return c; });
}

QImage assetLookup(const QString& name) {
    const ImagePtr image = Assets::image(name);
    EXPECT_TRUE(image) << name.toStdString() << " is not in the assets";
    return image ? image->bitmap() : QImage();
}

ColorCube cubeOf(const QImage& lookup, int n) {
    auto cube = filterWithLookupImage(lookup, n);
    EXPECT_TRUE(cube);
    return cube ? *cube : ColorCube{};
}

std::shared_ptr<const PackedCube> packedOf(const QImage& lookup, int n) {
    return packCube(cubeOf(lookup, n));
}

QImage samplePhoto(const QString& file, QSize size) {
    const QImage photo(QStringLiteral(LUMIVEX_SAMPLES_DIR "/") + file);
    EXPECT_FALSE(photo.isNull()) << file.toStdString() << " is missing";
    return photo.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_RGB32);
}

QImage everyColour() {
    QImage image(4096, 4096, QImage::Format_RGB32);
    for (int y = 0; y < 4096; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < 4096; ++x) {
            const int index = y * 4096 + x;
            line[x] = qRgb(index & 0xff, (index >> 8) & 0xff, index >> 16);
        }
    }
    return image;
}

int worstDifference(const QImage& a, const QImage& b) {
    EXPECT_EQ(a.size(), b.size());
    EXPECT_EQ(a.format(), b.format());
    if (a.size() != b.size() || a.depth() != 32 || b.depth() != 32)
        return 256;
    int worst = 0;
    for (int y = 0; y < a.height(); ++y) {
        const uchar* p = a.constScanLine(y);
        const uchar* q = b.constScanLine(y);
        for (int x = 0; x < a.width() * 4; ++x)
            worst = std::max(worst, std::abs(int(p[x]) - int(q[x])));
    }
    return worst;
}

} // namespace cubetest
