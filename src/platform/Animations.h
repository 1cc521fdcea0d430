#pragma once

#include <QObject>
#include <functional>

class QVariantAnimation;

enum class AnimationCurve { easeInOut, easeIn, easeOut, linear };

// Time-based animation of anything: a step function receives the eased progress 0…1 and sets the
// properties it animates. A process switch makes every animation complete at once (tests).
class Animations {
public:
    using Step = std::function<void(double progress)>;
    using Completion = std::function<void(bool finished)>;

    static void setInstant(bool instant);
    static bool isInstant();

    // Runs `step` from 0 to 1 over `duration` seconds after `delay`, then `completion(true)`. The
    // animation belongs to `owner` and stops with it (the completion then does not run). Returns the
    // running animation, or null when it completed at once.
    static QVariantAnimation* animate(QObject* owner, double duration, Step step, Completion completion = {},
                                      AnimationCurve curve = AnimationCurve::easeInOut, double delay = 0.0);

    // A damped spring: `damping` is the damping ratio (1 settles without overshoot, lower values
    // oscillate) and `initialVelocity` is in whole distances per second.
    static QVariantAnimation* spring(QObject* owner, double duration, double damping, double initialVelocity,
                                     Step step, Completion completion = {}, double delay = 0.0);

    // Pure curve functions, exposed for tests and for views that sample them themselves.
    static double curveValue(AnimationCurve curve, double t);
    static double springValue(double t, double duration, double damping, double initialVelocity);

    static double interpolate(double from, double to, double progress) {
        return from + (to - from) * progress;
    }
};
