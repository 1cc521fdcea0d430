#pragma once

#include "platform/PdfRenderer.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <optional>

// Bitmap contexts without alpha in device RGB and device CMYK: what a picture becomes when it is drawn
// into one. RGB is drawn over black (an empty context), CMYK over white paper (no ink).
//
// The CMYK conversion is colour managed with Little CMS when a CMYK output profile is installed (from
// sRGB, perceptual); without one it falls back to the plain device formula K = 1 − max(R, G, B),
// C = (1 − R − K) / (1 − K) and so on. Pure functions, safe on any thread.
namespace DeviceColor {

struct Converted {
    PdfRaster raster;
    // The converted pixels as a screen shows them (for CMYK, converted back through the same profile).
    QImage shown;
    // The profile the colours are meant for, with its description; empty for the CMYK formula.
    QByteArray profile;
    QString profileName;
};

// $LUMIVEX_CMYK_PROFILE when it names a readable CMYK profile, else the first installed one of a short
// list of standard places; empty when there is none.
QString cmykProfilePath();

// Device RGB carries the sRGB profile as the one it is meant for. `ground` is what transparent areas
// are drawn over.
std::optional<Converted> toDeviceRGB(const QImage& upright, const QColor& ground = Qt::black);
// `profilePath` empty uses cmykProfilePath(); a path that is not a CMYK profile gives the formula.
std::optional<Converted> toDeviceCMYK(const QImage& upright, const QString& profilePath = QString());

// The device formula for one colour, 0…255 in and out; exposed for its tests.
void formulaCmyk(int r, int g, int b, unsigned char cmyk[4]);

} // namespace DeviceColor
