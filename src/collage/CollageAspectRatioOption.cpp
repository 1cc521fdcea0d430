#include "collage/CollageAspectRatioOption.h"

#include <array>

namespace {

struct RatioRow {
    const char* displayName;
    std::optional<double> ratio;
    const char* brandIconName; // null when the shape belongs to no brand
};

// The quotients are computed, not rounded decimals, so 300/157 is the double nearest to it.
const RatioRow kRows[] = {
    {"Original", std::nullopt, nullptr},
    {"3:4", 0.75, nullptr},
    {"4:3", 4.0 / 3.0, nullptr},
    {"Event", 300.0 / 157.0, "f.square.fill"},
    {"Post", 1.0, "f.square.fill"},
    {"2:1", 2.0, "f.square.fill"},
    {"YouTube", 16.0 / 9.0, "play.rectangle.fill"},
    {"Story", 0.5625, "camera.aperture"},
    {"2:1", 2.0, "x.square.fill"},
    {"Header", 3.0, "x.square.fill"},
    {"Linkedin", 4.0, "l.square.fill"},
    {"Pinterest", 2.0 / 3.0, "p.square.fill"},
    {"Cover", 16.0 / 9.0, "play.rectangle.fill"},
    {"A4", 70.0 / 99.0, nullptr},
    {"A5", 74.0 / 105.0, nullptr},
    {"1:2", 0.5, nullptr},
    {"5:4", 1.25, nullptr},
};

static_assert(std::size(kRows) == collageAspectRatioOptionCount);

constexpr std::array<CollageAspectRatioOption, collageAspectRatioOptionCount> makeAllCases() {
    std::array<CollageAspectRatioOption, collageAspectRatioOptionCount> cases{};
    for (int i = 0; i < collageAspectRatioOptionCount; ++i)
        cases[i] = static_cast<CollageAspectRatioOption>(i);
    return cases;
}

constexpr auto kAllCases = makeAllCases();

const RatioRow* row(CollageAspectRatioOption option) {
    const int ordinal = static_cast<int>(option);
    return ordinal >= 0 && ordinal < collageAspectRatioOptionCount ? &kRows[ordinal] : nullptr;
}

} // namespace

template <> std::span<const CollageAspectRatioOption> allCases<CollageAspectRatioOption>() {
    return kAllCases;
}

QString displayName(CollageAspectRatioOption option) {
    const RatioRow* r = row(option);
    return r ? QString::fromLatin1(r->displayName) : QString();
}

std::optional<double> ratio(CollageAspectRatioOption option) {
    const RatioRow* r = row(option);
    return r ? r->ratio : std::nullopt;
}

std::optional<QString> brandIconName(CollageAspectRatioOption option) {
    const RatioRow* r = row(option);
    if (!r || !r->brandIconName)
        return std::nullopt;
    return QString::fromLatin1(r->brandIconName);
}
