#pragma once

#include "platform/Image.h"

#include <QImage>
#include <QRectF>
#include <optional>
#include <vector>

namespace cv {
class CascadeClassifier;
}

// One thing found in a picture. The box is normalised to 0…1 in the upright picture (orientation flag
// applied) with its origin at the bottom left, y growing upward. Confidence is 0…1, higher is surer.
struct VisionObservation {
    QRectF boundingBox;
    double confidence = 0.0;
};

// Finds people and faces in one picture. Building it makes a small upright grey copy that both requests
// share, so build it on the worker thread that runs the requests. One handler belongs to one thread;
// separate handlers may run on as many threads at once as wanted.
//
// Each request answers nothing when it could not run (an empty picture, the face model missing), and an
// empty list when it ran and found nothing.
class VisionRequestHandler {
public:
    explicit VisionRequestHandler(const Image& image);
    VisionRequestHandler(const QImage& bitmap, ImageOrientation orientation);

    // Standing people, whole body, at least about a quarter of the picture's longer side tall.
    std::optional<std::vector<VisionObservation>> detectHumanRectangles() const;

    // Frontal faces, at least about 5 % of the picture's longer side wide.
    std::optional<std::vector<VisionObservation>> detectFaceRectangles() const;

    // The face model is read from <dir>/haarcascades, where <dir> is the environment variable
    // LUMIVEX_OPENCV_DATA_DIR when set and the system's OpenCV data folder otherwise.
    static constexpr const char* dataDirVariable = "LUMIVEX_OPENCV_DATA_DIR";

private:
    QImage grey_; // upright, downscaled, Format_Grayscale8; null when the picture is empty
};

namespace Vision {

// The box with the largest area (width × height); on equal areas the earlier one. Nothing for an empty
// list.
std::optional<QRectF> largestBox(const std::vector<VisionObservation>& observations);

// This thread's copy of one of OpenCV's stock cascade models, read from the haarcascades folder of the
// data folder (see VisionRequestHandler::dataDirVariable); null when the file is missing or unreadable.
// A classifier is not safe to share between threads, and reading one takes tens of milliseconds, so
// each thread keeps the ones it has read.
cv::CascadeClassifier* stockCascade(const char* fileName);

} // namespace Vision
