#include "FaceSwap.h"

#include <opencv2/calib3d.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>

#include <algorithm>
#include <cmath>

namespace lumivex::faceswap {

namespace {

// Haar detection is run on a copy no larger than this; phone photos would otherwise take seconds.
constexpr int kDetectionEdge = 1024;

// Where the eyes sit in a frontal Haar face box, as fractions of its size.
constexpr float kEyeX = 0.31f;
constexpr float kEyeY = 0.39f;

cv::Point2f boxPoint(const cv::Rect& box, float fx, float fy) {
    return {box.x + fx * box.width, box.y + fy * box.height};
}

// Eyes and the corners of the box. The eyes fix rotation; the corners keep the scale honest when one eye
// detection is a little off.
std::vector<cv::Point2f> landmarks(const Face& face) {
    const cv::Rect& b = face.box;
    return {face.leftEye,      face.rightEye,     boxPoint(b, 0, 0),
            boxPoint(b, 1, 0), boxPoint(b, 0, 1), boxPoint(b, 1, 1)};
}

// Similarity from box to box alone, for the rare case the estimator gives up.
cv::Mat boxSimilarity(const cv::Rect& from, const cv::Rect& to) {
    const double s = double(to.width) / std::max(1, from.width);
    const cv::Point2f cf = boxPoint(from, 0.5f, 0.5f);
    const cv::Point2f ct = boxPoint(to, 0.5f, 0.5f);
    return (cv::Mat_<double>(2, 3) << s, 0, ct.x - s * cf.x, 0, s, ct.y - s * cf.y);
}

cv::Mat decode(const std::string& bytes) {
    if (bytes.empty())
        return {};
    try {
        return cv::imdecode(cv::Mat(1, int(bytes.size()), CV_8U, const_cast<char*>(bytes.data())),
                            cv::IMREAD_COLOR);
    } catch (const cv::Exception&) {
        return {};
    }
}

} // namespace

FaceSwapper::FaceSwapper(const std::string& cascadeDir) {
    ready_ = faceCascade_.load(cascadeDir + "/haarcascade_frontalface_alt2.xml") &&
             eyeCascade_.load(cascadeDir + "/haarcascade_eye.xml");
}

std::vector<Face> FaceSwapper::detectFaces(const cv::Mat& bgr) {
    std::vector<Face> faces;
    if (!ready_ || bgr.empty())
        return faces;

    cv::Mat gray;
    cv::cvtColor(bgr, gray, cv::COLOR_BGR2GRAY);
    const double scale = std::min(1.0, double(kDetectionEdge) / std::max(gray.cols, gray.rows));
    cv::Mat small;
    if (scale < 1.0)
        cv::resize(gray, small, cv::Size(), scale, scale, cv::INTER_AREA);
    else
        small = gray;
    cv::equalizeHist(small, small);

    const int minEdge = std::max(24, std::min(small.cols, small.rows) / 20);
    std::vector<cv::Rect> boxes;
    faceCascade_.detectMultiScale(small, boxes, 1.1, 4, 0, cv::Size(minEdge, minEdge));

    for (const cv::Rect& r : boxes) {
        Face face;
        face.box = cv::Rect(cvRound(r.x / scale), cvRound(r.y / scale), cvRound(r.width / scale),
                            cvRound(r.height / scale)) &
                   cv::Rect(0, 0, bgr.cols, bgr.rows);
        findEyes(gray, face);
        faces.push_back(face);
    }
    std::stable_sort(faces.begin(), faces.end(),
                     [](const Face& a, const Face& b) { return a.box.area() > b.box.area(); });
    return faces;
}

void FaceSwapper::findEyes(const cv::Mat& gray, Face& face) {
    const cv::Rect& b = face.box;
    face.leftEye = boxPoint(b, kEyeX, kEyeY);
    face.rightEye = boxPoint(b, 1 - kEyeX, kEyeY);
    face.eyesDetected = false;

    // Eyes live in the upper part of the box; searching only there avoids nostrils and mouth corners.
    const cv::Rect upper(b.x, b.y + b.height / 8, b.width, b.height / 2);
    cv::Mat roi = gray(upper & cv::Rect(0, 0, gray.cols, gray.rows)).clone();
    if (roi.cols < 20 || roi.rows < 10)
        return;
    cv::equalizeHist(roi, roi);
    std::vector<cv::Rect> eyes;
    const int minEye = std::max(6, b.width / 10);
    eyeCascade_.detectMultiScale(roi, eyes, 1.1, 3, 0, cv::Size(minEye, minEye),
                                 cv::Size(b.width / 2, b.width / 2));

    const cv::Rect* left = nullptr;
    const cv::Rect* right = nullptr;
    for (const cv::Rect& e : eyes) {
        const bool onLeft = e.x + e.width / 2 < roi.cols / 2;
        const cv::Rect*& slot = onLeft ? left : right;
        if (!slot || e.area() > slot->area())
            slot = &e;
    }
    if (!left || !right)
        return;
    const cv::Point2f l(upper.x + left->x + left->width / 2.0f, upper.y + left->y + left->height / 2.0f);
    const cv::Point2f r(upper.x + right->x + right->width / 2.0f, upper.y + right->y + right->height / 2.0f);
    // A pair far apart in height or barely apart sideways is a false detection, not a tilted head.
    if (std::abs(l.y - r.y) > 0.25f * b.width || (r.x - l.x) < 0.2f * b.width)
        return;
    face.leftEye = l;
    face.rightEye = r;
    face.eyesDetected = true;
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
        // A flat source channel would blow up the gain; keep its contrast as it is instead.
        const double gain = srcStd[c] > 1e-3 ? std::clamp(refStd[c] / srcStd[c], 0.5, 2.0) : 1.0;
        channels[c].convertTo(channels[c], CV_32F, gain, refMean[c] - gain * srcMean[c]);
    }
    cv::merge(channels, srcLab);
    cv::cvtColor(srcLab, srcLab, cv::COLOR_Lab2BGR);
    srcLab.convertTo(src, CV_8U, 255.0);
}

cv::Mat FaceSwapper::swap(const cv::Mat& source, const cv::Mat& target, int faceIndex, std::string* reason) {
    const std::vector<Face> sourceFaces = detectFaces(source);
    if (sourceFaces.empty()) {
        *reason = kNoSourceFace;
        return {};
    }
    const std::vector<Face> targetFaces = detectFaces(target);
    if (targetFaces.empty()) {
        *reason = kNoTargetFace;
        return {};
    }
    if (faceIndex < 0 || faceIndex >= int(targetFaces.size())) {
        *reason = "The target photo has " + std::to_string(targetFaces.size()) + " face(s); face_index " +
                  std::to_string(faceIndex) + " is out of range";
        return {};
    }
    const Face& from = sourceFaces.front();
    const Face& to = targetFaces[faceIndex];

    cv::Mat transform = cv::estimateAffinePartial2D(landmarks(from), landmarks(to), cv::noArray(), cv::LMEDS);
    if (transform.empty())
        transform = boxSimilarity(from.box, to.box);

    cv::Mat warped;
    cv::warpAffine(source, warped, transform, target.size(), cv::INTER_LINEAR, cv::BORDER_REFLECT);
    cv::Mat covered(source.size(), CV_8U, cv::Scalar(255));
    cv::warpAffine(covered, covered, transform, target.size(), cv::INTER_NEAREST, cv::BORDER_CONSTANT);

    // The ellipse covers brows to chin and stops short of the hairline and ears, where skin tones and
    // shapes of two people differ most.
    const cv::Rect& b = to.box;
    cv::Mat mask(target.size(), CV_8U, cv::Scalar(0));
    cv::ellipse(mask,
                cv::RotatedRect(boxPoint(b, 0.5f, 0.55f), cv::Size2f(0.80f * b.width, 1.10f * b.height), 0),
                cv::Scalar(255), cv::FILLED);
    // Only where the warped source really has pixels, and clear of the border that Poisson cloning needs.
    cv::erode(covered, covered, cv::getStructuringElement(cv::MORPH_RECT, cv::Size(5, 5)));
    mask &= covered;
    const int margin = 3;
    mask.rowRange(0, std::min(margin, mask.rows)).setTo(0);
    mask.rowRange(std::max(0, mask.rows - margin), mask.rows).setTo(0);
    mask.colRange(0, std::min(margin, mask.cols)).setTo(0);
    mask.colRange(std::max(0, mask.cols - margin), mask.cols).setTo(0);
    const cv::Rect area = cv::boundingRect(mask);
    if (area.width < 8 || area.height < 8) {
        *reason = "The face in the target photo is too close to the edge to swap";
        return {};
    }

    // Colour work on the face's neighbourhood only; the rest of the warped source is never used.
    cv::Mat warpedArea = warped(area);
    matchColours(warpedArea, target(area), mask(area));

    cv::Mat cloned;
    const cv::Point centre(area.x + area.width / 2, area.y + area.height / 2);
    cv::seamlessClone(warped, target, mask, centre, cloned, cv::NORMAL_CLONE);

    // Poisson blending matches the boundary; the feather also softens the seam's shape.
    const int feather = std::max(3, b.width / 16) | 1;
    cv::Mat alpha;
    cv::erode(mask(area), alpha, cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(feather, feather)));
    cv::GaussianBlur(alpha, alpha, cv::Size(2 * feather + 1, 2 * feather + 1), 0);
    cv::Mat result = target.clone();
    cv::Mat dstArea = result(area);
    cv::Mat clonedArea = cloned(area);
    for (int y = 0; y < area.height; ++y) {
        const uchar* a = alpha.ptr<uchar>(y);
        const cv::Vec3b* c = clonedArea.ptr<cv::Vec3b>(y);
        cv::Vec3b* d = dstArea.ptr<cv::Vec3b>(y);
        for (int x = 0; x < area.width; ++x) {
            const int w = a[x];
            for (int k = 0; k < 3; ++k)
                d[x][k] = uchar((c[x][k] * w + d[x][k] * (255 - w) + 127) / 255);
        }
    }
    return result;
}

SwapOutcome FaceSwapper::swapEncoded(const std::string& sourceBytes, const std::string& targetBytes,
                                     int faceIndex) {
    SwapOutcome out;
    const cv::Mat source = decode(sourceBytes);
    const cv::Mat target = decode(targetBytes);
    if (source.empty() || target.empty()) {
        out.status = 422;
        out.reason = kUnreadablePhotos;
        return out;
    }
    std::string reason;
    cv::Mat swapped;
    try {
        swapped = swap(source, target, faceIndex, &reason);
    } catch (const cv::Exception& e) {
        out.status = 500;
        out.reason = std::string("The swap failed: ") + e.err;
        return out;
    }
    if (swapped.empty()) {
        out.status = 422;
        out.reason = reason;
        return out;
    }
    if (!cv::imencode(".jpg", swapped, out.jpeg, {cv::IMWRITE_JPEG_QUALITY, 92})) {
        out.status = 500;
        out.reason = "The result could not be encoded";
    }
    return out;
}

} // namespace lumivex::faceswap
