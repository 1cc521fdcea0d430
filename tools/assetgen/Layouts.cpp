// Previews drawn from the layout tables: classic frames, mirror patterns, and the mirror overlays with
// their strip thumbnails.
#include "Common.h"

#include "frames/FrameGeometry.h"
#include "resources/AssetNames.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <array>
#include <cmath>

namespace assetgen {

namespace {

// ---- classic frames -----------------------------------------------------------------------------

const QStringList& cellPhotos() {
    static const QStringList photos{"fruits.jpg",    "squirrel_cls.jpg", "home.jpg",
                                    "butterfly.jpg", "leuvenA.jpg",      "orange.jpg"};
    return photos;
}

QImage framePreview(const Context& context, int frame) {
    constexpr int side = 234;
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(QColor(246, 246, 248));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    // Laid out as the editor lays its frame area out, with a wider spacing to read at thumbnail size.
    const QList<QRectF> cells = FrameGeometry::cellRects(frame, QSizeF(side, side), 8, 8);
    for (int i = 0; i < cells.size(); ++i) {
        const QRectF cell = cells[i];
        const QImage photo = fillCrop(samplePhoto(context, cellPhotos()[i % cellPhotos().size()]),
                                      cell.size().toSize() + QSize(1, 1));
        QPainterPath rounded;
        rounded.addRoundedRect(cell, 6, 6);
        p.save();
        p.setClipPath(rounded);
        p.drawImage(cell.topLeft(), photo);
        p.restore();
    }
    return image;
}

// ---- mirror patterns ----------------------------------------------------------------------------

struct Pattern {
    bool columns;
    QString forms;         // O plain, H left-right mirror, V top-bottom mirror; one letter a pane
    QList<double> offsets; // rest scroll offsets along the split, in widths of the canvas
};

const std::array<Pattern, 18>& patterns() {
    static const std::array<Pattern, 18> table{{
        {true, "OH", {0.5, 0}},
        {true, "HO", {0.5, 0}},
        {true, "OO", {0, 0}},
        {true, "HH", {0, 0}},
        {true, "OV", {0.5, 0}},
        {false, "OV", {0.5, 0}},
        {false, "VO", {0.5, 0}},
        {false, "OO", {0.5, 0}},
        {false, "OH", {0.5, 0}},
        {true, "OOO", {0, 0, 0}},
        {true, "HHH", {0, 0, 0}},
        {false, "OOO", {0, 0, 0}},
        {false, "HHH", {0, 0, 0}},
        {false, "OHO", {0, 0, 0}},
        {true, "OOHH", {0.75, 0.75, 0, 0}},
        {true, "HHOO", {0.75, 0.75, 0, 0}},
        {true, "OOOO", {0.75, 0.75, 0.75, 0.75}},
        {true, "OHOH", {0.75, 0, 0.75, 0}},
    }};
    return table;
}

QImage mirrorPattern(const QImage& square, int index) {
    const Pattern& pattern = patterns()[size_t(index)];
    const int side = square.width(), n = int(pattern.forms.size());
    const QImage h = square.mirrored(true, false), v = square.mirrored(false, true);
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter p(&image);
    for (int k = 0; k < n; ++k) {
        const QChar form = pattern.forms[k];
        const QImage& source = form == QLatin1Char('H') ? h : form == QLatin1Char('V') ? v : square;
        // Whole pixels, so neighbouring panes meet without a seam of unpainted pixels.
        const int start = k * side / n, size = (k + 1) * side / n - start;
        const int offset = int(std::lround(pattern.offsets[k] * side));
        // A pane of the strip shows the picture under its scroll offset.
        const QRect target = pattern.columns ? QRect(start, 0, size, side) : QRect(0, start, side, size);
        const QRect from = pattern.columns ? QRect(std::min(offset, side - size), 0, size, side)
                                           : QRect(0, std::min(offset, side - size), side, size);
        p.drawImage(target, source, from);
    }
    return image;
}

QImage mirrorSource(const Context& context, int side) {
    return fillCrop(samplePhoto(context, "home.jpg"), {side, side}, {0.62, 0.5});
}

// ---- overlays -----------------------------------------------------------------------------------

constexpr int overlaySide = 720;

QPainterPath heart(const QRectF& r) {
    QPainterPath path;
    const double x = r.x(), y = r.y(), w = r.width(), h = r.height();
    path.moveTo(x + w / 2, y + h * 0.3);
    path.cubicTo(x + w * 0.5, y, x, y, x, y + h * 0.32);
    path.cubicTo(x, y + h * 0.6, x + w * 0.35, y + h * 0.75, x + w / 2, y + h);
    path.cubicTo(x + w * 0.65, y + h * 0.75, x + w, y + h * 0.6, x + w, y + h * 0.32);
    path.cubicTo(x + w, y, x + w * 0.5, y, x + w / 2, y + h * 0.3);
    return path;
}

QPainterPath star(QPointF c, double outer, double inner, int points) {
    QPainterPath path;
    for (int i = 0; i < points * 2; ++i) {
        const double r = i % 2 ? inner : outer, a = -M_PI / 2 + i * M_PI / points;
        const QPointF pt = c + QPointF(std::cos(a), std::sin(a)) * r;
        i ? path.lineTo(pt) : path.moveTo(pt);
    }
    path.closeSubpath();
    return path;
}

QPainterPath polygon(QPointF c, double r, int sides, double turn) {
    QPainterPath path;
    for (int i = 0; i < sides; ++i) {
        const double a = turn + i * 2 * M_PI / sides;
        const QPointF pt = c + QPointF(std::cos(a), std::sin(a)) * r;
        i ? path.lineTo(pt) : path.moveTo(pt);
    }
    path.closeSubpath();
    return path;
}

// A raised frame with a window cut out: gradient face, bevel light and an inner shadow give it depth.
QImage windowFrame(const QPainterPath& window, const QColor& a, const QColor& b) {
    QImage image(overlaySide, overlaySide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient face(0, 0, overlaySide, overlaySide);
    face.setColorAt(0, a);
    face.setColorAt(1, b);
    p.fillRect(image.rect(), face);
    for (int i = 0; i < 6; ++i) // soft outer glow of the window edge, on the frame
        p.strokePath(window, QPen(QColor(255, 255, 255, 18), 30 - i * 5));
    p.setCompositionMode(QPainter::CompositionMode_Clear);
    p.fillPath(window, Qt::transparent);
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.setClipPath(window);
    for (int i = 0; i < 8; ++i) // shadow falling into the window
        p.strokePath(window.translated(4, 6), QPen(QColor(0, 0, 0, 16), 40 - i * 5));
    p.setClipping(false);
    p.strokePath(window, QPen(QColor(255, 255, 255, 200), 4));
    return image;
}

QImage transparentCanvas() {
    QImage image(overlaySide, overlaySide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage overlay(int index) {
    const double s = overlaySide;
    const QPointF centre(s / 2, s / 2);
    switch (index) {
    case 0:
        return windowFrame(heart(QRectF(s * 0.12, s * 0.15, s * 0.76, s * 0.72)), QColor("#ff8fa3"),
                           QColor("#c9184a"));
    case 1: {
        QPainterPath circle;
        circle.addEllipse(centre, s * 0.38, s * 0.38);
        return windowFrame(circle, QColor("#90e0ef"), QColor("#0077b6"));
    }
    case 2:
        return windowFrame(star(centre + QPointF(0, s * 0.03), s * 0.46, s * 0.22, 5), QColor("#ffd166"),
                           QColor("#f77f00"));
    case 3: {
        QPainterPath photo;
        photo.addRect(QRectF(s * 0.08, s * 0.08, s * 0.84, s * 0.7));
        return windowFrame(photo, QColor(252, 252, 250), QColor(225, 222, 215));
    }
    case 4:
        return windowFrame(polygon(centre, s * 0.42, 6, M_PI / 6), QColor("#c77dff"), QColor("#3c096c"));
    case 5: { // film strip
        QImage image = transparentCanvas();
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        for (double y : {0.0, s * 0.86}) {
            p.fillRect(QRectF(0, y, s, s * 0.14), QColor(20, 20, 22, 235));
            for (int i = 0; i < 12; ++i)
                p.fillRect(QRectF(i * s / 12 + 14, y + s * 0.045, s / 12 - 28, s * 0.05),
                           QColor(240, 240, 240, 220));
        }
        return image;
    }
    case 6: { // bokeh lights
        QImage image = transparentCanvas();
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        Rng rng(31);
        for (int i = 0; i < 70; ++i) {
            const QPointF c(rng.uniform(0, s), rng.uniform(0, s));
            const double r = rng.uniform(10, 55);
            QColor col = hsv(rng.uniform(0.05, 0.18), 0.6, 1.0, rng.uniform(0.2, 0.5));
            QRadialGradient g(c, r);
            g.setColorAt(0, col);
            g.setColorAt(0.8, col);
            col.setAlpha(0);
            g.setColorAt(1, col);
            p.setBrush(g);
            p.drawEllipse(c, r, r);
        }
        return image;
    }
    case 7: { // neon ring
        QImage image = transparentCanvas();
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        for (int i = 0; i < 10; ++i)
            p.strokePath(
                [&] {
                    QPainterPath r;
                    r.addEllipse(centre, s * 0.36, s * 0.36);
                    return r;
                }(),
                QPen(QColor(255, 60, 200, 14 + i * 2), 60 - i * 5.5));
        QPainterPath ring;
        ring.addEllipse(centre, s * 0.36, s * 0.36);
        p.strokePath(ring, QPen(QColor(255, 230, 250), 6));
        return image;
    }
    case 8: { // light leak from two corners
        QImage image = transparentCanvas();
        QPainter p(&image);
        for (auto [c, col] : {std::pair{QPointF(0, 0), QColor(255, 120, 40)},
                              std::pair{QPointF(s, s), QColor(255, 40, 120)}}) {
            QRadialGradient g(c, s * 0.75);
            col.setAlpha(170);
            g.setColorAt(0, col);
            col.setAlpha(0);
            g.setColorAt(1, col);
            p.fillRect(image.rect(), g);
        }
        return image;
    }
    case 9: { // torn paper edge all round
        QImage image = transparentCanvas();
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        QPainterPath outer, inner;
        outer.addRect(QRectF(0, 0, s, s));
        Rng rng(57);
        const double m = s * 0.08;
        QPolygonF edge;
        for (double x = m; x < s - m; x += 12)
            edge << QPointF(x, m + rng.uniform(-10, 10));
        for (double y = m; y < s - m; y += 12)
            edge << QPointF(s - m + rng.uniform(-10, 10), y);
        for (double x = s - m; x > m; x -= 12)
            edge << QPointF(x, s - m + rng.uniform(-10, 10));
        for (double y = s - m; y > m; y -= 12)
            edge << QPointF(m + rng.uniform(-10, 10), y);
        inner.addPolygon(edge);
        inner.closeSubpath();
        p.fillPath(outer.subtracted(inner), QColor(250, 246, 236));
        p.strokePath(inner, QPen(QColor(0, 0, 0, 60), 3));
        return image;
    }
    case 10: { // snowfall
        QImage image = transparentCanvas();
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        Rng rng(91);
        for (int i = 0; i < 220; ++i) {
            const double r = rng.uniform(2, 9);
            p.setBrush(QColor(255, 255, 255, int(rng.uniform(120, 230))));
            p.drawEllipse(QPointF(rng.uniform(0, s), rng.uniform(0, s)), r, r);
        }
        return image;
    }
    case 11: { // 3D shards in the corners
        QImage image = transparentCanvas();
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        const QColor colours[] = {QColor("#2a9d8f"), QColor("#e9c46a"), QColor("#e76f51"), QColor("#264653")};
        Rng rng(13);
        for (int corner = 0; corner < 4; ++corner) {
            const QPointF c(corner % 2 ? s : 0, corner / 2 ? s : 0);
            for (int i = 0; i < 4; ++i) {
                QPolygonF shard{c, c + QPointF((corner % 2 ? -1 : 1) * rng.uniform(80, 260), 0),
                                c + QPointF(0, (corner / 2 ? -1 : 1) * rng.uniform(80, 260))};
                p.setBrush(colours[(corner + i) % 4]);
                p.setPen(QPen(QColor(255, 255, 255, 120), 2));
                p.drawPolygon(shard);
            }
        }
        return image;
    }
    case 12: { // vignette with a thin gold line
        QImage image = transparentCanvas();
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        QRadialGradient g(centre, s * 0.72);
        g.setColorAt(0.55, QColor(0, 0, 0, 0));
        g.setColorAt(1, QColor(0, 0, 0, 200));
        p.fillRect(image.rect(), g);
        p.setPen(QPen(QColor(212, 175, 55), 5));
        p.drawRect(QRectF(s * 0.06, s * 0.06, s * 0.88, s * 0.88));
        return image;
    }
    default: { // double diamond window
        QPainterPath diamond = polygon(centre, s * 0.45, 4, 0);
        return windowFrame(diamond, QColor("#caffbf"), QColor("#2d6a4f"));
    }
    }
}

QImage overlayThumbnail(const Context& context, int index) {
    constexpr int side = 156;
    // The cell shows the overlay over the pattern it comes with: even indices the plain-then-mirror
    // pair, odd ones the mirror-then-plain pair.
    QImage image = mirrorPattern(mirrorSource(context, side), index % 2 ? 1 : 0);
    QPainter p(&image);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.drawImage(QRect(0, 0, side, side), overlay(index / 2));
    return image;
}

int frameIndexOf(const QString& alias) {
    const QString hyphenated = QStringLiteral("frame-") + alias.mid(5);
    return int(AssetNames::classicFrames().indexOf(hyphenated));
}

} // namespace

QImage mirrorPreview(const QImage& square, int pattern) {
    return mirrorPattern(square, pattern);
}

JobList layoutJobs() {
    JobList jobs;
    const QStringList frames = AssetNames::classicFrames();
    for (int i = 0; i < frames.size(); ++i)
        jobs.push_back({"layouts", frames[i] + ".png", [i](const Context& context, const QString& path) {
                            return savePng(framePreview(context, i), path);
                        }});
    for (const QString& alias : AssetNames::classicFrameAliases()) {
        const int i = frameIndexOf(alias);
        jobs.push_back({"layouts", alias + ".png", [i](const Context& context, const QString& path) {
                            return i >= 0 && savePng(framePreview(context, i), path);
                        }});
    }
    const QStringList patternNames = AssetNames::mirrorPatterns();
    for (int i = 0; i < patternNames.size(); ++i)
        jobs.push_back(
            {"layouts", patternNames[i] + ".jpg", [i](const Context& context, const QString& path) {
                 return saveJpeg(mirrorPattern(mirrorSource(context, 234), i), path, 90);
             }});
    const QStringList overlayNames = AssetNames::overlays();
    for (int i = 0; i < overlayNames.size(); ++i)
        jobs.push_back({"layouts", overlayNames[i] + ".png",
                        [i](const Context&, const QString& path) { return savePng(overlay(i), path); }});
    for (int i = 0; i < AssetNames::overlayPatternCount; ++i)
        jobs.push_back({"layouts", AssetNames::overlayThumbnailName(i) + ".jpg",
                        [i](const Context& context, const QString& path) {
                            return saveJpeg(overlayThumbnail(context, i), path, 90);
                        }});
    return jobs;
}

} // namespace assetgen
