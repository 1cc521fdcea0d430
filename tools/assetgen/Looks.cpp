// The colour lookup pictures and the filter strip thumbnails.
#include "Common.h"

#include "resources/AssetNames.h"

#include <QPainter>
#include <array>
#include <cmath>

namespace assetgen {

namespace {

using Rgb = std::array<double, 3>;

// A look is a short grading pipeline; every field at its default leaves colours alone.
struct Look {
    double exposure = 0;    // stops, with a soft shoulder so highlights roll off
    Rgb gamma{1, 1, 1};     // per channel: the classic cross-processing handle
    double temperature = 0; // + warmer, - cooler
    double tint = 0;        // + magenta, - green
    double contrast = 0;    // S-curve strength around mid grey
    double saturation = 1;
    double vibrance = 0;     // saturation that spares already saturated colours
    double hue = 0;          // degrees
    double mono = 0;         // 1 = fully monochrome
    Rgb shadowTone{0, 0, 0}; // split toning: colour pushed into the shadows...
    double shadowAmount = 0;
    Rgb highlightTone{0, 0, 0}; // ...and into the highlights
    double highlightAmount = 0;
    double fade = 0;  // lifted blacks
    double crush = 0; // lowered whites
};

double luma(const Rgb& c) {
    return 0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2];
}

Rgb rotateHue(const Rgb& c, double degrees) {
    // Rotation about the grey axis in RGB space keeps luminance roughly in place.
    const double a = degrees * M_PI / 180.0, cosA = std::cos(a), sinA = std::sin(a);
    const double k = (1.0 - cosA) / 3.0, s = std::sqrt(1.0 / 3.0) * sinA;
    return {c[0] * (cosA + k) + c[1] * (k - s) + c[2] * (k + s),
            c[0] * (k + s) + c[1] * (cosA + k) + c[2] * (k - s),
            c[0] * (k - s) + c[1] * (k + s) + c[2] * (cosA + k)};
}

Rgb grade(const Look& look, Rgb c) {
    if (look.exposure != 0) {
        const double gain = std::pow(2.0, look.exposure);
        for (double& v : c)
            v = look.exposure > 0 ? 1.0 - std::pow(1.0 - std::min(v, 1.0), gain) : v * gain;
    }
    for (int i = 0; i < 3; ++i)
        c[i] = std::pow(std::clamp(c[i], 0.0, 1.0), look.gamma[i]);
    c[0] += look.temperature * 0.5 + look.tint * 0.15;
    c[1] -= look.tint * 0.4;
    c[2] -= look.temperature * 0.5 - look.tint * 0.15;
    if (look.contrast != 0) {
        for (double& v : c) {
            v = std::clamp(v, 0.0, 1.0);
            const double s = v * v * (3.0 - 2.0 * v); // smoothstep: the S-curve at full strength
            v = look.contrast > 0 ? v + (s - v) * look.contrast * 1.6 : v + (v - s) * -look.contrast;
        }
    }
    if (look.hue != 0)
        c = rotateHue(c, look.hue);
    const double y = luma(c);
    double saturation = look.saturation;
    if (look.vibrance != 0) {
        const double maxC = std::max({c[0], c[1], c[2]}), minC = std::min({c[0], c[1], c[2]});
        saturation *= 1.0 + look.vibrance * (1.0 - std::clamp((maxC - minC) * 1.5, 0.0, 1.0));
    }
    saturation *= 1.0 - look.mono;
    for (double& v : c)
        v = y + (v - y) * saturation;
    const double yt = std::clamp(luma(c), 0.0, 1.0);
    const double shadowWeight = look.shadowAmount * (1.0 - yt) * (1.0 - yt);
    const double highlightWeight = look.highlightAmount * yt * yt;
    for (int i = 0; i < 3; ++i) {
        c[i] += (look.shadowTone[i] - 0.5) * shadowWeight;
        c[i] += (look.highlightTone[i] - 0.5) * highlightWeight;
    }
    for (double& v : c)
        v = look.fade + std::clamp(v, 0.0, 1.0) * (1.0 - look.fade - look.crush);
    return c;
}

Look make(std::initializer_list<std::function<void(Look&)>> steps) {
    Look look;
    for (const auto& step : steps)
        step(look);
    return look;
}

const Rgb teal{0.1, 0.6, 0.7}, orange{1.0, 0.62, 0.3}, amber{0.9, 0.6, 0.25}, rose{1.0, 0.55, 0.6},
    violet{0.35, 0.2, 0.75}, gold{1.0, 0.8, 0.35}, navy{0.15, 0.25, 0.6}, brown{0.6, 0.4, 0.25},
    mint{0.4, 0.8, 0.6}, magenta{0.85, 0.3, 0.8}, cyan{0.2, 0.8, 0.9}, peach{1.0, 0.7, 0.55};

// In the order of the filter table. Names suggest the mood; each differs clearly from its neighbours.
const std::array<Look, 35>& looks() {
    static const std::array<Look, 35> table{
        make({[](Look& l) {
            l.temperature = 0.06;
            l.fade = 0.05;
            l.saturation = 1.1;
            l.contrast = 0.1;
        }}), // Ava
        make({[](Look& l) {
            l.shadowTone = teal;
            l.shadowAmount = 0.35;
            l.highlightTone = gold;
            l.highlightAmount = 0.12;
            l.saturation = 0.95;
        }}), // Basin
        make({[](Look& l) {
            l.exposure = 0.25;
            l.temperature = 0.08;
            l.highlightTone = gold;
            l.highlightAmount = 0.25;
            l.saturation = 0.9;
        }}), // Blonde
        make({[](Look& l) {
            l.temperature = -0.14;
            l.saturation = 0.9;
            l.contrast = 0.05;
        }}), // Bluesh
        make({[](Look& l) {
            l.exposure = -0.15;
            l.temperature = 0.14;
            l.contrast = 0.3;
            l.saturation = 1.1;
            l.crush = 0.05;
        }}), // Bourbon
        make({[](Look& l) {
            l.exposure = 0.45;
            l.saturation = 1.05;
        }}), // Bright
        make({[](Look& l) {
            l.saturation = 0.75;
            l.temperature = 0.08;
            l.fade = 0.07;
            l.hue = -6;
            l.highlightTone = peach;
            l.highlightAmount = 0.2;
        }}), // Butte
        make({[](Look& l) {
            l.gamma = {0.8, 0.95, 1.35};
            l.contrast = 0.3;
            l.saturation = 1.2;
        }}), // Chemical
        make({[](Look& l) {
            l.contrast = 0.2;
            l.fade = 0.04;
            l.saturation = 0.85;
            l.temperature = 0.03;
        }}), // Classic
        make({[](Look& l) {
            l.saturation = 0.55;
            l.temperature = 0.05;
            l.contrast = 0.12;
            l.shadowTone = brown;
            l.shadowAmount = 0.3;
        }}), // Clayton
        make({[](Look& l) {
            l.mono = 1;
            l.contrast = 0.25;
            l.shadowTone = navy;
            l.shadowAmount = 0.35;
        }}), // Clouseau
        make({[](Look& l) {
            l.exposure = 0.2;
            l.fade = 0.14;
            l.saturation = 0.75;
            l.tint = 0.03;
            l.temperature = -0.03;
        }}), // Contrail
        make({[](Look& l) {
            l.temperature = -0.08;
            l.tint = -0.03;
            l.contrast = 0.08;
            l.shadowTone = cyan;
            l.shadowAmount = 0.15;
        }}), // Cool
        make({[](Look& l) {
            l.exposure = -0.55;
            l.contrast = 0.1;
        }}), // Darker
        make({[](Look& l) {
            l.mono = 1;
            l.exposure = -0.25;
            l.fade = 0.1;
            l.crush = 0.08;
        }}), // Darkgrey
        make({[](Look& l) {
            l.mono = 1;
            l.contrast = 0.2;
            l.shadowTone = violet;
            l.shadowAmount = 0.9;
            l.highlightTone = orange;
            l.highlightAmount = 0.7;
        }}), // Duetone
        make({[](Look& l) {
            l.exposure = 0.8;
            l.contrast = -0.1;
        }}), // Exposure
        make({[](Look& l) {
            l.fade = 0.2;
            l.saturation = 0.7;
            l.contrast = -0.15;
            l.crush = 0.05;
        }}), // Faded
        make({[](Look& l) {
            l.gamma = {1.0, 0.93, 1.18};
            l.fade = 0.08;
            l.saturation = 0.85;
            l.temperature = 0.03;
        }}), // Folger
        make({[](Look& l) {
            l.shadowTone = teal;
            l.shadowAmount = 0.5;
            l.highlightTone = orange;
            l.highlightAmount = 0.35;
            l.saturation = 1.15;
            l.contrast = 0.15;
        }}), // Fusion
        make({[](Look& l) {
            l.exposure = 0.15;
            l.contrast = -0.08;
            l.temperature = 0.05;
            l.tint = 0.04;
            l.highlightTone = rose;
            l.highlightAmount = 0.25;
        }}), // Glamour
        make({[](Look& l) {
            l.vibrance = 0.6;
            l.contrast = 0.18;
            l.exposure = 0.08;
        }}), // Glamup
        make({[](Look& l) {
            l.contrast = 0.4;
            l.saturation = 1.3;
            l.exposure = 0.05;
        }}), // Glossy
        make({[](Look& l) {
            l.saturation = 0.4;
            l.temperature = -0.07;
            l.exposure = 0.15;
            l.fade = 0.07;
        }}), // Howlite
        make({[](Look& l) {
            l.tint = 0.09;
            l.temperature = 0.04;
            l.contrast = 0.15;
        }}), // Lenox
        make({[](Look& l) {
            l.exposure = 0.2;
            l.fade = 0.04;
        }}), // Light
        make({[](Look& l) {
            l.exposure = 0.35;
            l.fade = 0.1;
            l.saturation = 0.85;
            l.temperature = -0.02;
        }}), // Lighter
        make({[](Look& l) {
            l.mono = 1;
            l.contrast = 0.7;
        }}), // Liner
        make({[](Look& l) {
            l.tint = -0.09;
            l.saturation = 1.1;
            l.hue = 8;
            l.highlightTone = mint;
            l.highlightAmount = 0.15;
        }}), // Lucky
        make({[](Look& l) {
            l.contrast = -0.3;
            l.saturation = 1.15;
            l.gamma = {0.9, 0.9, 0.9};
        }}), // Midtone
        make({[](Look& l) {
            l.saturation = 1.6;
            l.contrast = 0.3;
            l.hue = 18;
            l.shadowTone = magenta;
            l.shadowAmount = 0.4;
            l.highlightTone = cyan;
            l.highlightAmount = 0.25;
        }}), // Neon
        make({[](Look& l) {
            l.exposure = -0.6;
            l.temperature = -0.2;
            l.saturation = 0.55;
            l.contrast = 0.15;
        }}), // Night
        make({[](Look& l) {
            l.temperature = 0.05;
            l.tint = 0.02;
            l.exposure = 0.12;
            l.contrast = -0.05;
            l.highlightTone = peach;
            l.highlightAmount = 0.2;
        }}), // Selfie
        make({[](Look& l) {
            l.exposure = 0.1;
            l.contrast = 0.28;
            l.saturation = 1.15;
            l.highlightTone = gold;
            l.highlightAmount = 0.15;
            l.crush = -0.0;
        }}), // Shiny
        make({[](Look& l) {
            l.hue = -28;
            l.saturation = 1.2;
            l.contrast = 0.1;
        }}), // Variance
    };
    return table;
}

std::uint8_t toByte(double v) {
    return std::uint8_t(std::lround(std::clamp(v, 0.0, 1.0) * 255.0));
}

// x is red and y green inside a tile; the tile number, row by row, is blue.
QImage cubePicture(const std::function<Rgb(const Rgb&)>& map) {
    constexpr int n = AssetNames::lookupDimension, tiles = 8;
    QImage image(n * tiles, n * tiles, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const int g = y % n, tileRow = y / n;
        for (int x = 0; x < image.width(); ++x) {
            const int r = x % n, b = tileRow * tiles + x / n;
            const Rgb out = map({r / double(n - 1), g / double(n - 1), b / double(n - 1)});
            line[x] = qRgb(toByte(out[0]), toByte(out[1]), toByte(out[2]));
        }
    }
    return image;
}

QImage applyLook(const Look& look, const QImage& photo) {
    QImage out = photo.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < out.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            const Rgb c =
                grade(look, {qRed(line[x]) / 255.0, qGreen(line[x]) / 255.0, qBlue(line[x]) / 255.0});
            line[x] = qRgb(toByte(c[0]), toByte(c[1]), toByte(c[2]));
        }
    }
    return out;
}

} // namespace

JobList lookupJobs() {
    JobList jobs;
    const QStringList lookups = AssetNames::filterLookups();
    const QStringList thumbnails = AssetNames::filterThumbnails();
    for (int i = 0; i < lookups.size(); ++i) {
        jobs.push_back({"lookups", lookups[i] + ".png", [i](const Context&, const QString& path) {
                            return savePng(
                                cubePicture([i](const Rgb& c) { return grade(looks()[size_t(i)], c); }),
                                path);
                        }});
        // The strip button is 74 × 99 points; three pixels a point keeps it sharp on dense screens.
        jobs.push_back(
            {"lookups", thumbnails[i] + ".jpg", [i](const Context& context, const QString& path) {
                 const QImage photo = fillCrop(samplePhoto(context, "home.jpg"), {222, 297}, {0.52, 0.5});
                 return saveJpeg(applyLook(looks()[size_t(i)], photo), path);
             }});
    }
    jobs.push_back(
        {"lookups", AssetNames::identityLookup() + ".png", [](const Context&, const QString& path) {
             return savePng(cubePicture([](const Rgb& c) { return c; }), path);
         }});
    return jobs;
}

} // namespace assetgen
