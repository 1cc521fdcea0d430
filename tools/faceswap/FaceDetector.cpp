#include "FaceDetector.h"

#include <dlib/image_processing.h>
#include <dlib/image_processing/frontal_face_detector.h>
#include <dlib/opencv/cv_image.h>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <map>
#include <mutex>

namespace lumivex::faceswap {

namespace {

// Detection runs on a copy whose longer side is this long. The HOG window is 80 pixels, so a smaller
// picture (a 480 × 600 template, a phone thumbnail) is scaled up to it and a larger one down.
constexpr double kDetectionEdge = 1000.0;

std::shared_ptr<const dlib::shape_predictor> loadModel(const std::string& path) {
    static std::mutex mutex;
    static std::map<std::string, std::shared_ptr<const dlib::shape_predictor>> loaded;
    std::lock_guard lock(mutex);
    auto& slot = loaded[path];
    if (!slot) {
        try {
            auto model = std::make_shared<dlib::shape_predictor>();
            dlib::deserialize(path) >> *model;
            slot = std::move(model);
        } catch (const std::exception&) {
            return nullptr; // a missing or damaged file; tried again by the next detector
        }
    }
    return slot;
}

cv::Point2f centre(const Landmarks& points, int from, int to) {
    cv::Point2f sum(0, 0);
    for (int i = from; i <= to; ++i)
        sum += points[i];
    return sum * (1.0f / float(to - from + 1));
}

} // namespace

cv::Point2f Face::leftEye() const {
    return centre(points, 36, 41);
}

cv::Point2f Face::rightEye() const {
    return centre(points, 42, 47);
}

cv::Point2f Face::mouth() const {
    return centre(points, 48, 59);
}

float Face::width() const {
    return float(cv::norm(points[16] - points[0]));
}

struct FaceDetector::Impl {
    dlib::frontal_face_detector hog = dlib::get_frontal_face_detector();
    std::shared_ptr<const dlib::shape_predictor> model;
};

FaceDetector::FaceDetector(const std::string& modelPath) : impl_(std::make_unique<Impl>()) {
    impl_->model = loadModel(modelPath);
}

FaceDetector::~FaceDetector() = default;
FaceDetector::FaceDetector(FaceDetector&&) noexcept = default;
FaceDetector& FaceDetector::operator=(FaceDetector&&) noexcept = default;

bool FaceDetector::isReady() const {
    return impl_ && impl_->model;
}

std::vector<Face> FaceDetector::detect(const cv::Mat& bgr) const {
    std::vector<Face> faces;
    if (!isReady() || bgr.empty())
        return faces;
    cv::Mat gray;
    cv::cvtColor(bgr, gray, bgr.channels() == 4 ? cv::COLOR_BGRA2GRAY : cv::COLOR_BGR2GRAY);
    const double scale = kDetectionEdge / std::max(gray.cols, gray.rows);
    cv::Mat work;
    cv::resize(gray, work, cv::Size(), scale, scale, scale < 1 ? cv::INTER_AREA : cv::INTER_LINEAR);

    const dlib::cv_image<unsigned char> image(work);
    std::vector<dlib::rect_detection> found;
    impl_->hog(image, found, 0.0);
    for (const dlib::rect_detection& d : found) {
        const dlib::full_object_detection shape = (*impl_->model)(image, d.rect);
        if (shape.num_parts() != kLandmarkCount)
            continue;
        Face face;
        face.score = d.detection_confidence;
        const double inv = 1.0 / scale;
        face.box = cv::Rect(cvRound(d.rect.left() * inv), cvRound(d.rect.top() * inv),
                            cvRound(d.rect.width() * inv), cvRound(d.rect.height() * inv)) &
                   cv::Rect(0, 0, bgr.cols, bgr.rows);
        for (int i = 0; i < kLandmarkCount; ++i) {
            const dlib::point p = shape.part(unsigned(i));
            // dlib's points are pixel indices; +0.5 keeps the centre of the pixel through the rescale.
            face.points[i] = cv::Point2f(float((p.x() + 0.5) * inv - 0.5), float((p.y() + 0.5) * inv - 0.5));
        }
        faces.push_back(face);
    }
    std::stable_sort(faces.begin(), faces.end(),
                     [](const Face& a, const Face& b) { return a.box.area() > b.box.area(); });
    return faces;
}

} // namespace lumivex::faceswap
