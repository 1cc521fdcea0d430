#pragma once

#include <QColor>

// A colour with double components. Components are not clamped: some colour tables hold values above 1,
// and they keep them until the colour is drawn.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    constexpr Color() = default;
    constexpr Color(double r, double g, double b, double a = 1.0) : red(r), green(g), blue(b), alpha(a) {}

    static constexpr Color rgb(double r, double g, double b, double a = 1.0) { return {r, g, b, a}; }
    // A grey of brightness `w`; without arguments, white.
    static constexpr Color white(double w = 1.0, double a = 1.0) { return {w, w, w, a}; }
    static constexpr Color black() { return {0, 0, 0, 1}; }
    static constexpr Color clear() { return {0, 0, 0, 0}; }

    // Hue, saturation and brightness as on the phone: hue in 0…1 (wrapped), all four not clamped.
    static Color fromHSB(double hue, double saturation, double brightness, double alpha = 1.0);

    struct HSB {
        double hue = 0;
        double saturation = 0;
        double brightness = 0;
        double alpha = 0;
    };
    // Hue is in 0…1 and 0 for greys.
    HSB hsb() const;

    constexpr Color withAlpha(double a) const { return {red, green, blue, a}; }

    // For drawing: components clamped to 0…1.
    QColor toQColor() const;
    static Color fromQColor(const QColor& color);

    friend constexpr bool operator==(const Color&, const Color&) = default;
};
