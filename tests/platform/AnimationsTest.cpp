#include "platform/Animations.h"
#include "support/TestSupport.h"

#include <QObject>
#include <gtest/gtest.h>

namespace {

// Turns real-time animations on for one test.
struct RealTime {
    RealTime() { Animations::setInstant(false); }
    ~RealTime() { Animations::setInstant(true); }
};

TEST(Animations, InstantSwitchCompletesSynchronouslyAtTheEnd) {
    QObject owner;
    double last = -1;
    bool done = false;
    EXPECT_EQ(Animations::animate(
                  &owner, 0.5, [&](double p) { last = p; }, [&](bool f) { done = f; }),
              nullptr);
    EXPECT_DOUBLE_EQ(last, 1.0);
    EXPECT_TRUE(done);
}

TEST(Animations, RealTimeRunsToEndAndStopsWithItsOwner) {
    RealTime realTime;
    QObject owner;
    std::vector<double> steps;
    bool done = false;
    Animations::animate(
        &owner, 0.08, [&](double p) { steps.push_back(p); }, [&](bool) { done = true; });
    EXPECT_FALSE(done);
    ASSERT_TRUE(testsupport::waitUntil([&] { return done; }, 2000));
    EXPECT_DOUBLE_EQ(steps.back(), 1.0);
    EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));

    bool orphanDone = false;
    {
        QObject shortLived;
        Animations::animate(&shortLived, 0.05, {}, [&](bool) { orphanDone = true; });
    }
    testsupport::spin(120);
    EXPECT_FALSE(orphanDone);
}

TEST(Animations, CurvesStartSlowEndSlowOrBoth) {
    EXPECT_DOUBLE_EQ(Animations::curveValue(AnimationCurve::linear, 0.3), 0.3);
    EXPECT_DOUBLE_EQ(Animations::curveValue(AnimationCurve::easeIn, 0.5), 0.25);
    EXPECT_DOUBLE_EQ(Animations::curveValue(AnimationCurve::easeOut, 0.5), 0.75);
    EXPECT_DOUBLE_EQ(Animations::curveValue(AnimationCurve::easeInOut, 0.25), 0.125);
    EXPECT_DOUBLE_EQ(Animations::curveValue(AnimationCurve::easeInOut, 0.75), 0.875);
    // Progress outside 0…1 is held at the ends.
    EXPECT_DOUBLE_EQ(Animations::curveValue(AnimationCurve::easeOut, 1.5), 1.0);
    EXPECT_DOUBLE_EQ(Animations::curveValue(AnimationCurve::easeIn, -0.5), 0.0);
}

TEST(Animations, SpringOvershootsOnlyWhenUnderdampedAndSettles) {
    double peakSoft = 0.0;
    double peakStiff = 0.0;
    for (int i = 0; i <= 100; ++i) {
        const double t = i / 100.0;
        peakSoft = std::max(peakSoft, Animations::springValue(t, 1.0, 0.5, 0.0));
        peakStiff = std::max(peakStiff, Animations::springValue(t, 1.0, 1.0, 0.0));
    }
    EXPECT_GT(peakSoft, 1.01);
    EXPECT_LE(peakStiff, 1.0 + 1e-9);
    EXPECT_DOUBLE_EQ(Animations::springValue(0.0, 1.0, 0.7, 0.5), 0.0);
    EXPECT_DOUBLE_EQ(Animations::springValue(1.0, 1.0, 0.7, 0.5), 1.0);
    EXPECT_NEAR(Animations::springValue(0.999, 1.0, 0.7, 0.5), 1.0, 0.01);
    // An initial push makes the early motion faster.
    EXPECT_GT(Animations::springValue(0.05, 1.0, 0.7, 5.0), Animations::springValue(0.05, 1.0, 0.7, 0.0));
}

} // namespace
