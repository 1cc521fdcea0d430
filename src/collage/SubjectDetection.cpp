#include "collage/SubjectDetection.h"

#include "platform/Vision.h"

namespace SubjectDetection {

std::optional<QRectF> detectSubject(const Image& photo) {
    if (photo.bitmap().isNull())
        return std::nullopt;
    // Both requests share one downscaled working copy.
    const VisionRequestHandler handler(photo);
    const auto humans = handler.detectHumanRectangles();
    const auto faces = handler.detectFaceRectangles();
    if (!humans || !faces)
        return std::nullopt; // a failed request leaves the photo uncropped
    if (auto person = Vision::largestBox(*humans))
        return person;
    return Vision::largestBox(*faces);
}

} // namespace SubjectDetection
