#pragma once

#include "platform/Color.h"
#include "platform/Image.h"

#include <QString>
#include <variant>
#include <vector>

// What the custom background is made of: a picture, one colour, or a gradient from a start colour to
// an end colour.
struct CustomBackgroundGradient {
    Color start;
    Color end;
};
using CustomBackgroundSelection = std::variant<ImagePtr, Color, CustomBackgroundGradient>;

// One row of the stock catalogue. Its pictures are the assets prefix1 … prefixN.
struct Category {
    QString title;
    QString assetPrefix;
    int itemCount = 0;

    QString assetName(int item) const { return assetPrefix + QString::number(item + 1); }
};

namespace CustomBackgrounds {

// Architecture (21), Wallpaper (30), Texture (30), in that order.
const std::vector<Category>& catalogue();

// The colour with its hue turned by `radians`; saturation, brightness and alpha kept.
Color rotatedHue(const Color& color, double radians);

// The hue filter for a picture: the same picture for an angle of exactly 0, else the hue turned with
// the picture's scale and orientation kept; the picture itself when the filter fails.
ImagePtr hueAdjusted(const ImagePtr& image, double radians);

} // namespace CustomBackgrounds
