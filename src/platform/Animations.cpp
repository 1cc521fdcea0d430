#include "platform/Animations.h"

#include <QEasingCurve>
#include <QTimer>
#include <QVariantAnimation>
#include <algorithm>
#include <atomic>
#include <cmath>

namespace {

std::atomic<bool> instantAnimations{false};

QVariantAnimation* run(QObject* owner, double duration, double delay, std::function<double(double)> ease,
                       Animations::Step step, Animations::Completion completion) {
    if (Animations::isInstant() || duration <= 0.0) {
        if (step)
            step(1.0);
        if (completion)
            completion(true);
        return nullptr;
    }
    auto* animation = new QVariantAnimation(owner);
    animation->setStartValue(0.0);
    animation->setEndValue(1.0);
    animation->setDuration(static_cast<int>(std::lround(duration * 1000.0)));
    QObject::connect(animation, &QVariantAnimation::valueChanged, animation,
                     [step, ease](const QVariant& value) {
                         if (step)
                             step(ease(value.toDouble()));
                     });
    QObject::connect(animation, &QVariantAnimation::finished, animation, [completion]() {
        if (completion)
            completion(true);
    });
    if (delay > 0.0) {
        QTimer::singleShot(static_cast<int>(std::lround(delay * 1000.0)), animation,
                           [animation]() { animation->start(QAbstractAnimation::DeleteWhenStopped); });
    } else {
        animation->start(QAbstractAnimation::DeleteWhenStopped);
    }
    return animation;
}

} // namespace

void Animations::setInstant(bool instant) {
    instantAnimations = instant;
}

bool Animations::isInstant() {
    return instantAnimations;
}

double Animations::curveValue(AnimationCurve curve, double t) {
    t = std::clamp(t, 0.0, 1.0);
    switch (curve) {
    case AnimationCurve::linear:
        return t;
    case AnimationCurve::easeIn:
        return QEasingCurve(QEasingCurve::InQuad).valueForProgress(t);
    case AnimationCurve::easeOut:
        return QEasingCurve(QEasingCurve::OutQuad).valueForProgress(t);
    case AnimationCurve::easeInOut:
        return QEasingCurve(QEasingCurve::InOutQuad).valueForProgress(t);
    }
    return t;
}

double Animations::springValue(double t, double duration, double damping, double initialVelocity) {
    if (t <= 0.0)
        return 0.0;
    if (duration <= 0.0 || t >= duration)
        return 1.0;
    // The natural frequency is chosen so that the envelope has decayed to 0.1 % at the end of the
    // duration; the last frame then lands on the target without a visible jump.
    const double zeta = std::max(damping, 0.05);
    const double omega0 = std::log(1000.0) / (std::min(zeta, 1.0) * duration);
    const double v = initialVelocity;
    if (zeta < 1.0) {
        const double decay = zeta * omega0;
        const double omegaD = omega0 * std::sqrt(1.0 - zeta * zeta);
        const double b = (decay - v) / omegaD;
        return 1.0 - std::exp(-decay * t) * (std::cos(omegaD * t) + b * std::sin(omegaD * t));
    }
    return 1.0 - std::exp(-omega0 * t) * (1.0 + (omega0 - v) * t);
}

QVariantAnimation* Animations::animate(QObject* owner, double duration, Step step, Completion completion,
                                       AnimationCurve curve, double delay) {
    return run(
        owner, duration, delay, [curve](double t) { return curveValue(curve, t); }, std::move(step),
        std::move(completion));
}

QVariantAnimation* Animations::spring(QObject* owner, double duration, double damping, double initialVelocity,
                                      Step step, Completion completion, double delay) {
    return run(
        owner, duration, delay,
        [=](double t) { return springValue(t * duration, duration, damping, initialVelocity); },
        std::move(step), std::move(completion));
}
