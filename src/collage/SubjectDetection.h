#pragma once

#include "platform/Image.h"

#include <QRectF>
#include <optional>

// Where a photo's subject is: the largest person, or when there is none the largest face; as a
// normalised box with the origin at the bottom left of the upright photo. Nothing when neither is
// found or the detection fails. Runs on any thread.
namespace SubjectDetection {
std::optional<QRectF> detectSubject(const Image& photo);
}
