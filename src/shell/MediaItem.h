#pragma once

#include "platform/Image.h"

#include <QString>
#include <optional>

enum class MediaType { image, video };

// One picked medium as the editors receive it.
struct MediaItem {
    std::optional<QString> url;
    MediaType type = MediaType::image;
    // The picture itself for an image; null for a video.
    ImagePtr thumbnail;
};
