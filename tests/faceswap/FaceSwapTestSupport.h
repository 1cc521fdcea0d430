#pragma once

// Photos and pictures the face swap tests share: the real face photos, the generated templates, and
// small measures on pictures.

#include "FaceDetector.h"
#include "SwapServer.h"

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace faceswaptest {

std::string readBytes(const std::string& path);
cv::Mat decode(const std::string& bytes);
std::string sample(const std::string& name);     // bytes of a bundled sample photo
std::vector<std::string> realFacePhotos();       // paths: messi5.jpg, astronaut.png
std::string templatePath(bool male, int number); // number from 1 to 40
cv::Mat loadImage(const std::string& path);

// Mean absolute difference over the mask, averaged over the three channels, in levels.
double meanDifference(const cv::Mat& a, const cv::Mat& b, const cv::Mat& mask);

// The region of a face's landmarks' hull in a picture of `size`, shrunk by `inset` pixels.
cv::Mat hullMask(const lumivex::faceswap::Landmarks& points, cv::Size size, int inset);

// A service on a free loopback port whose log lines are kept for the test to read.
class ServiceFixture : public ::testing::Test {
protected:
    std::mutex logMutex;
    std::vector<std::string> logLines;
    std::unique_ptr<lumivex::faceswap::SwapServer> server;

    void startServer(lumivex::faceswap::ServerOptions options = {}) {
        options.port = 0;
        options.log = [this](const std::string& line) {
            std::lock_guard lock(logMutex);
            logLines.push_back(line);
        };
        server = std::make_unique<lumivex::faceswap::SwapServer>(std::move(options));
        ASSERT_TRUE(server->bind());
        server->start();
    }
};

} // namespace faceswaptest
