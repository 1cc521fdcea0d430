#pragma once

#include <QImage>
#include <QString>
#include <optional>

// Video files: frames for pictures of a video.
namespace Video {

// The frame shown at `seconds` into the video at `path`, exactly: decoding starts at the keyframe
// before that time and runs up to it. The frame is turned as the file's display matrix asks and
// stretched to square pixels. Nothing for a file without a decodable video stream or a time that
// is negative or not a number; a time past the end gives the last frame.
std::optional<QImage> frameAt(const QString& path, double seconds);

} // namespace Video
