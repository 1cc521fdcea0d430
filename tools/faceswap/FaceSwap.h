#pragma once

// Swaps the face of one photo into another: Haar detection, similarity alignment on the eyes, colour transfer
// in Lab and Poisson blending under a feathered ellipse. Pure image work, no networking.

#include <opencv2/core.hpp>
#include <opencv2/objdetect.hpp>

#include <string>
#include <vector>

namespace lumivex::faceswap {

// A face box with its two eye centres (image coordinates). When the eye detector finds no credible pair the
// eyes are placed where they sit in an average frontal face box, and eyesDetected stays false.
struct Face {
    cv::Rect box;
    cv::Point2f leftEye;
    cv::Point2f rightEye;
    bool eyesDetected = false;
};

// The outcome of one swap: a JPEG, or an HTTP status with the reason a person can read.
struct SwapOutcome {
    std::vector<unsigned char> jpeg;
    int status = 200;
    std::string reason;
    bool ok() const { return status == 200; }
};

inline constexpr const char* kUnreadablePhotos = "The photos could not be read";
inline constexpr const char* kNoSourceFace = "No face found in the source photo";
inline constexpr const char* kNoTargetFace = "No face found in the target photo";

// Not thread-safe: the cascades keep scratch state, so each worker owns its own swapper.
class FaceSwapper {
public:
    explicit FaceSwapper(const std::string& cascadeDir);

    bool isReady() const { return ready_; }

    // Faces ordered largest first, so index 0 is the most prominent face.
    std::vector<Face> detectFaces(const cv::Mat& bgr);

    // Decodes both photos, swaps, and encodes the result at the target's size.
    SwapOutcome swapEncoded(const std::string& sourceBytes, const std::string& targetBytes, int faceIndex);

    // The swapped picture, or an empty Mat with the reason in *reason.
    cv::Mat swap(const cv::Mat& source, const cv::Mat& target, int faceIndex, std::string* reason);

private:
    bool ready_ = false;
    cv::CascadeClassifier faceCascade_;
    cv::CascadeClassifier eyeCascade_;

    void findEyes(const cv::Mat& gray, Face& face);
};

// Lab mean/std transfer of src towards ref, measured and applied where mask is set.
void matchColours(cv::Mat& src, const cv::Mat& ref, const cv::Mat& mask);

} // namespace lumivex::faceswap
