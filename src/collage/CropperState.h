#pragma once

#include "platform/Image.h"

#include <QRect>
#include <QString>
#include <optional>

// The shapes the crop rectangle can be held to.
enum class CropAspectRatio { free, square, portrait3x4, landscape4x3, portrait9x16, landscape16x9 };

inline constexpr CropAspectRatio allCropAspectRatios[] = {
    CropAspectRatio::free,         CropAspectRatio::square,       CropAspectRatio::portrait3x4,
    CropAspectRatio::landscape4x3, CropAspectRatio::portrait9x16, CropAspectRatio::landscape16x9,
};

QString cropAspectRatioTitle(CropAspectRatio ratio);
// Width over height; nothing for a free rectangle.
std::optional<double> cropAspectRatioValue(CropAspectRatio ratio);
// The same shape a quarter turn later: 3:4 becomes 4:3; free and square stay.
CropAspectRatio turnedCropAspectRatio(CropAspectRatio ratio);

// What the crop screen hands back: how far the picture was turned and which part of the turned
// picture to keep.
struct CropperState {
    // Clockwise quarter turns of the upright picture, 0…3.
    int rotationQuarterTurns = 0;
    // In pixels of the picture after the turn.
    QRect cropRect;
    // The shape chosen, so the screen can be opened again as it was left.
    CropAspectRatio aspectRatio = CropAspectRatio::free;

    bool operator==(const CropperState&) const = default;
};

// Size of a picture of `size` after `quarterTurns` clockwise quarter turns.
QSize rotatedSize(const QSize& size, int quarterTurns);

// The upright pixels of `image`, turned and cut to the state's rectangle (clipped to the turned
// picture), at the image's scale and upright. Null when nothing of the rectangle lies on the picture.
ImagePtr croppedImage(const Image& image, const CropperState& state);
