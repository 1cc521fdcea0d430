#include "Common.h"

#include <QFile>
#include <QHash>
#include <QImageWriter>
#include <QLinearGradient>
#include <QMutex>
#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <cstring>

namespace assetgen {

namespace {

// A copy with the pixels only: no text keys, default resolution.
QImage pixelsOnly(const QImage& image, QImage::Format format) {
    const QImage source = image.convertToFormat(format);
    QImage out(source.size(), format);
    for (int y = 0; y < source.height(); ++y)
        std::memcpy(out.scanLine(y), source.constScanLine(y), static_cast<size_t>(source.bytesPerLine()));
    return out;
}

bool write(const QImage& image, const QString& path, const char* format, int quality) {
    QImageWriter writer(path, format);
    writer.setQuality(quality);
    if (!writer.write(image)) {
        qWarning("assetgen: cannot write %s: %s", qPrintable(path), qPrintable(writer.errorString()));
        return false;
    }
    return true;
}

// Stands in for a missing sample photo: sky, sun, hills and a lake, so looks and mirrors still show.
QImage proceduralScene() {
    QImage image(640, 480, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 300);
    sky.setColorAt(0, QColor(40, 110, 200));
    sky.setColorAt(1, QColor(250, 200, 150));
    p.fillRect(image.rect(), sky);
    p.setBrush(QColor(255, 230, 120));
    p.setPen(Qt::NoPen);
    p.drawEllipse(QPointF(460, 170), 50, 50);
    QPainterPath hills;
    hills.moveTo(0, 300);
    hills.cubicTo(160, 180, 300, 330, 640, 230);
    hills.lineTo(640, 480);
    hills.lineTo(0, 480);
    p.fillPath(hills, QColor(60, 130, 70));
    p.fillRect(QRect(0, 360, 640, 120), QColor(50, 100, 160));
    return image;
}

} // namespace

bool savePng(const QImage& image, const QString& path) {
    const QImage::Format format = image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    // Quality 80 selects zlib level 1 in Qt's PNG writer.
    return write(pixelsOnly(image, format), path, "png", 80);
}

bool saveJpeg(const QImage& image, const QString& path, int quality) {
    return write(pixelsOnly(image, QImage::Format_RGB32), path, "jpg", quality);
}

QImage samplePhoto(const Context& context, const QString& fileName) {
    static QMutex mutex;
    static QHash<QString, QImage> cache;
    QMutexLocker lock(&mutex);
    const auto it = cache.constFind(fileName);
    if (it != cache.constEnd())
        return *it;
    QImage image(context.samplesDir + QLatin1Char('/') + fileName);
    if (image.isNull()) {
        qWarning("assetgen: sample photo %s not found, drawing a stand-in", qPrintable(fileName));
        image = proceduralScene();
    }
    image = pixelsOnly(image, QImage::Format_RGB32);
    cache.insert(fileName, image);
    return image;
}

QImage fillCrop(const QImage& photo, QSize size, QPointF focus) {
    const double scale =
        std::max(double(size.width()) / photo.width(), double(size.height()) / photo.height());
    const QSize scaled(int(std::ceil(photo.width() * scale)), int(std::ceil(photo.height() * scale)));
    const QImage big = photo.scaled(scaled, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const int x =
        std::clamp(int(focus.x() * big.width() - size.width() / 2.0), 0, big.width() - size.width());
    const int y =
        std::clamp(int(focus.y() * big.height() - size.height() / 2.0), 0, big.height() - size.height());
    return big.copy(x, y, size.width(), size.height());
}

std::uint64_t Rng::next() {
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    return state_ * 0x2545F4914F6CDD1Dull;
}

double Rng::uniform(double lo, double hi) {
    return lo + (hi - lo) * double(next() >> 11) * (1.0 / 9007199254740992.0);
}

int Rng::below(int n) {
    return n <= 0 ? 0 : int(next() % std::uint64_t(n));
}

namespace {

double lattice(int x, int y, std::uint32_t seed) {
    std::uint32_t h = std::uint32_t(x) * 374761393u + std::uint32_t(y) * 668265263u + seed * 2246822519u;
    h = (h ^ (h >> 13)) * 1274126177u;
    h ^= h >> 16;
    return double(h & 0xffffff) / double(0xffffff);
}

double smooth(double t) {
    return t * t * (3.0 - 2.0 * t);
}

} // namespace

double valueNoise(double x, double y, std::uint32_t seed) {
    const double fx = std::floor(x), fy = std::floor(y);
    const int ix = int(fx), iy = int(fy);
    const double tx = smooth(x - fx), ty = smooth(y - fy);
    const double a = lattice(ix, iy, seed), b = lattice(ix + 1, iy, seed);
    const double c = lattice(ix, iy + 1, seed), d = lattice(ix + 1, iy + 1, seed);
    return (a + (b - a) * tx) + ((c + (d - c) * tx) - (a + (b - a) * tx)) * ty;
}

double fbm(double x, double y, std::uint32_t seed, int octaves) {
    double sum = 0, amplitude = 0.5, total = 0;
    for (int i = 0; i < octaves; ++i) {
        sum += amplitude * valueNoise(x, y, seed + std::uint32_t(i) * 101u);
        total += amplitude;
        x *= 2.03;
        y *= 2.03;
        amplitude *= 0.5;
    }
    return sum / total;
}

double lattice01(int n, int seed) {
    return lattice(n, seed, 77u);
}

QColor mix(const QColor& a, const QColor& b, double t) {
    return QColor::fromRgbF(
        float(a.redF() + (b.redF() - a.redF()) * t), float(a.greenF() + (b.greenF() - a.greenF()) * t),
        float(a.blueF() + (b.blueF() - a.blueF()) * t), float(a.alphaF() + (b.alphaF() - a.alphaF()) * t));
}

QColor hsv(double h, double s, double v, double a) {
    h = h - std::floor(h);
    return QColor::fromHsvF(float(h), float(std::clamp(s, 0.0, 1.0)), float(std::clamp(v, 0.0, 1.0)),
                            float(std::clamp(a, 0.0, 1.0)));
}

} // namespace assetgen
