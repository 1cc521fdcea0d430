#include "platform/Color.h"

#include <gtest/gtest.h>

namespace {

void expectNear(const Color& actual, const Color& expected, double tolerance = 1e-9) {
    EXPECT_NEAR(actual.red, expected.red, tolerance);
    EXPECT_NEAR(actual.green, expected.green, tolerance);
    EXPECT_NEAR(actual.blue, expected.blue, tolerance);
    EXPECT_NEAR(actual.alpha, expected.alpha, tolerance);
}

} // namespace

TEST(ColorTest, HsbRoundTripsPrimariesSecondariesAndGreys) {
    const std::pair<Color, Color::HSB> cases[] = {
        {Color::rgb(1, 0, 0), {0, 1, 1, 1}},
        {Color::rgb(1, 1, 0), {1.0 / 6, 1, 1, 1}},
        {Color::rgb(0, 1, 0), {2.0 / 6, 1, 1, 1}},
        {Color::rgb(0, 1, 1), {3.0 / 6, 1, 1, 1}},
        {Color::rgb(0, 0, 1), {4.0 / 6, 1, 1, 1}},
        {Color::rgb(1, 0, 1, 0.4), {5.0 / 6, 1, 1, 0.4}},
        {Color::rgb(0.5, 0.25, 0.25), {0, 0.5, 0.5, 1}},
        {Color::white(0.3), {0, 0, 0.3, 1}},
        {Color::black(), {0, 0, 0, 1}},
    };
    for (const auto& [color, expected] : cases) {
        const Color::HSB hsb = color.hsb();
        expectNear({hsb.hue, hsb.saturation, hsb.brightness, hsb.alpha},
                   {expected.hue, expected.saturation, expected.brightness, expected.alpha});
        expectNear(Color::fromHSB(hsb.hue, hsb.saturation, hsb.brightness, hsb.alpha), color);
    }
    // Hue wraps around the circle.
    expectNear(Color::fromHSB(1.25, 0.5, 0.8), Color::fromHSB(0.25, 0.5, 0.8));
    expectNear(Color::fromHSB(-0.75, 0.5, 0.8), Color::fromHSB(0.25, 0.5, 0.8));
}

TEST(ColorTest, ValuesAboveOneSurviveUntilDrawn) {
    const Color bright = Color::rgb(1.2, 0.5, -0.1, 1.5);
    EXPECT_EQ(bright.red, 1.2);
    EXPECT_EQ(bright.hsb().brightness, 1.2);
    expectNear(Color::fromHSB(0.5, 0, 1.4), Color::white(1.4));
    EXPECT_EQ(bright.toQColor().rgba(), qRgba(255, 128, 0, 255));
}

TEST(ColorTest, ConstantsEqualityAndQColor) {
    EXPECT_EQ(Color(), Color::clear());
    EXPECT_EQ(Color::white(), Color::rgb(1, 1, 1));
    EXPECT_EQ(Color::white(1, 0.5), Color::white().withAlpha(0.5));
    EXPECT_NE(Color::white(1, 0.5), Color::white());
    const Color fromQt = Color::fromQColor(QColor::fromHsv(120, 255, 255, 51));
    expectNear(fromQt, Color::rgb(0, 1, 0, 0.2), 1e-6); // Qt keeps floats
    EXPECT_EQ(fromQt.toQColor().rgba(), qRgba(0, 255, 0, 51));
}
