#pragma once

// Faces and their 68 landmarks, by dlib: the HOG frontal detector finds the boxes, the shape predictor
// places the points (jaw 0-16, brows 17-26, nose 27-35, eyes 36-47, mouth 48-67).

#include <opencv2/core.hpp>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace lumivex::faceswap {

inline constexpr int kLandmarkCount = 68;
using Landmarks = std::array<cv::Point2f, kLandmarkCount>;

struct Face {
    cv::Rect box;                 // the detector's box, in the image's pixels
    Landmarks points{};           // in the image's pixels
    double score = 0;             // the detector's confidence; 0 is its usual threshold
    cv::Point2f leftEye() const;  // centre of points 36-41 (the eye on the picture's left)
    cv::Point2f rightEye() const; // centre of points 42-47
    cv::Point2f mouth() const;    // centre of points 48-59
    float width() const;          // jaw's outer points 0 to 16, the face width
};

// The shape model is large (about 100 MB in memory and most of a second to read), so one copy is loaded
// per process on first use and shared: predicting is const and safe from many threads.
class FaceDetector {
public:
    // Loads the model the first time a detector is made with this path; isReady() says if it worked.
    explicit FaceDetector(const std::string& modelPath);
    ~FaceDetector();
    FaceDetector(FaceDetector&&) noexcept;
    FaceDetector& operator=(FaceDetector&&) noexcept;

    bool isReady() const;

    // Faces ordered largest first, so index 0 is the most prominent one. The picture is searched on a copy
    // of about a megapixel; faces below about a tenth of its longer side are not found.
    std::vector<Face> detect(const cv::Mat& bgr) const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_; // the HOG scanner keeps scratch state: one detector per thread
};

// The default model file of Debian's libdlib-data.
inline constexpr const char* kDefaultLandmarkModel = "/usr/share/dlib/shape_predictor_68_face_landmarks.dat";

} // namespace lumivex::faceswap
