#include "collage/CropperState.h"

#include <QTransform>

namespace {

int normalisedTurns(int quarterTurns) {
    return ((quarterTurns % 4) + 4) % 4;
}

} // namespace

QString cropAspectRatioTitle(CropAspectRatio ratio) {
    switch (ratio) {
    case CropAspectRatio::free:
        return QStringLiteral("Free");
    case CropAspectRatio::square:
        return QStringLiteral("Square");
    case CropAspectRatio::portrait3x4:
        return QStringLiteral("3:4");
    case CropAspectRatio::landscape4x3:
        return QStringLiteral("4:3");
    case CropAspectRatio::portrait9x16:
        return QStringLiteral("9:16");
    case CropAspectRatio::landscape16x9:
        return QStringLiteral("16:9");
    }
    return {};
}

std::optional<double> cropAspectRatioValue(CropAspectRatio ratio) {
    switch (ratio) {
    case CropAspectRatio::free:
        return std::nullopt;
    case CropAspectRatio::square:
        return 1.0;
    case CropAspectRatio::portrait3x4:
        return 3.0 / 4.0;
    case CropAspectRatio::landscape4x3:
        return 4.0 / 3.0;
    case CropAspectRatio::portrait9x16:
        return 9.0 / 16.0;
    case CropAspectRatio::landscape16x9:
        return 16.0 / 9.0;
    }
    return std::nullopt;
}

CropAspectRatio turnedCropAspectRatio(CropAspectRatio ratio) {
    switch (ratio) {
    case CropAspectRatio::portrait3x4:
        return CropAspectRatio::landscape4x3;
    case CropAspectRatio::landscape4x3:
        return CropAspectRatio::portrait3x4;
    case CropAspectRatio::portrait9x16:
        return CropAspectRatio::landscape16x9;
    case CropAspectRatio::landscape16x9:
        return CropAspectRatio::portrait9x16;
    case CropAspectRatio::free:
    case CropAspectRatio::square:
        return ratio;
    }
    return ratio;
}

QSize rotatedSize(const QSize& size, int quarterTurns) {
    return normalisedTurns(quarterTurns) % 2 == 0 ? size : size.transposed();
}

ImagePtr croppedImage(const Image& image, const CropperState& state) {
    QImage upright = image.uprightBitmap();
    const int turns = normalisedTurns(state.rotationQuarterTurns);
    // Whole quarter turns move pixels without resampling.
    if (turns != 0)
        upright = upright.transformed(QTransform().rotate(90.0 * turns));
    const QRect area = state.cropRect.intersected(upright.rect());
    if (area.isEmpty())
        return nullptr;
    return Image::make(upright.copy(area), image.scale());
}
