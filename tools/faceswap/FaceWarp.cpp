#include "FaceWarp.h"

#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>

#include <algorithm>
#include <cmath>

namespace lumivex::faceswap {

namespace {

std::vector<cv::Point2f> asVector(const Landmarks& points) {
    return {points.begin(), points.end()};
}

int nearestIndex(const Landmarks& points, cv::Point2f p) {
    int best = -1;
    float bestDistance = 1.0f; // Subdiv2D hands back the inserted points; anything farther is a corner
    for (int i = 0; i < kLandmarkCount; ++i) {
        const float d = float(cv::norm(points[i] - p));
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
        }
    }
    return best;
}

} // namespace

std::vector<Triangle> delaunayTriangles(const Landmarks& points) {
    const cv::Rect2f bounds = cv::boundingRect(asVector(points));
    cv::Subdiv2D subdiv(cv::Rect(int(std::floor(bounds.x)) - 2, int(std::floor(bounds.y)) - 2,
                                 int(std::ceil(bounds.width)) + 5, int(std::ceil(bounds.height)) + 5));
    std::vector<bool> inserted(kLandmarkCount, false);
    for (int i = 0; i < kLandmarkCount; ++i) {
        // Two landmarks on one spot (a closed mouth's inner lips) would make a degenerate triangle.
        bool duplicate = false;
        for (int j = 0; j < i && !duplicate; ++j)
            duplicate = inserted[j] && cv::norm(points[i] - points[j]) < 0.5;
        if (!duplicate) {
            subdiv.insert(points[i]);
            inserted[i] = true;
        }
    }
    std::vector<cv::Vec6f> list;
    subdiv.getTriangleList(list);
    std::vector<Triangle> triangles;
    for (const cv::Vec6f& t : list) {
        Triangle tri{nearestIndex(points, {t[0], t[1]}), nearestIndex(points, {t[2], t[3]}),
                     nearestIndex(points, {t[4], t[5]})};
        if (tri[0] >= 0 && tri[1] >= 0 && tri[2] >= 0)
            triangles.push_back(tri);
    }
    return triangles;
}

cv::Mat warpFaceInto(const cv::Mat& source, const Landmarks& from, const Landmarks& to,
                     const std::vector<Triangle>& triangles, cv::Rect area) {
    // Which triangle covers each pixel of the area (0 = none), drawn with sub-pixel vertices so shared
    // edges give every pixel to exactly one triangle.
    cv::Mat owner(area.size(), CV_16U, cv::Scalar(0));
    std::vector<cv::Matx23d> inverse; // target -> source, per triangle
    constexpr int shift = 4;
    for (const Triangle& t : triangles) {
        const cv::Point2f d[3] = {to[t[0]], to[t[1]], to[t[2]]};
        const cv::Point2f s[3] = {from[t[0]], from[t[1]], from[t[2]]};
        const double doubledArea = (d[1] - d[0]).cross(d[2] - d[0]);
        if (std::abs(doubledArea) < 1e-3)
            continue;
        inverse.push_back(cv::Matx23d(cv::getAffineTransform(d, s)));
        cv::Point corners[3];
        for (int k = 0; k < 3; ++k)
            corners[k] = cv::Point(cvRound((d[k].x - area.x) * (1 << shift)),
                                   cvRound((d[k].y - area.y) * (1 << shift)));
        cv::fillConvexPoly(owner, corners, 3, cv::Scalar(double(inverse.size())), cv::LINE_8, shift);
    }
    cv::Mat similarity = cv::estimateAffinePartial2D(asVector(to), asVector(from));
    if (similarity.empty())
        similarity = (cv::Mat_<double>(2, 3) << 1, 0, 0, 0, 1, 0);
    const cv::Matx23d outside(similarity);

    cv::Mat mapX(area.size(), CV_32F), mapY(area.size(), CV_32F);
    for (int y = 0; y < area.height; ++y) {
        const auto* id = owner.ptr<std::uint16_t>(y);
        float* mx = mapX.ptr<float>(y);
        float* my = mapY.ptr<float>(y);
        const double ty = y + area.y;
        for (int x = 0; x < area.width; ++x) {
            const cv::Matx23d& m = id[x] ? inverse[id[x] - 1] : outside;
            const double tx = x + area.x;
            mx[x] = float(m(0, 0) * tx + m(0, 1) * ty + m(0, 2));
            my[x] = float(m(1, 0) * tx + m(1, 1) * ty + m(1, 2));
        }
    }
    cv::Mat warped;
    cv::remap(source, warped, mapX, mapY, cv::INTER_LINEAR, cv::BORDER_REFLECT);
    return warped;
}

cv::Mat faceHullMask(const Landmarks& points, cv::Rect area) {
    std::vector<cv::Point2f> hull;
    cv::convexHull(asVector(points), hull);
    std::vector<cv::Point> corners;
    constexpr int shift = 4;
    for (const cv::Point2f& p : hull)
        corners.emplace_back(cvRound((p.x - area.x) * (1 << shift)), cvRound((p.y - area.y) * (1 << shift)));
    cv::Mat mask(area.size(), CV_8U, cv::Scalar(0));
    cv::fillConvexPoly(mask, corners, cv::Scalar(255), cv::LINE_8, shift);
    return mask;
}

cv::Rect faceArea(const Landmarks& points, cv::Size size, double margin) {
    const cv::Rect2f hull = cv::boundingRect(asVector(points));
    const float grow = float(margin * cv::norm(points[16] - points[0]));
    const cv::Rect grown(int(std::floor(hull.x - grow)), int(std::floor(hull.y - grow)),
                         int(std::ceil(hull.width + 2 * grow)) + 1,
                         int(std::ceil(hull.height + 2 * grow)) + 1);
    return grown & cv::Rect(0, 0, size.width, size.height);
}

void matchColours(cv::Mat& src, const cv::Mat& ref, const cv::Mat& mask) {
    cv::Mat srcLab, refLab;
    src.convertTo(srcLab, CV_32F, 1.0 / 255);
    ref.convertTo(refLab, CV_32F, 1.0 / 255);
    cv::cvtColor(srcLab, srcLab, cv::COLOR_BGR2Lab);
    cv::cvtColor(refLab, refLab, cv::COLOR_BGR2Lab);

    cv::Scalar srcMean, srcStd, refMean, refStd;
    cv::meanStdDev(srcLab, srcMean, srcStd, mask);
    cv::meanStdDev(refLab, refMean, refStd, mask);

    std::vector<cv::Mat> channels;
    cv::split(srcLab, channels);
    for (int c = 0; c < 3; ++c) {
        // A flat source channel would blow up the gain; keep its contrast as it is instead. The clamp keeps
        // a drawn template's flat skin from flattening a photographed face.
        const double gain = srcStd[c] > 1e-3 ? std::clamp(refStd[c] / srcStd[c], 0.7, 1.4) : 1.0;
        channels[c].convertTo(channels[c], CV_32F, gain, refMean[c] - gain * srcMean[c]);
    }
    cv::merge(channels, srcLab);
    cv::cvtColor(srcLab, srcLab, cv::COLOR_Lab2BGR);
    srcLab.convertTo(src, CV_8U, 255.0);
}

void blendFace(cv::Mat& target, const cv::Mat& face, const cv::Mat& mask, cv::Rect area, int feather) {
    // Poisson cloning needs a frame of known target pixels round the mask.
    cv::Mat inner = mask.clone();
    const int margin = std::min({2, inner.rows, inner.cols});
    inner.rowRange(0, margin).setTo(0);
    inner.rowRange(inner.rows - margin, inner.rows).setTo(0);
    inner.colRange(0, margin).setTo(0);
    inner.colRange(inner.cols - margin, inner.cols).setTo(0);
    const cv::Rect box = cv::boundingRect(inner);
    if (box.width < 3 || box.height < 3)
        return;
    cv::Mat dst = target(area);
    cv::Mat cloned;
    cv::seamlessClone(face, dst, inner, cv::Point(box.x + box.width / 2, box.y + box.height / 2), cloned,
                      cv::NORMAL_CLONE);

    // Poisson blending matches the boundary; the feather also softens the seam's shape.
    feather = std::max(1, feather) | 1;
    cv::Mat alpha;
    cv::erode(inner, alpha, cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(feather, feather)));
    cv::GaussianBlur(alpha, alpha, cv::Size(2 * feather + 1, 2 * feather + 1), 0);
    alpha &= inner;
    for (int y = 0; y < area.height; ++y) {
        const uchar* a = alpha.ptr<uchar>(y);
        const cv::Vec3b* c = cloned.ptr<cv::Vec3b>(y);
        cv::Vec3b* d = dst.ptr<cv::Vec3b>(y);
        for (int x = 0; x < area.width; ++x) {
            const int w = a[x];
            if (w == 0)
                continue;
            for (int k = 0; k < 3; ++k)
                d[x][k] = uchar((c[x][k] * w + d[x][k] * (255 - w) + 127) / 255);
        }
    }
}

} // namespace lumivex::faceswap
