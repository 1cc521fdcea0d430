#include "CutoutSamples.h"

#include "platform/ImageFilters.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QPainterPath>

namespace CutoutSamples {

namespace {

QImage traced(const QJsonArray& polygons, QSize size) {
    QImage mask(size, QImage::Format_Grayscale8);
    mask.fill(0);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (const QJsonValue& polygon : polygons) {
        QPolygonF points;
        for (const QJsonValue& point : polygon.toArray())
            points << QPointF(point.toArray().at(0).toDouble(), point.toArray().at(1).toDouble());
        QPainterPath path;
        path.addPolygon(points);
        path.closeSubpath();
        painter.fillPath(path, Qt::white);
    }
    return mask;
}

QStringList tracedNames() {
    QStringList names;
    const QDir dir(QStringLiteral(LUMIVEX_TEST_DATA_DIR "/cutouts"));
    for (const QString& file : dir.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name)) {
        QFile f(dir.filePath(file));
        if (f.open(QIODevice::ReadOnly))
            names << QJsonDocument::fromJson(f.readAll()).object().value(QStringLiteral("photo")).toString();
    }
    return names;
}

} // namespace

std::vector<Sample> tracedPhotos() {
    std::vector<Sample> samples;
    const QDir dir(QStringLiteral(LUMIVEX_TEST_DATA_DIR "/cutouts"));
    for (const QString& file : dir.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name)) {
        QFile f(dir.filePath(file));
        if (!f.open(QIODevice::ReadOnly))
            continue;
        const QJsonObject doc = QJsonDocument::fromJson(f.readAll()).object();
        const QString photo = doc.value(QStringLiteral("photo")).toString();
        ImagePtr picture = Image::fromFile(QStringLiteral(LUMIVEX_SAMPLES_DIR "/") + photo);
        const QJsonArray size = doc.value(QStringLiteral("size")).toArray();
        const QSize traceSize(size.at(0).toInt(), size.at(1).toInt());
        if (!picture || picture->pixelSize() != traceSize)
            continue;
        samples.push_back(
            {photo, picture, traced(doc.value(QStringLiteral("polygons")).toArray(), traceSize)});
    }
    return samples;
}

std::vector<Sample> composites() {
    std::vector<Sample> result;
    const QStringList traced = tracedNames();
    const QDir samples(QStringLiteral(LUMIVEX_SAMPLES_DIR));
    const QStringList backgrounds = samples.entryList(QDir::Files, QDir::Name);
    for (const Sample& subject : tracedPhotos()) {
        const QImage photo = subject.picture->uprightBitmap().convertToFormat(QImage::Format_RGB32);
        // A pasted edge is never a hard step in a real photo.
        const QImage alpha = ImageFilters::gaussianBlur(subject.truth, 1.2);
        for (const QString& name : backgrounds) {
            if (traced.contains(name))
                continue;
            ImagePtr background = Image::fromFile(samples.filePath(name));
            if (!background)
                continue;
            QImage canvas =
                background->uprightBitmap()
                    .scaled(photo.size(), Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation)
                    .convertToFormat(QImage::Format_RGB32);
            canvas = canvas.copy((canvas.width() - photo.width()) / 2, (canvas.height() - photo.height()) / 2,
                                 photo.width(), photo.height());
            for (int y = 0; y < photo.height(); ++y) {
                const QRgb* from = reinterpret_cast<const QRgb*>(photo.constScanLine(y));
                QRgb* to = reinterpret_cast<QRgb*>(canvas.scanLine(y));
                const uchar* a = alpha.constScanLine(y);
                for (int x = 0; x < photo.width(); ++x) {
                    const int k = a[x];
                    auto mix = [k](int f, int b) { return (f * k + b * (255 - k) + 127) / 255; };
                    to[x] = qRgb(mix(qRed(from[x]), qRed(to[x])), mix(qGreen(from[x]), qGreen(to[x])),
                                 mix(qBlue(from[x]), qBlue(to[x])));
                }
            }
            result.push_back(
                {subject.name + QStringLiteral(" over ") + name, Image::make(canvas), subject.truth});
        }
    }
    return result;
}

QImage alphaOf(const Image& cutout) {
    const QImage upright = cutout.uprightBitmap().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage alpha(upright.size(), QImage::Format_Grayscale8);
    for (int y = 0; y < upright.height(); ++y) {
        const QRgb* p = reinterpret_cast<const QRgb*>(upright.constScanLine(y));
        uchar* out = alpha.scanLine(y);
        for (int x = 0; x < upright.width(); ++x)
            out[x] = uchar(qAlpha(p[x]));
    }
    return alpha;
}

double intersectionOverUnion(const QImage& mask, const QImage& truth) {
    if (mask.size() != truth.size() || mask.depth() != 8 || truth.depth() != 8)
        return 0.0;
    long long both = 0, either = 0;
    for (int y = 0; y < mask.height(); ++y) {
        const uchar* m = mask.constScanLine(y);
        const uchar* t = truth.constScanLine(y);
        for (int x = 0; x < mask.width(); ++x) {
            const bool a = m[x] >= 128, b = t[x] >= 128;
            both += a && b;
            either += a || b;
        }
    }
    return either ? double(both) / double(either) : 1.0;
}

} // namespace CutoutSamples
