#include "platform/DeviceColor.h"

#include <QFile>
#include <QPainter>
#include <algorithm>
#include <lcms2.h>
#include <memory>

namespace {

struct ProfileCloser {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct TransformDeleter {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;
using Transform = std::unique_ptr<void, TransformDeleter>;

// The picture composited onto an opaque ground, as 32-bit BGRX.
QImage flattened(const QImage& upright, const QColor& ground) {
    QImage out(upright.size(), QImage::Format_RGB32);
    if (out.isNull())
        return out;
    out.fill(ground);
    QPainter painter(&out);
    painter.drawImage(0, 0, upright);
    return out;
}

Profile openCmykProfile(const QString& path) {
    if (path.isEmpty())
        return nullptr;
    QFile file(path);
    // Profiles are small; a large file here is not one.
    if (!file.open(QIODevice::ReadOnly) || file.size() > 64 * 1024 * 1024)
        return nullptr;
    const QByteArray bytes = file.readAll();
    Profile profile(cmsOpenProfileFromMem(bytes.constData(), static_cast<cmsUInt32Number>(bytes.size())));
    if (!profile || cmsGetColorSpace(profile.get()) != cmsSigCmykData ||
        cmsGetDeviceClass(profile.get()) != cmsSigOutputClass)
        return nullptr;
    return profile;
}

QString profileDescription(void* profile) {
    char text[256] = {};
    cmsGetProfileInfoASCII(profile, cmsInfoDescription, "en", "US", text, sizeof text);
    return QString::fromLatin1(text).trimmed();
}

} // namespace

namespace DeviceColor {

QString cmykProfilePath() {
    QStringList candidates;
    const QString fromEnv = qEnvironmentVariable("LUMIVEX_CMYK_PROFILE");
    if (!fromEnv.isEmpty())
        candidates << fromEnv;
    candidates << QStringLiteral("/usr/share/color/icc/colord/FOGRA39L_coated.icc")
               << QStringLiteral("/usr/share/color/icc/colord/SWOP_TR005_coated.icc")
               << QStringLiteral("/usr/share/color/icc/ghostscript/default_cmyk.icc")
               << QStringLiteral("/usr/share/color/icc/ghostscript/ps_cmyk.icc");
    for (const QString& path : candidates)
        if (openCmykProfile(path))
            return path;
    return {};
}

void formulaCmyk(int r, int g, int b, unsigned char cmyk[4]) {
    const int k = 255 - std::max({r, g, b});
    if (k == 255) {
        cmyk[0] = cmyk[1] = cmyk[2] = 0;
        cmyk[3] = 255;
        return;
    }
    const int rest = 255 - k;
    cmyk[0] = static_cast<unsigned char>((rest - r) * 255 / rest);
    cmyk[1] = static_cast<unsigned char>((rest - g) * 255 / rest);
    cmyk[2] = static_cast<unsigned char>((rest - b) * 255 / rest);
    cmyk[3] = static_cast<unsigned char>(k);
}

std::optional<Converted> toDeviceRGB(const QImage& upright, const QColor& ground) {
    const QImage flat = flattened(upright, ground);
    if (flat.isNull())
        return std::nullopt;
    Converted out;
    out.raster.size = flat.size();
    out.raster.space = PdfRaster::Space::deviceRGB;
    out.raster.samples.resize(qsizetype(flat.width()) * flat.height() * 3);
    auto* dst = reinterpret_cast<unsigned char*>(out.raster.samples.data());
    for (int y = 0; y < flat.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(flat.constScanLine(y));
        for (int x = 0; x < flat.width(); ++x) {
            *dst++ = static_cast<unsigned char>(qRed(row[x]));
            *dst++ = static_cast<unsigned char>(qGreen(row[x]));
            *dst++ = static_cast<unsigned char>(qBlue(row[x]));
        }
    }
    out.shown = flat;
    if (Profile srgb{cmsCreate_sRGBProfile()}) {
        cmsUInt32Number size = 0;
        if (cmsSaveProfileToMem(srgb.get(), nullptr, &size) && size > 0) {
            out.profile.resize(static_cast<qsizetype>(size));
            cmsSaveProfileToMem(srgb.get(), out.profile.data(), &size);
            out.profileName = QStringLiteral("sRGB IEC61966-2.1");
        }
    }
    return out;
}

std::optional<Converted> toDeviceCMYK(const QImage& upright, const QString& profilePath) {
    const QImage flat = flattened(upright, Qt::white);
    if (flat.isNull())
        return std::nullopt;
    Converted out;
    out.raster.size = flat.size();
    out.raster.space = PdfRaster::Space::deviceCMYK;
    out.raster.samples.resize(qsizetype(flat.width()) * flat.height() * 4);
    out.shown = QImage(flat.size(), QImage::Format_RGB32);
    if (out.shown.isNull())
        return std::nullopt;
    auto* cmyk = reinterpret_cast<unsigned char*>(out.raster.samples.data());
    const qsizetype rowBytes = qsizetype(flat.width()) * 4;

    Profile printer = openCmykProfile(profilePath.isEmpty() ? cmykProfilePath() : profilePath);
    Profile srgb(printer ? cmsCreate_sRGBProfile() : nullptr);
    Transform forward, back;
    if (printer && srgb) {
        forward.reset(cmsCreateTransform(srgb.get(), TYPE_BGRA_8, printer.get(), TYPE_CMYK_8,
                                         INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE));
        back.reset(cmsCreateTransform(printer.get(), TYPE_CMYK_8, srgb.get(), TYPE_BGRA_8,
                                      INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOCACHE));
    }
    if (forward && back) {
        out.shown.fill(Qt::black); // sets the unused fourth byte that the transform leaves alone
        for (int y = 0; y < flat.height(); ++y) {
            cmsDoTransform(forward.get(), flat.constScanLine(y), cmyk + y * rowBytes,
                           static_cast<cmsUInt32Number>(flat.width()));
            cmsDoTransform(back.get(), cmyk + y * rowBytes, out.shown.scanLine(y),
                           static_cast<cmsUInt32Number>(flat.width()));
        }
        cmsUInt32Number size = 0;
        if (cmsSaveProfileToMem(printer.get(), nullptr, &size) && size > 0) {
            out.profile.resize(static_cast<qsizetype>(size));
            cmsSaveProfileToMem(printer.get(), out.profile.data(), &size);
        }
        out.profileName = profileDescription(printer.get());
        return out;
    }
    for (int y = 0; y < flat.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(flat.constScanLine(y));
        auto* shown = reinterpret_cast<QRgb*>(out.shown.scanLine(y));
        unsigned char* px = cmyk + y * rowBytes;
        for (int x = 0; x < flat.width(); ++x, px += 4) {
            formulaCmyk(qRed(row[x]), qGreen(row[x]), qBlue(row[x]), px);
            const int k = 255 - px[3];
            shown[x] = qRgb((255 - px[0]) * k / 255, (255 - px[1]) * k / 255, (255 - px[2]) * k / 255);
        }
    }
    return out;
}

} // namespace DeviceColor
