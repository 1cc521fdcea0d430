#include "mixer/CustomBackgroundSelection.h"

#include "platform/ImageFilters.h"

#include <cmath>
#include <numbers>

namespace CustomBackgrounds {

const std::vector<Category>& catalogue() {
    static const std::vector<Category> categories{
        {QStringLiteral("Architecture"), QStringLiteral("architecture"), 21},
        {QStringLiteral("Wallpaper"), QStringLiteral("wallpaper"), 30},
        {QStringLiteral("Texture"), QStringLiteral("texture"), 30},
    };
    return categories;
}

Color rotatedHue(const Color& color, double radians) {
    const Color::HSB hsb = color.hsb();
    double hue = std::fmod(hsb.hue + radians / (2.0 * std::numbers::pi), 1.0);
    if (hue < 0)
        hue += 1.0;
    return Color::fromHSB(hue, hsb.saturation, hsb.brightness, hsb.alpha);
}

ImagePtr hueAdjusted(const ImagePtr& image, double radians) {
    if (!image || radians == 0.0)
        return image;
    // The stored pixels are turned, so the orientation flag still applies to the result.
    const QImage turned = ImageFilters::hueAdjust(image->bitmap(), radians);
    if (turned.isNull())
        return image;
    ImagePtr result = Image::make(turned, image->scale(), image->orientation());
    return result ? result : image;
}

} // namespace CustomBackgrounds
