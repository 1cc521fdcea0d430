// The face swap service's swap function end to end (decode a 12 MP photo, find both faces and their
// landmarks, warp, match colour, blend, encode) against OpenCV's Poisson blend alone on the same region.
#include "FaceSwap.h"
#include "FaceWarp.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>

#include <fstream>
#include <sstream>

using namespace lumivex::faceswap;

namespace {

std::string fileBytes(const char* path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

// A 12 MP phone-sized photo made from the public-domain portrait, as JPEG at the app's quality.
const std::string& twelveMegapixelFace() {
    static const std::string bytes = [] {
        const cv::Mat portrait = cv::imread(LUMIVEX_BENCH_FACE_PHOTO, cv::IMREAD_COLOR);
        cv::Mat photo(3000, 4000, CV_8UC3, cv::Scalar(200, 200, 200));
        if (!portrait.empty())
            cv::resize(portrait, photo(cv::Rect(500, 0, 3000, 3000)), cv::Size(3000, 3000), 0, 0,
                       cv::INTER_CUBIC);
        std::vector<uchar> jpeg;
        cv::imencode(".jpg", photo, jpeg, {cv::IMWRITE_JPEG_QUALITY, 100});
        return std::string(jpeg.begin(), jpeg.end());
    }();
    return bytes;
}

void BM_FaceSwap(benchmark::State& state) {
    const FaceSwapper swapper;
    const std::string& source = twelveMegapixelFace();
    const std::string target = fileBytes(LUMIVEX_BENCH_TEMPLATE);
    for (auto _ : state) {
        const SwapOutcome outcome = swapper.swapEncoded(source, target, 0);
        if (!outcome.ok()) {
            state.SkipWithError(outcome.reason.c_str());
            return;
        }
        benchmark::DoNotOptimize(outcome.image.data());
    }
}
BENCHMARK(BM_FaceSwap)->Unit(benchmark::kMillisecond)->UseRealTime();

// The Poisson step alone, on the region and mask the swap blends into that template.
void BM_SeamlessCloneOpenCV(benchmark::State& state) {
    const FaceSwapper swapper;
    const cv::Mat target = cv::imread(LUMIVEX_BENCH_TEMPLATE, cv::IMREAD_COLOR);
    const std::string& sourceBytes = twelveMegapixelFace();
    const cv::Mat source =
        cv::imdecode(std::vector<uchar>(sourceBytes.begin(), sourceBytes.end()), cv::IMREAD_COLOR);
    const std::vector<Face> from = swapper.detector().detect(source), to = swapper.detector().detect(target);
    if (from.empty() || to.empty()) {
        state.SkipWithError("no face");
        return;
    }
    const cv::Rect area = faceArea(to[0].points, target.size(), 0.08);
    const cv::Mat face =
        warpFaceInto(source, from[0].points, to[0].points, delaunayTriangles(to[0].points), area);
    const cv::Mat mask = faceHullMask(to[0].points, area);
    const cv::Rect box = cv::boundingRect(mask);
    const cv::Mat destination = target(area).clone();
    cv::Mat blended;
    for (auto _ : state) {
        cv::seamlessClone(face, destination, mask, cv::Point(box.x + box.width / 2, box.y + box.height / 2),
                          blended, cv::NORMAL_CLONE);
        benchmark::DoNotOptimize(blended.data);
    }
}
BENCHMARK(BM_SeamlessCloneOpenCV)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
