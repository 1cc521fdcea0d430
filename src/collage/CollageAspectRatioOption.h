#pragma once

#include "collage/CollageCases.h"

#include <QString>
#include <optional>

// The canvas shapes offered in the ratio panel, in panel order.
enum class CollageAspectRatioOption : int {
    original,
    portrait3x4,
    landscape4x3,
    facebookEvent,
    facebookPost,
    facebook2x1,
    youtube,
    instagramStory,
    twitter2x1,
    twitterHeader,
    linkedin,
    pinterest,
    youtubeCover,
    a4,
    a5,
    portrait1x2,
    landscape5x4,
};

template <> std::span<const CollageAspectRatioOption> allCases<CollageAspectRatioOption>();

inline constexpr int collageAspectRatioOptionCount = 17;

// Short label of the cell. Not unique: two cases read "2:1" and only their badges tell them apart.
QString displayName(CollageAspectRatioOption option);

// Width over height. Empty for `original`, which the editor shows as a square.
std::optional<double> ratio(CollageAspectRatioOption option);

// Symbol name of the brand the shape is made for, if any.
std::optional<QString> brandIconName(CollageAspectRatioOption option);
