#pragma once

#include <QColor>
#include <QImage>
#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

// Shared pieces of the asset generator: where files go, how they are written, the sample photos and
// a small deterministic random source.
namespace assetgen {

struct Context {
    QString outDir;
    QString samplesDir; // folder of the bundled sample photos
};

// One file to make. Jobs are independent of each other, so they can run on any thread in any order
// and still give the same bytes.
struct Job {
    QString group;
    QString file; // file name inside the output folder
    std::function<bool(const Context&, const QString& path)> make;
};

using JobList = std::vector<Job>;

// Writers that leave out everything that could differ between runs (text chunks carried over from a
// source photo, for one). PNG at a low zlib level: several times faster for slightly larger files.
bool savePng(const QImage& image, const QString& path);
bool saveJpeg(const QImage& image, const QString& path, int quality = 88);

// A sample photo by file name, decoded once per process; a neutral procedural scene when the photo
// is not installed, so the build still completes.
QImage samplePhoto(const Context& context, const QString& fileName);
// The photo scaled and cropped to fill `size` (centre of interest at `focus`, in 0..1 of the photo).
QImage fillCrop(const QImage& photo, QSize size, QPointF focus = {0.5, 0.5});

// xorshift64*: tiny, fast and the same on every platform, unlike the standard distributions.
class Rng {
public:
    explicit Rng(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15ull + 0x2545F4914F6CDD1Dull) {}
    std::uint64_t next();
    double uniform(double lo = 0.0, double hi = 1.0);
    int below(int n);

private:
    std::uint64_t state_;
};

// Value noise in 0..1 with smooth interpolation, tiled with period `period` lattice cells.
double valueNoise(double x, double y, std::uint32_t seed);
double fbm(double x, double y, std::uint32_t seed, int octaves);
// A repeatable pseudo-random value in 0..1 for an integer key.
double lattice01(int n, int seed);

QColor mix(const QColor& a, const QColor& b, double t);
QColor hsv(double h, double s, double v, double a = 1.0);

// The groups of files; each is defined in its own source file.
JobList lookupJobs();
JobList stickerJobs();
JobList backgroundJobs();
JobList portraitJobs();
JobList layoutJobs();
JobList iconJobs();
JobList showcaseJobs();
JobList audioJobs();

// Pieces other groups reuse: a template portrait and a mirror pattern applied to a square picture.
QImage templatePortrait(bool male, int item);
QImage mirrorPreview(const QImage& square, int pattern);

bool writeContactSheet(const QString& assetsDir, const QString& path);

} // namespace assetgen
