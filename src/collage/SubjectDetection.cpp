#include "collage/SubjectDetection.h"

#include "platform/Vision.h"

namespace SubjectDetection {

std::optional<QRectF> detectSubject(const Image& photo) {
    if (photo.bitmap().isNull())
        return std::nullopt;
    // Both requests share one downscaled working copy. Faces count only where there is no person, so
    // they are looked for only then: the face pass is the dearer of the two.
    const VisionRequestHandler handler(photo);
    const auto humans = handler.detectHumanRectangles();
    if (!humans)
        return std::nullopt; // a failed request leaves the photo uncropped
    if (auto person = Vision::largestBox(*humans))
        return person;
    const auto faces = handler.detectFaceRectangles();
    if (!faces)
        return std::nullopt;
    return Vision::largestBox(*faces);
}

} // namespace SubjectDetection
