// Background catalogue: architecture, wallpapers and textures, 720 pixels square.
#include "Common.h"

#include "resources/AssetNames.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <array>
#include <cmath>

namespace assetgen {

namespace {

constexpr int side = 720;

using Palette = std::array<QColor, 5>;

const std::array<Palette, 10>& palettes() {
    static const std::array<Palette, 10> list{{
        {QColor("#264653"), QColor("#2a9d8f"), QColor("#e9c46a"), QColor("#f4a261"), QColor("#e76f51")},
        {QColor("#0b132b"), QColor("#1c2541"), QColor("#3a506b"), QColor("#5bc0be"), QColor("#e0fbfc")},
        {QColor("#3d0c45"), QColor("#8e2c6e"), QColor("#e3577a"), QColor("#f9a66c"), QColor("#ffd6a5")},
        {QColor("#22223b"), QColor("#4a4e69"), QColor("#9a8c98"), QColor("#c9ada7"), QColor("#f2e9e4")},
        {QColor("#03045e"), QColor("#0077b6"), QColor("#00b4d8"), QColor("#90e0ef"), QColor("#caf0f8")},
        {QColor("#283618"), QColor("#606c38"), QColor("#a3b18a"), QColor("#dda15e"), QColor("#fefae0")},
        {QColor("#590d22"), QColor("#a4133c"), QColor("#ff4d6d"), QColor("#ff8fa3"), QColor("#ffccd5")},
        {QColor("#10002b"), QColor("#3c096c"), QColor("#7b2cbf"), QColor("#c77dff"), QColor("#e0aaff")},
        {QColor("#1b263b"), QColor("#415a77"), QColor("#778da9"), QColor("#e0e1dd"), QColor("#ffb703")},
        {QColor("#432818"), QColor("#99582a"), QColor("#bb9457"), QColor("#ffe6a7"), QColor("#6f1d1b")},
    }};
    return list;
}

QColor ramp(const Palette& palette, double t) {
    t = std::clamp(t, 0.0, 1.0) * 4.0;
    const int i = std::min(int(t), 3);
    return mix(palette[size_t(i)], palette[size_t(i + 1)], t - i);
}

QImage canvas() {
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::black);
    return image;
}

template <typename F> QImage perPixel(F&& colourAt) {
    QImage image = canvas();
    for (int y = 0; y < side; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < side; ++x)
            line[x] = colourAt(x / double(side), y / double(side)).rgb();
    }
    return image;
}

// ---- architecture -------------------------------------------------------------------------------

QImage photoTreatment(const Context& context, const QString& photo, QPointF focus, int treatment) {
    QImage image = fillCrop(samplePhoto(context, photo), {side, side}, focus);
    if (treatment == 0)
        return image;
    for (int y = 0; y < side; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const double r = qRed(line[x]) / 255.0, g = qGreen(line[x]) / 255.0, b = qBlue(line[x]) / 255.0;
            const double l = 0.3 * r + 0.59 * g + 0.11 * b;
            QColor out;
            if (treatment == 1) // warm monochrome, like an old print
                out = QColor::fromRgbF(float(std::min(1.0, l * 1.08 + 0.04)), float(l * 0.98 + 0.02),
                                       float(l * 0.82));
            else // dusk: cool shadows, warm light
                out = QColor::fromRgbF(float(std::clamp(r * 0.9 + l * 0.25, 0.0, 1.0)),
                                       float(std::clamp(g * 0.75 + 0.05, 0.0, 1.0)),
                                       float(std::clamp(b * 0.8 + (1 - l) * 0.25, 0.0, 1.0)));
            line[x] = out.rgb();
        }
    }
    return image;
}

QImage skyline(int variant) {
    const Palette& pal = palettes()[size_t(variant == 0 ? 2 : variant == 1 ? 1 : 7)];
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, side);
    sky.setColorAt(0, pal[0]);
    sky.setColorAt(0.55, pal[2]);
    sky.setColorAt(1, pal[4]);
    p.fillRect(image.rect(), sky);
    p.setPen(Qt::NoPen);
    p.setBrush(mix(pal[4], Qt::white, 0.5));
    p.drawEllipse(QPointF(side * 0.7, side * 0.42), 60, 60);
    Rng rng(700 + variant);
    for (int layer = 0; layer < 3; ++layer) {
        const QColor body = mix(pal[0], QColor(10, 10, 20), 0.35 + layer * 0.25);
        int x = -20;
        while (x < side) {
            const int w = 40 + rng.below(70);
            const int h = int(side * (0.18 + 0.12 * layer) + rng.below(int(side * (0.3 - 0.05 * layer))));
            const QRect tower(x, side - h, w, h);
            p.fillRect(tower, body);
            if (rng.below(3) == 0) // a spire on some towers
                p.fillRect(QRect(x + w / 2 - 2, side - h - 30, 4, 30), body);
            if (layer == 2) {
                for (int wy = side - h + 12; wy < side - 8; wy += 14)
                    for (int wx = x + 6; wx < x + w - 8; wx += 11)
                        if (rng.below(5) < 2)
                            p.fillRect(QRect(wx, wy, 5, 7),
                                       mix(QColor(255, 214, 120), pal[4], rng.uniform(0, 0.5)));
            }
            x += w + rng.below(6);
        }
    }
    return image;
}

QImage isometric(int variant) {
    const Palette& pal = palettes()[size_t(variant * 3 % 10)];
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const double s = 48, h = s * std::sqrt(3.0) / 2;
    for (int row = -1; row * s * 1.5 < side + s; ++row) {
        for (int col = -1; col * h * 2 < side + h * 2; ++col) {
            const QPointF c(col * h * 2 + (row % 2 ? h : 0), row * s * 1.5);
            const QPointF top(c.x(), c.y() - s), right(c.x() + h, c.y() - s / 2),
                rightDown(c.x() + h, c.y() + s / 2), bottom(c.x(), c.y() + s),
                leftDown(c.x() - h, c.y() + s / 2), left(c.x() - h, c.y() - s / 2);
            p.setPen(Qt::NoPen);
            p.setBrush(pal[3]);
            p.drawPolygon(QPolygonF{top, right, c, left});
            p.setBrush(pal[1]);
            p.drawPolygon(QPolygonF{left, c, bottom, leftDown});
            p.setBrush(pal[0]);
            p.drawPolygon(QPolygonF{c, right, rightDown, bottom});
        }
    }
    return image;
}

QImage arches(int variant) {
    const Palette& pal = palettes()[size_t(variant ? 9 : 3)];
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient wall(0, 0, 0, side);
    wall.setColorAt(0, pal[3]);
    wall.setColorAt(1, pal[2]);
    p.fillRect(image.rect(), wall);
    const int count = variant ? 3 : 4;
    const double w = side / double(count);
    for (int i = 0; i < count; ++i) {
        QPainterPath arch;
        const double x = i * w + w * 0.18, aw = w * 0.64, top = side * 0.22;
        arch.moveTo(x, side);
        arch.lineTo(x, top + aw / 2);
        arch.arcTo(QRectF(x, top, aw, aw), 180, -180);
        arch.lineTo(x + aw, side);
        QLinearGradient inside(0, top, 0, side);
        inside.setColorAt(0, pal[0]);
        inside.setColorAt(1, mix(pal[1], pal[0], 0.5));
        p.fillPath(arch, inside);
        p.setPen(QPen(mix(pal[4], Qt::white, 0.6), 6));
        p.drawPath(arch);
        p.setPen(Qt::NoPen);
    }
    p.fillRect(QRectF(0, side * 0.9, side, side * 0.1), mix(pal[1], Qt::black, 0.2));
    return image;
}

QImage glassFacade(int variant) {
    const Palette& pal = palettes()[size_t(variant ? 4 : 8)];
    QImage image = canvas();
    QPainter p(&image);
    const int cols = 9, rows = 14;
    const double cw = side / double(cols), rh = side / double(rows);
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < cols; ++c) {
            const double t = 0.5 + 0.5 * std::sin(c * 0.7 + r * 0.35 + variant);
            QLinearGradient pane(c * cw, r * rh, (c + 1) * cw, (r + 1) * rh);
            pane.setColorAt(0, ramp(pal, 0.2 + 0.6 * t));
            pane.setColorAt(1, ramp(pal, 0.1 + 0.5 * t));
            p.fillRect(QRectF(c * cw, r * rh, cw, rh), pane);
        }
    }
    p.setPen(QPen(mix(pal[0], Qt::black, 0.4), 5));
    for (int c = 0; c <= cols; ++c)
        p.drawLine(QPointF(c * cw, 0), QPointF(c * cw, side));
    p.setPen(QPen(mix(pal[0], Qt::black, 0.4), 3));
    for (int r = 0; r <= rows; ++r)
        p.drawLine(QPointF(0, r * rh), QPointF(side, r * rh));
    return image;
}

QImage brickWall(int variant) {
    const QColor base = variant ? QColor(176, 84, 58) : QColor(196, 170, 140);
    return perPixel([&](double x, double y) {
        const double bh = 1.0 / 18, bw = 1.0 / 7;
        const int row = int(y / bh);
        const double xs = x + (row % 2) * bw / 2;
        const int col = int(xs / bw);
        const double fx = xs / bw - col, fy = y / bh - row;
        const bool mortar = fx < 0.04 || fy < 0.1;
        const double grain = fbm(x * 40, y * 40, 11 + variant, 3);
        if (mortar)
            return mix(QColor(200, 195, 185), QColor(150, 145, 140), grain);
        const double tone = lattice01(row * 31 + col, variant) * 0.3;
        return mix(base, base.darker(140), tone + grain * 0.35);
    });
}

QImage corridor(int variant) {
    const Palette& pal = palettes()[size_t(variant ? 5 : 0)];
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(image.rect(), pal[0]);
    const QPointF vanish(side / 2.0, side * 0.45);
    for (int i = 12; i >= 1; --i) {
        const double f = i / 12.0;
        const QRectF frame(vanish.x() - side * 0.6 * f, vanish.y() - side * 0.55 * f, side * 1.2 * f,
                           side * 1.1 * f);
        p.setPen(Qt::NoPen);
        p.setBrush(ramp(pal, 1.0 - f * 0.8));
        p.drawRect(frame);
        p.setBrush(mix(ramp(pal, 1.0 - f * 0.8), Qt::black, 0.25));
        p.drawRect(frame.adjusted(frame.width() * 0.08, frame.height() * 0.08, -frame.width() * 0.08, 0));
    }
    return image;
}

// ---- wallpaper ----------------------------------------------------------------------------------

QImage blobs(int variant) {
    const Palette& pal = palettes()[size_t(variant % 10)];
    Rng rng(900 + variant);
    struct Blob {
        double x, y, r;
        QColor c;
    };
    std::vector<Blob> list;
    for (int i = 0; i < 6; ++i)
        list.push_back({rng.uniform(), rng.uniform(), rng.uniform(0.3, 0.6), pal[size_t(rng.below(5))]});
    return perPixel([&](double x, double y) {
        double wsum = 0, r = 0, g = 0, b = 0;
        for (const Blob& blob : list) {
            const double d2 = ((x - blob.x) * (x - blob.x) + (y - blob.y) * (y - blob.y)) / (blob.r * blob.r);
            const double w = std::exp(-d2 * 2.0) + 1e-4;
            wsum += w;
            r += w * blob.c.redF();
            g += w * blob.c.greenF();
            b += w * blob.c.blueF();
        }
        const double n = (fbm(x * 300, y * 300, 5, 1) - 0.5) * 0.015; // fine grain hides banding
        return QColor::fromRgbF(float(std::clamp(r / wsum + n, 0.0, 1.0)),
                                float(std::clamp(g / wsum + n, 0.0, 1.0)),
                                float(std::clamp(b / wsum + n, 0.0, 1.0)));
    });
}

QImage waves(int variant) {
    const Palette& pal = palettes()[size_t((variant * 7 + 1) % 10)];
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(image.rect(), pal[4]);
    for (int layer = 0; layer < 5; ++layer) {
        QPainterPath path;
        const double base = side * (0.3 + layer * 0.15);
        path.moveTo(0, side);
        for (int x = 0; x <= side; x += 8)
            path.lineTo(x, base + std::sin(x / 90.0 + layer * 1.7 + variant) * (30 + 8 * layer) +
                               std::sin(x / 37.0 + layer) * 8);
        path.lineTo(side, side);
        path.closeSubpath();
        p.fillPath(path, pal[size_t(3 - std::min(layer, 3))].darker(100 + layer * 8));
    }
    return image;
}

QImage bokeh(int variant) {
    const Palette& pal = palettes()[size_t((variant * 3 + 2) % 10)];
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient bg(0, 0, side, side);
    bg.setColorAt(0, pal[0]);
    bg.setColorAt(1, pal[1]);
    p.fillRect(image.rect(), bg);
    Rng rng(1300 + variant);
    p.setPen(Qt::NoPen);
    for (int i = 0; i < 60; ++i) {
        const QPointF c(rng.uniform(0, side), rng.uniform(0, side));
        const double r = rng.uniform(12, 70);
        QColor col = pal[size_t(2 + rng.below(3))];
        QRadialGradient g(c, r);
        col.setAlphaF(float(rng.uniform(0.15, 0.45)));
        g.setColorAt(0, col);
        g.setColorAt(0.85, col);
        col.setAlphaF(0);
        g.setColorAt(1, col);
        p.setBrush(g);
        p.drawEllipse(c, r, r);
    }
    return image;
}

QImage sunburst(int variant) {
    const Palette& pal = palettes()[size_t((variant + 5) % 10)];
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(image.rect(), pal[1]);
    p.translate(side / 2.0, side * (0.5 + 0.2 * variant));
    for (int i = 0; i < 24; ++i) {
        QPainterPath ray;
        ray.moveTo(0, 0);
        ray.lineTo(side * 1.5 * std::cos(i * M_PI / 12), side * 1.5 * std::sin(i * M_PI / 12));
        ray.lineTo(side * 1.5 * std::cos((i + 0.5) * M_PI / 12),
                   side * 1.5 * std::sin((i + 0.5) * M_PI / 12));
        ray.closeSubpath();
        p.fillPath(ray, pal[2]);
    }
    QRadialGradient glow(QPointF(0, 0), side * 0.7);
    glow.setColorAt(0, pal[4]);
    glow.setColorAt(1, QColor(0, 0, 0, 0));
    p.setBrush(glow);
    p.setPen(Qt::NoPen);
    p.drawEllipse(QPointF(0, 0), side * 0.7, side * 0.7);
    return image;
}

QImage geometric(int variant) {
    const Palette& pal = palettes()[size_t((variant * 3 + 4) % 10)];
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(image.rect(), pal[4]);
    p.setPen(Qt::NoPen);
    Rng rng(1700 + variant);
    switch (variant % 4) {
    case 0: // diagonal stripes
        p.rotate(-30);
        for (int i = -30; i < 30; ++i)
            p.fillRect(QRectF(i * 40, -side, 20, side * 3), pal[size_t(1 + (i & 1 ? 2 : 0))]);
        break;
    case 1: // polka dots
        for (int y = 0; y < 13; ++y)
            for (int x = 0; x < 13; ++x) {
                p.setBrush(pal[size_t(1 + (x + y) % 3)]);
                p.drawEllipse(QPointF(x * 60 + (y % 2) * 30, y * 60), 14, 14);
            }
        break;
    case 2: // chevrons
        for (int row = -1; row < 20; ++row) {
            QPainterPath zig;
            for (int x = 0; x <= side + 60; x += 60) {
                zig.moveTo(x, row * 45.0);
                zig.lineTo(x + 30, row * 45.0 + 25);
                zig.lineTo(x + 60, row * 45.0);
            }
            p.strokePath(
                zig, QPen(pal[size_t(1 + (row + 30) % 3)], 12, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
        }
        break;
    default: // low-poly triangles
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x) {
                const double cell = side / 8.0;
                const QPointF a(x * cell, y * cell), b((x + 1) * cell, y * cell), c(x * cell, (y + 1) * cell),
                    d((x + 1) * cell, (y + 1) * cell);
                const double t = (x + y) / 14.0;
                p.setBrush(ramp(pal, t * 0.8 + rng.uniform(0, 0.15)));
                p.drawPolygon(QPolygonF{a, b, c});
                p.setBrush(ramp(pal, t * 0.8 + rng.uniform(0.05, 0.2)));
                p.drawPolygon(QPolygonF{b, d, c});
            }
        break;
    }
    return image;
}

// ---- textures -----------------------------------------------------------------------------------

QImage texture(int index) {
    const std::uint32_t seed = 2000u + std::uint32_t(index);
    const int kind = index % 10, shade = index / 10;
    switch (kind) {
    case 0: { // marble
        const QColor base = shade == 1   ? QColor(40, 44, 52)
                            : shade == 2 ? QColor(226, 214, 200)
                                         : QColor(242, 242, 240);
        const QColor vein = shade == 1 ? QColor(210, 190, 140) : QColor(120, 125, 135);
        return perPixel([&](double x, double y) {
            const double t = std::abs(std::sin((x * 6 + y * 3 + fbm(x * 4, y * 4, seed, 5) * 6)));
            return mix(vein, base, std::pow(t, 0.25));
        });
    }
    case 1: { // wood
        const QColor light = shade == 1   ? QColor(214, 170, 120)
                             : shade == 2 ? QColor(150, 100, 70)
                                          : QColor(230, 200, 160);
        return perPixel([&](double x, double y) {
            const double n = fbm(x * 3, y * 30, seed, 4);
            const double ring = std::fmod((x * 14 + n * 4), 1.0);
            return mix(light, light.darker(150), std::pow(ring, 3) * 0.8 + n * 0.2);
        });
    }
    case 2: { // paper
        const QColor base = shade == 1   ? QColor(236, 224, 200)
                            : shade == 2 ? QColor(210, 226, 236)
                                         : QColor(248, 246, 240);
        return perPixel([&](double x, double y) {
            const double n = fbm(x * 60, y * 60, seed, 4) * 0.6 + fbm(x * 6, y * 6, seed + 9, 3) * 0.4;
            return mix(base, base.darker(118), n);
        });
    }
    case 3: { // concrete
        const QColor base = shade == 1 ? QColor(120, 124, 128) : QColor(170, 168, 162);
        return perPixel([&](double x, double y) {
            const double n = fbm(x * 12, y * 12, seed, 6);
            const double pit = valueNoise(x * 180, y * 180, seed + 3) > 0.93 ? 0.3 : 0.0;
            return mix(base.lighter(115), base.darker(125), n + pit);
        });
    }
    case 4: { // clouds
        const Palette& pal = palettes()[size_t(shade == 1 ? 4 : shade == 2 ? 2 : 7)];
        return perPixel(
            [&](double x, double y) { return ramp(pal, fbm(x * 4, y * 4, seed, 6) * 1.2 - 0.1); });
    }
    case 5: { // terrazzo
        Rng rng(seed);
        QImage image = perPixel([&](double x, double y) {
            return mix(QColor(236, 232, 226), QColor(222, 216, 208), fbm(x * 20, y * 20, seed, 2));
        });
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        const Palette& pal = palettes()[size_t(shade * 3 % 10)];
        for (int i = 0; i < 260; ++i) {
            QPolygonF chip;
            const QPointF c(rng.uniform(0, side), rng.uniform(0, side));
            const double r = rng.uniform(4, 18);
            for (int k = 0; k < 5; ++k) {
                const double a = k * 2 * M_PI / 5 + rng.uniform(-0.4, 0.4);
                chip << c + QPointF(std::cos(a), std::sin(a)) * r * rng.uniform(0.6, 1.0);
            }
            p.setBrush(pal[size_t(rng.below(5))]);
            p.drawPolygon(chip);
        }
        return image;
    }
    case 6: { // linen weave
        const QColor base = shade == 1   ? QColor(60, 80, 110)
                            : shade == 2 ? QColor(180, 150, 120)
                                         : QColor(220, 210, 190);
        return perPixel([&](double x, double y) {
            const double warp = 0.5 + 0.5 * std::sin(x * side * 0.9),
                         weft = 0.5 + 0.5 * std::sin(y * side * 0.9);
            const double n = fbm(x * 90, y * 8, seed, 2) * 0.5 + fbm(x * 8, y * 90, seed + 1, 2) * 0.5;
            return mix(base.lighter(110), base.darker(125), (warp * weft) * 0.4 + n * 0.6);
        });
    }
    case 7: { // brushed metal
        const QColor base = shade == 1   ? QColor(190, 160, 110)
                            : shade == 2 ? QColor(120, 130, 140)
                                         : QColor(190, 194, 198);
        return perPixel([&](double x, double y) {
            const double n = fbm(x * 2, y * 260, seed, 3);
            const double sheen = 0.5 + 0.5 * std::cos((x - 0.3) * 3.0);
            return mix(base.darker(130), base.lighter(125), n * 0.5 + sheen * 0.5);
        });
    }
    case 8: { // watercolour wash
        const Palette& pal = palettes()[size_t((shade * 4 + 3) % 10)];
        return perPixel([&](double x, double y) {
            const double n = fbm(x * 3 + fbm(x * 6, y * 6, seed + 5, 3), y * 3, seed, 5);
            const QColor c = ramp(pal, 0.45 + n * 0.6);
            return mix(c, QColor(250, 248, 244), 0.35 + 0.25 * fbm(x * 30, y * 30, seed + 2, 2));
        });
    }
    default: { // sand
        const QColor base = shade == 1   ? QColor(200, 160, 110)
                            : shade == 2 ? QColor(90, 86, 80)
                                         : QColor(226, 204, 160);
        return perPixel([&](double x, double y) {
            const double dune = 0.5 + 0.5 * std::sin(y * 40 + fbm(x * 3, y * 3, seed, 3) * 8);
            const double grain = valueNoise(x * 500, y * 500, seed + 7);
            return mix(base.lighter(112), base.darker(120), dune * 0.6 + grain * 0.4);
        });
    }
    }
}

QImage architecture(const Context& context, int index) {
    switch (index) {
    case 0:
        return photoTreatment(context, "home.jpg", {0.5, 0.5}, 0);
    case 1:
        return skyline(0);
    case 2:
        return photoTreatment(context, "building.jpg", {0.55, 0.5}, 0);
    case 3:
        return isometric(0);
    case 4:
        return photoTreatment(context, "leuvenA.jpg", {0.6, 0.5}, 0);
    case 5:
        return arches(0);
    case 6:
        return glassFacade(0);
    case 7:
        return photoTreatment(context, "leuvenB.jpg", {0.45, 0.5}, 2);
    case 8:
        return skyline(1);
    case 9:
        return brickWall(0);
    case 10:
        return photoTreatment(context, "home.jpg", {0.8, 0.5}, 1);
    case 11:
        return isometric(1);
    case 12:
        return corridor(0);
    case 13:
        return photoTreatment(context, "building.jpg", {0.3, 0.5}, 2);
    case 14:
        return arches(1);
    case 15:
        return glassFacade(1);
    case 16:
        return skyline(2);
    case 17:
        return photoTreatment(context, "leuvenA.jpg", {0.2, 0.5}, 1);
    case 18:
        return brickWall(1);
    case 19:
        return isometric(2);
    default:
        return corridor(1);
    }
}

QImage wallpaper(int index) {
    switch (index % 6) {
    case 0:
    case 3:
        return blobs(index / 3);
    case 1:
        return waves(index / 6);
    case 2:
        return geometric(index / 6);
    case 4:
        return bokeh(index / 6);
    default:
        return index / 6 % 2 ? sunburst(index / 12) : geometric(index / 6 + 10);
    }
}

} // namespace

JobList backgroundJobs() {
    JobList jobs;
    const QList<AssetNames::NumberedGroup>& groups = AssetNames::backgroundCategories();
    for (int g = 0; g < groups.size(); ++g) {
        for (int i = 0; i < groups[g].count; ++i) {
            jobs.push_back({"backgrounds", groups[g].name(i) + ".jpg",
                            [g, i](const Context& context, const QString& path) {
                                const QImage image = g == 0   ? architecture(context, i)
                                                     : g == 1 ? wallpaper(i)
                                                              : texture(i);
                                return saveJpeg(image, path);
                            }});
        }
    }
    return jobs;
}

} // namespace assetgen
