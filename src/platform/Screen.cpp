#include "platform/Screen.h"

#include <cmath>

namespace {

bool usable(double value) {
    return std::isfinite(value) && value > 0;
}

// A desktop reports a device pixel ratio of 1; the phone's scale keeps flattened pictures at the
// resolution people expect from it.
double initialScale() {
    bool ok = false;
    const double fromEnvironment = qEnvironmentVariable("LUMIVEX_SCREEN_SCALE").trimmed().toDouble(&ok);
    return ok && usable(fromEnvironment) ? fromEnvironment : Screen::kDefaultScale;
}

} // namespace

Screen::Screen() : size_(kDefaultWidth, kDefaultHeight), scale_(initialScale()) {}

Screen& Screen::main() {
    static Screen instance;
    return instance;
}

QSizeF Screen::size() const {
    std::lock_guard lock(mutex_);
    return size_;
}

double Screen::scale() const {
    std::lock_guard lock(mutex_);
    return scale_;
}

void Screen::setSize(const QSizeF& size) {
    if (!usable(size.width()) || !usable(size.height()))
        return;
    {
        std::lock_guard lock(mutex_);
        if (size_ == size)
            return;
        size_ = size;
    }
    emit changed();
}

void Screen::setScale(double scale) {
    if (!usable(scale))
        return;
    {
        std::lock_guard lock(mutex_);
        if (scale_ == scale)
            return;
        scale_ = scale;
    }
    emit changed();
}
