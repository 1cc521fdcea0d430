// The swap itself, on real photos and on every generated template: where the face lands, what changes
// and what must not.

#include "FaceSwap.h"
#include "FaceSwapTestSupport.h"
#include "FaceWarp.h"

#include <gtest/gtest.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

using namespace lumivex::faceswap;
using namespace faceswaptest;

namespace {

const FaceSwapper& swapper() {
    static const FaceSwapper instance;
    return instance;
}

struct Landing {
    double meanError = 0;    // mean distance of the 68 points, in face widths
    double worstFeature = 0; // the farthest of the eye and mouth centres, in face widths
};

Landing compareLandmarks(const Face& expected, const Face& found) {
    const double width = expected.width();
    Landing landing;
    for (int i = 0; i < kLandmarkCount; ++i)
        landing.meanError += cv::norm(expected.points[i] - found.points[i]) / width / kLandmarkCount;
    for (const auto& [a, b] :
         {std::pair{expected.leftEye(), found.leftEye()}, std::pair{expected.rightEye(), found.rightEye()},
          std::pair{expected.mouth(), found.mouth()}})
        landing.worstFeature = std::max(landing.worstFeature, cv::norm(a - b) / width);
    return landing;
}

// One swap through the service's own function (bytes in, JPEG out), checked three ways: the new face's
// landmarks sit on the target's, the face really changed, and nothing outside the face hull did.
void checkSwap(const std::string& sourcePath, const cv::Mat& sourceImage, const std::string& targetPath) {
    SCOPED_TRACE(sourcePath + " into " + targetPath);
    const std::string targetBytes = readBytes(targetPath);
    const SwapOutcome outcome = swapper().swapEncoded(readBytes(sourcePath), targetBytes, 0);
    ASSERT_TRUE(outcome.ok()) << outcome.reason;
    const cv::Mat target = decode(targetBytes);
    const cv::Mat result = cv::imdecode(outcome.image, cv::IMREAD_COLOR);
    ASSERT_EQ(result.size(), target.size());

    const std::vector<Face> before = swapper().detector().detect(target);
    const std::vector<Face> after = swapper().detector().detect(result);
    const std::vector<Face> source = swapper().detector().detect(sourceImage);
    ASSERT_FALSE(before.empty());
    ASSERT_FALSE(after.empty()) << "no face in the result";
    ASSERT_FALSE(source.empty());

    const Landing landing = compareLandmarks(before.front(), after.front());
    EXPECT_LT(landing.meanError, 0.05);
    EXPECT_LT(landing.worstFeature, 0.05);

    // Inside the hull (clear of the feathered rim) the result carries the source's face: it is nearer the
    // source warped onto the target's landmarks, in the target's colours, than the template it replaced.
    const Landmarks& to = before.front().points;
    const cv::Rect whole(0, 0, target.cols, target.rows);
    cv::Mat warped = warpFaceInto(sourceImage, source.front().points, to, delaunayTriangles(to), whole);
    const int rim = std::max(3, int(before.front().width() / 12));
    const cv::Mat inside = hullMask(to, target.size(), rim);
    matchColours(warped, target, hullMask(to, target.size(), 0));
    const double toSource = meanDifference(result, warped, inside);
    const double toTarget = meanDifference(result, target, inside);
    EXPECT_LT(toSource, toTarget);

    // Outside the hull only JPEG re-encoding noise.
    cv::Mat outside;
    cv::bitwise_not(hullMask(to, target.size(), 0), outside);
    EXPECT_LT(meanDifference(result, target, outside), 1.5);
}

} // namespace

TEST(FaceSwapQuality, RealFacesLandOnTheTargetsLandmarksAndChangeNothingElse) {
    for (const std::string& face : realFacePhotos()) {
        const cv::Mat image = loadImage(face);
        ASSERT_FALSE(image.empty()) << face;
        // A light and a dark template of each kind, and a real photo of a person as target.
        for (const std::string& target :
             {templatePath(true, 1), templatePath(true, 3), templatePath(false, 29),
              realFacePhotos()[face == realFacePhotos()[0] ? 1 : 0]})
            checkSwap(face, image, target);
    }
}

// A face turned in the picture's plane and mirrored (looking the other way) still lands on the target's eyes
// and mouth: the warp follows the landmarks, not the picture's axes.
TEST(FaceSwapQuality, TiltedAndMirroredFacesStillLandOnEyesAndMouth) {
    const cv::Mat astronaut = loadImage(realFacePhotos()[1]);
    ASSERT_FALSE(astronaut.empty());
    cv::Mat tilted, mirrored;
    const cv::Mat turn =
        cv::getRotationMatrix2D(cv::Point2f(astronaut.cols / 2.f, astronaut.rows / 2.f), 18, 1.0);
    cv::warpAffine(astronaut, tilted, turn, astronaut.size(), cv::INTER_LINEAR, cv::BORDER_REFLECT);
    cv::flip(astronaut, mirrored, 1);
    const cv::Mat target = loadImage(templatePath(false, 12));
    ASSERT_FALSE(target.empty());
    const std::vector<Face> expected = swapper().detector().detect(target);
    ASSERT_FALSE(expected.empty());
    for (const cv::Mat& source : {tilted, mirrored}) {
        std::string reason;
        const cv::Mat result = swapper().swap(source, target, 0, &reason);
        ASSERT_FALSE(result.empty()) << reason;
        const std::vector<Face> found = swapper().detector().detect(result);
        ASSERT_FALSE(found.empty());
        EXPECT_LT(compareLandmarks(expected.front(), found.front()).worstFeature, 0.05);
    }
}

// Every template the app offers, across all the skin tones they are drawn in, takes each real face. The faces
// are found once and each template once, so eighty templates stay quick.
class EveryTemplate : public ::testing::TestWithParam<bool> {};

TEST_P(EveryTemplate, TakesEachRealFace) {
    std::vector<std::pair<cv::Mat, Face>> faces;
    for (const std::string& path : realFacePhotos()) {
        const cv::Mat image = loadImage(path);
        const std::vector<Face> found = swapper().detector().detect(image);
        ASSERT_EQ(found.size(), 1u) << path << ": one face, no false detections";
        faces.emplace_back(image, found.front());
    }
    for (int number = 1; number <= 40; ++number) {
        const std::string path = templatePath(GetParam(), number);
        const cv::Mat target = loadImage(path);
        ASSERT_FALSE(target.empty()) << path;
        const std::vector<Face> targetFaces = swapper().detector().detect(target);
        ASSERT_EQ(targetFaces.size(), 1u) << path;
        const cv::Mat inside = hullMask(targetFaces.front().points, target.size(), 4);
        cv::Mat outside;
        cv::bitwise_not(hullMask(targetFaces.front().points, target.size(), 0), outside);
        for (const auto& [image, face] : faces) {
            std::string reason;
            const cv::Mat result = swapper().swapFaces(image, face, target, targetFaces, 0, &reason);
            ASSERT_FALSE(result.empty()) << path << ": " << reason;
            EXPECT_GT(meanDifference(result, target, inside), 4.0) << path;
            EXPECT_EQ(meanDifference(result, target, outside), 0.0) << path;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Templates, EveryTemplate, ::testing::Values(true, false),
                         [](const auto& info) { return std::string(info.param ? "Male" : "Female"); });
