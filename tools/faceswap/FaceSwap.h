#pragma once

// Swaps the face of one photo into another: dlib finds the faces and their 68 landmarks, the source face is
// warped triangle by triangle onto the target's landmarks, its colour is matched in Lab and it is blended
// in by Poisson cloning under the hull of the face. Pure image work, no networking.

#include "FaceDetector.h"
#include "ImageDecode.h"

#include <opencv2/core.hpp>

#include <atomic>
#include <string>
#include <vector>

namespace lumivex::faceswap {

// The outcome of one swap: the picture (JPEG, or PNG for a PNG target, so a lossless target stays lossless
// outside the face), or an HTTP status with the reason a person can read.
struct SwapOutcome {
    std::vector<unsigned char> image;
    std::string contentType = "image/jpeg";
    int status = 200;
    std::string reason;
    bool ok() const { return status == 200; }
};

inline constexpr const char* kNoSourceFace = "No face found in the source photo";
inline constexpr const char* kNoTargetFace = "No face found in the target photo";
inline constexpr const char* kAbandoned = "The service stopped before the swap finished";

struct SwapLimits {
    DecodeLimits source{200'000'000, 4'000'000, 40'000'000};  // a face needs no more than a few megapixels
    DecodeLimits target{200'000'000, 16'000'000, 40'000'000}; // the result keeps the target's size up to this
};

// Not thread-safe (the detector keeps scratch state): each worker owns its own swapper.
class FaceSwapper {
public:
    explicit FaceSwapper(const std::string& landmarkModel = kDefaultLandmarkModel, SwapLimits limits = {});

    bool isReady() const { return detector_.isReady(); }
    const FaceDetector& detector() const { return detector_; }

    // Decodes both photos within the limits, swaps, and encodes the result at the target's decoded size.
    // `cancel`, when set, is checked between the steps; a cancelled swap ends with kAbandoned.
    SwapOutcome swapEncoded(const std::string& sourceBytes, const std::string& targetBytes, int faceIndex,
                            const std::atomic<bool>* cancel = nullptr) const;

    // The swapped picture, or an empty Mat with the reason in *reason.
    cv::Mat swap(const cv::Mat& source, const cv::Mat& target, int faceIndex, std::string* reason) const;

    // The same with the faces already found (largest first in the target), for callers that reuse them.
    cv::Mat swapFaces(const cv::Mat& source, const Face& from, const cv::Mat& target,
                      const std::vector<Face>& targetFaces, int faceIndex, std::string* reason) const;

private:
    FaceDetector detector_;
    SwapLimits limits_;
};

// Warms OpenCV's lazily built colour tables once, before worker threads race to build them.
void prepareColourTables();

} // namespace lumivex::faceswap
