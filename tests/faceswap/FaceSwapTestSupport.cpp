#include "FaceSwapTestSupport.h"

#include "FaceWarp.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <fstream>
#include <sstream>

namespace faceswaptest {

std::string readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

cv::Mat decode(const std::string& bytes) {
    if (bytes.empty())
        return {};
    return cv::imdecode(cv::Mat(1, int(bytes.size()), CV_8U, const_cast<char*>(bytes.data())),
                        cv::IMREAD_COLOR);
}

std::string sample(const std::string& name) {
    return readBytes(std::string(LUMIVEX_SAMPLES_DIR) + "/" + name);
}

std::vector<std::string> realFacePhotos() {
    return {std::string(LUMIVEX_SAMPLES_DIR) + "/messi5.jpg", LUMIVEX_ASTRONAUT_PHOTO};
}

std::string templatePath(bool male, int number) {
    return std::string(LUMIVEX_BUILD_ASSETS_DIR) + (male ? "/malethumb_" : "/femalethumb_") +
           std::to_string(number) + ".jpg";
}

cv::Mat loadImage(const std::string& path) {
    return cv::imread(path, cv::IMREAD_COLOR);
}

double meanDifference(const cv::Mat& a, const cv::Mat& b, const cv::Mat& mask) {
    cv::Mat diff;
    cv::absdiff(a, b, diff);
    const cv::Scalar m = cv::mean(diff, mask);
    return (m[0] + m[1] + m[2]) / 3.0;
}

cv::Mat hullMask(const lumivex::faceswap::Landmarks& points, cv::Size size, int inset) {
    cv::Mat mask = lumivex::faceswap::faceHullMask(points, cv::Rect(0, 0, size.width, size.height));
    if (inset > 0)
        cv::erode(mask, mask,
                  cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(2 * inset + 1, 2 * inset + 1)));
    return mask;
}

} // namespace faceswaptest
