#include "FaceSwap.h"

#include "FaceWarp.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <mutex>

namespace lumivex::faceswap {

namespace {

// The face region that colour is measured in and Poisson cloning runs over: the hull and a margin of this
// part of the face width, so the cloning has target pixels all round.
constexpr double kAreaMargin = 0.08;

bool cancelled(const std::atomic<bool>* cancel) {
    return cancel && cancel->load(std::memory_order_relaxed);
}

} // namespace

void prepareColourTables() {
    static std::once_flag once;
    std::call_once(once, [] {
        cv::Mat pixel(1, 1, CV_8UC3, cv::Scalar(10, 120, 200)), lab, back, f;
        cv::cvtColor(pixel, lab, cv::COLOR_BGR2Lab);
        cv::cvtColor(lab, back, cv::COLOR_Lab2BGR);
        pixel.convertTo(f, CV_32F, 1.0 / 255);
        cv::cvtColor(f, lab, cv::COLOR_BGR2Lab);
        cv::cvtColor(lab, back, cv::COLOR_Lab2BGR);
        cv::cvtColor(pixel, back, cv::COLOR_BGR2GRAY);
    });
}

FaceSwapper::FaceSwapper(const std::string& landmarkModel, SwapLimits limits)
    : detector_(landmarkModel), limits_(limits) {}

cv::Mat FaceSwapper::swapFaces(const cv::Mat& source, const Face& from, const cv::Mat& target,
                               const std::vector<Face>& targetFaces, int faceIndex,
                               std::string* reason) const {
    if (faceIndex < 0 || faceIndex >= int(targetFaces.size())) {
        *reason = "The target photo has " + std::to_string(targetFaces.size()) + " face(s); face_index " +
                  std::to_string(faceIndex) + " is out of range";
        return {};
    }
    const Face& to = targetFaces[std::size_t(faceIndex)];
    const cv::Rect area = faceArea(to.points, target.size(), kAreaMargin);
    if (area.width < 8 || area.height < 8) {
        *reason = "The face in the target photo is too small or too close to the edge to swap";
        return {};
    }
    const std::vector<Triangle> triangles = delaunayTriangles(to.points);
    cv::Mat face = warpFaceInto(source, from.points, to.points, triangles, area);
    const cv::Mat mask = faceHullMask(to.points, area);
    matchColours(face, target(area), mask);

    cv::Mat result = target.clone();
    blendFace(result, face, mask, area, std::max(3, int(to.width() / 24)));
    return result;
}

cv::Mat FaceSwapper::swap(const cv::Mat& source, const cv::Mat& target, int faceIndex,
                          std::string* reason) const {
    const std::vector<Face> sourceFaces = detector_.detect(source);
    if (sourceFaces.empty()) {
        *reason = kNoSourceFace;
        return {};
    }
    const std::vector<Face> targetFaces = detector_.detect(target);
    if (targetFaces.empty()) {
        *reason = kNoTargetFace;
        return {};
    }
    return swapFaces(source, sourceFaces.front(), target, targetFaces, faceIndex, reason);
}

SwapOutcome FaceSwapper::swapEncoded(const std::string& sourceBytes, const std::string& targetBytes,
                                     int faceIndex, const std::atomic<bool>* cancel) const {
    SwapOutcome out;
    auto fail = [&out](int status, std::string reason) {
        out.status = status;
        out.reason = std::move(reason);
        return out;
    };
    // Sizes are checked for both before either is decoded, so a refused target costs no source decoding.
    for (const auto& [bytes, limits, what] : {std::tuple{&sourceBytes, &limits_.source, "source photo"},
                                              std::tuple{&targetBytes, &limits_.target, "target photo"}}) {
        const ImageHeader h = readImageHeader(*bytes);
        if (!h.valid())
            return fail(422, std::string("The ") + what + " could not be read");
        if (h.pixels() > limits->maxPixels)
            return fail(413, decodeLimited(*bytes, *limits, what).reason);
    }
    try {
        const DecodedImage source = decodeLimited(sourceBytes, limits_.source, "source photo");
        if (!source.reason.empty())
            return fail(422, source.reason);
        if (cancelled(cancel))
            return fail(503, kAbandoned);
        const std::vector<Face> sourceFaces = detector_.detect(source.bgr);
        if (sourceFaces.empty())
            return fail(422, kNoSourceFace);
        if (cancelled(cancel))
            return fail(503, kAbandoned);

        const DecodedImage target = decodeLimited(targetBytes, limits_.target, "target photo");
        if (!target.reason.empty())
            return fail(422, target.reason);
        if (cancelled(cancel))
            return fail(503, kAbandoned);
        const std::vector<Face> targetFaces = detector_.detect(target.bgr);
        if (targetFaces.empty())
            return fail(422, kNoTargetFace);
        if (cancelled(cancel))
            return fail(503, kAbandoned);

        std::string reason;
        const cv::Mat swapped =
            swapFaces(source.bgr, sourceFaces.front(), target.bgr, targetFaces, faceIndex, &reason);
        if (swapped.empty())
            return fail(422, reason);
        const bool png = target.header.format == ImageFormat::Png;
        out.contentType = png ? "image/png" : "image/jpeg";
        const bool encoded = png ? cv::imencode(".png", swapped, out.image, {cv::IMWRITE_PNG_COMPRESSION, 3})
                                 : cv::imencode(".jpg", swapped, out.image, {cv::IMWRITE_JPEG_QUALITY, 95});
        if (!encoded)
            return fail(500, "The result could not be encoded");
    } catch (const cv::Exception& e) {
        return fail(500, std::string("The swap failed: ") + e.err);
    } catch (const std::bad_alloc&) {
        return fail(500, "The swap ran out of memory");
    }
    return out;
}

} // namespace lumivex::faceswap
