#include "platform/Color.h"

#include <algorithm>
#include <cmath>

namespace {

float clampedUnit(double value) {
    if (std::isnan(value))
        return 0.0f;
    return static_cast<float>(std::clamp(value, 0.0, 1.0));
}

} // namespace

Color Color::fromHSB(double hue, double saturation, double brightness, double alpha) {
    double h = std::isfinite(hue) ? std::fmod(hue, 1.0) : 0.0;
    if (h < 0)
        h += 1.0;
    const double sector = h * 6.0;
    const int index = static_cast<int>(sector) % 6;
    const double f = sector - std::floor(sector);
    const double v = brightness;
    const double p = v * (1 - saturation);
    const double q = v * (1 - saturation * f);
    const double t = v * (1 - saturation * (1 - f));
    switch (index) {
    case 0:
        return {v, t, p, alpha};
    case 1:
        return {q, v, p, alpha};
    case 2:
        return {p, v, t, alpha};
    case 3:
        return {p, q, v, alpha};
    case 4:
        return {t, p, v, alpha};
    default:
        return {v, p, q, alpha};
    }
}

Color::HSB Color::hsb() const {
    const double maxValue = std::max({red, green, blue});
    const double minValue = std::min({red, green, blue});
    const double delta = maxValue - minValue;
    HSB out;
    out.alpha = alpha;
    out.brightness = maxValue;
    out.saturation = maxValue > 0 ? delta / maxValue : 0.0;
    if (delta <= 0)
        return out;
    double hue;
    if (maxValue == red)
        hue = (green - blue) / delta;
    else if (maxValue == green)
        hue = 2.0 + (blue - red) / delta;
    else
        hue = 4.0 + (red - green) / delta;
    hue /= 6.0;
    if (hue < 0)
        hue += 1.0;
    out.hue = hue;
    return out;
}

QColor Color::toQColor() const {
    return QColor::fromRgbF(clampedUnit(red), clampedUnit(green), clampedUnit(blue), clampedUnit(alpha));
}

Color Color::fromQColor(const QColor& color) {
    const QColor rgb = color.toRgb();
    return {rgb.redF(), rgb.greenF(), rgb.blueF(), rgb.alphaF()};
}
