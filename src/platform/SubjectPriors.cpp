#include "platform/SubjectPriors.h"

#include "platform/Vision.h"

#include <QImage>
#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>
#include <optional>

namespace {

// A people box from the detector is a tight standing body; arms and a stride reach past it.
constexpr double personPadX = 0.35, personPadY = 0.08;
// A face stands for the person around it: the head a little larger than the face, and below it a body
// about three face widths wide that goes on to the bottom of the picture (or out of it).
constexpr double headPadSides = 0.3, headPadAbove = 0.5, headPadBelow = 0.3;
constexpr double bodyFaceWidths = 3.0, bodyStartsBelowFace = 0.8;
// From the chin to the hips is about three face heights; the middle of that is the person for certain.
constexpr double torsoFaceHeights = 3.0;
// An arm or a leg stretched out reaches about this many face widths to either side of the face, and a
// raised hand this many above it.
constexpr double faceReachSides = 5.0, faceReachAbove = 1.5;
// Around a person's box, fractions of its width and height.
constexpr double personReachX = 0.6, personReachY = 0.15;
// Around an area that stands out in colour, a fraction of the picture's longer side.
constexpr double salientReach = 0.15;
// The model of faces seen from the side, from OpenCV's stock models. It fires on more than faces (a
// crowd, a shirt's print), so a side face needs many more overlapping hits than a frontal one, which
// the detector's own grouping counts.
constexpr const char* profileCascadeFile = "haarcascade_profileface.xml";
constexpr double profileScaleStep = 1.15;
constexpr int profileMinNeighbours = 20;
// As for frontal faces: one narrower than a twentieth of the picture is no subject.
constexpr double profileMinFraction = 0.05;

cv::Rect clippedTo(const cv::Rect& r, cv::Size size) {
    return r & cv::Rect(0, 0, size.width, size.height);
}

cv::Rect padded(const cv::Rect& r, double left, double right, double above, double below, cv::Size size) {
    const cv::Rect grown(int(std::lround(r.x - left * r.width)), int(std::lround(r.y - above * r.height)),
                         int(std::lround(r.width * (1.0 + left + right))),
                         int(std::lround(r.height * (1.0 + above + below))));
    return clippedTo(grown, size);
}

// A box of the detection copy in the working copy's pixels.
cv::Rect scaled(const cv::Rect& r, double sx, double sy) {
    return cv::Rect(int(std::lround(r.x * sx)), int(std::lround(r.y * sy)), int(std::lround(r.width * sx)),
                    int(std::lround(r.height * sy)));
}

cv::Rect toPixels(const QRectF& normalisedBottomLeft, cv::Size size) {
    const double top = 1.0 - normalisedBottomLeft.y() - normalisedBottomLeft.height();
    return cv::Rect(int(std::lround(normalisedBottomLeft.x() * size.width)),
                    int(std::lround(top * size.height)),
                    int(std::lround(normalisedBottomLeft.width() * size.width)),
                    int(std::lround(normalisedBottomLeft.height() * size.height)));
}

double overlap(const cv::Rect& a, const cv::Rect& b) {
    const double both = (a & b).area();
    return both / std::max(1.0, double(std::min(a.area(), b.area())));
}

// Faces seen from the side, looking either way: the model knows one side, so the picture is also
// searched mirrored. Boxes in the grey picture's pixels.
std::vector<cv::Rect> profileFaces(const cv::Mat& grey) {
    std::vector<cv::Rect> result;
    cv::CascadeClassifier* cascade = Vision::stockCascade(profileCascadeFile);
    if (!cascade)
        return result;
    const int minSide = std::max(cascade->getOriginalWindowSize().width,
                                 int(std::lround(profileMinFraction * std::max(grey.cols, grey.rows))));
    if (grey.cols < minSide || grey.rows < minSide)
        return result;
    cv::Mat equalised, mirrored;
    cv::equalizeHist(grey, equalised);
    cv::flip(equalised, mirrored, 1);
    for (const bool mirror : {false, true}) {
        std::vector<cv::Rect> faces;
        cascade->detectMultiScale(mirror ? mirrored : equalised, faces, profileScaleStep,
                                  profileMinNeighbours, 0, cv::Size(minSide, minSide));
        for (cv::Rect face : faces) {
            if (mirror)
                face.x = grey.cols - face.x - face.width;
            result.push_back(face);
        }
    }
    return result;
}

void addPerson(SubjectPriors& priors, const cv::Rect& body, cv::Size size) {
    priors.regions.push_back(padded(body, personPadX, personPadX, personPadY, personPadY, size));
    priors.reaches.push_back(padded(body, personReachX, personReachX, personReachY, personReachY, size));
    // The middle of the torso and legs.
    priors.cores.push_back(clippedTo(cv::Rect(body.x + body.width * 2 / 5, body.y + body.height / 5,
                                              std::max(1, body.width / 5), std::max(1, body.height * 3 / 5)),
                                     size));
}

void addFace(SubjectPriors& priors, const cv::Rect& face, cv::Size size) {
    priors.regions.push_back(padded(face, headPadSides, headPadSides, headPadAbove, headPadBelow, size));
    const int centreX = face.x + face.width / 2;
    const int bodyWidth = int(std::lround(face.width * bodyFaceWidths));
    const int bodyTop = face.y + int(std::lround(face.height * bodyStartsBelowFace));
    priors.regions.push_back(
        clippedTo(cv::Rect(centreX - bodyWidth / 2, bodyTop, bodyWidth, size.height - bodyTop), size));
    const int reach = int(std::lround(face.width * faceReachSides));
    const int reachTop = face.y - int(std::lround(face.height * faceReachAbove));
    priors.reaches.push_back(
        clippedTo(cv::Rect(centreX - reach, reachTop, 2 * reach, size.height - reachTop), size));
    // The face's middle, and a narrow strip from just below the chin down the torso.
    priors.cores.push_back(padded(face, -0.2, -0.2, -0.1, -0.1, size));
    priors.cores.push_back(
        clippedTo(cv::Rect(centreX - face.width / 4, face.y + face.height + face.height / 3,
                           std::max(1, face.width / 2), int(std::lround(face.height * torsoFaceHeights))),
                  size));
}

// Subjects that stand out from the picture's border by colour, for pictures without people or faces:
// the largest area far from every border colour, when it is compact and distinct enough.
std::optional<cv::Rect> salientBox(const cv::Mat& bgr) {
    // OpenCV builds its 8-bit Lab tables on first use without a lock, so photos cut out at the same
    // time would each build and leak a set; one conversion before any of them makes the tables once.
    static const bool labTablesBuilt = [] {
        const cv::Mat pixel(1, 1, CV_8UC3, cv::Scalar::all(0));
        cv::Mat converted;
        cv::cvtColor(pixel, converted, cv::COLOR_BGR2Lab);
        return true;
    }();
    (void)labTablesBuilt;
    cv::Mat lab;
    cv::cvtColor(bgr, lab, cv::COLOR_BGR2Lab);
    lab.convertTo(lab, CV_32FC3);
    const int frame = std::max(2, int(std::min(bgr.cols, bgr.rows) * 0.06));
    cv::Mat border(0, 1, CV_32FC3);
    for (int y = 0; y < lab.rows; ++y)
        for (int x = 0; x < lab.cols; ++x) {
            const bool inFrame = y < frame || y >= lab.rows - frame || x < frame || x >= lab.cols - frame;
            if (inFrame)
                border.push_back(lab.at<cv::Vec3f>(y, x));
        }
    const int clusters = std::min(6, border.rows);
    if (clusters < 1)
        return std::nullopt;
    cv::Mat labels, centres;
    cv::kmeans(border.reshape(1), clusters, labels, cv::TermCriteria(cv::TermCriteria::COUNT, 8, 1.0), 1,
               cv::KMEANS_PP_CENTERS, centres);
    cv::Mat distance(lab.size(), CV_32F);
    for (int y = 0; y < lab.rows; ++y)
        for (int x = 0; x < lab.cols; ++x) {
            const cv::Vec3f p = lab.at<cv::Vec3f>(y, x);
            float best = 1e9f;
            for (int k = 0; k < centres.rows; ++k) {
                const float* c = centres.ptr<float>(k);
                const float d = (p[0] - c[0]) * (p[0] - c[0]) + (p[1] - c[1]) * (p[1] - c[1]) +
                                (p[2] - c[2]) * (p[2] - c[2]);
                best = std::min(best, d);
            }
            distance.at<float>(y, x) = std::sqrt(best);
        }
    cv::GaussianBlur(distance, distance, cv::Size(0, 0), 2.0);
    cv::Mat salient = distance > 25.0f;
    cv::Mat components, stats, centroids;
    const int count = cv::connectedComponentsWithStats(salient, components, stats, centroids, 8);
    int best = 0;
    for (int i = 1; i < count; ++i)
        if (best == 0 || stats.at<int>(i, cv::CC_STAT_AREA) > stats.at<int>(best, cv::CC_STAT_AREA))
            best = i;
    if (best == 0)
        return std::nullopt;
    const double area = double(stats.at<int>(best, cv::CC_STAT_AREA)) / (lab.rows * lab.cols);
    if (area < 0.02 || area > 0.7)
        return std::nullopt;
    return cv::Rect(stats.at<int>(best, cv::CC_STAT_LEFT), stats.at<int>(best, cv::CC_STAT_TOP),
                    stats.at<int>(best, cv::CC_STAT_WIDTH), stats.at<int>(best, cv::CC_STAT_HEIGHT));
}

} // namespace

namespace SubjectFinding {

SubjectPriors find(const cv::Mat& detection, const cv::Mat& working) {
    SubjectPriors priors;
    const cv::Size size = working.size();
    const QImage detectionCopy(detection.data, detection.cols, detection.rows, int(detection.step),
                               QImage::Format_RGB32);
    const VisionRequestHandler handler(detectionCopy, ImageOrientation::up);
    if (const auto people = handler.detectHumanRectangles())
        for (const auto& person : *people)
            addPerson(priors, toPixels(person.boundingBox, size), size);

    // Faces find the people the body detector misses (bent, sitting, cut by the frame, seen from the
    // side), and a face inside a person's box adds its certain core to that person.
    std::vector<cv::Rect> faces;
    if (const auto frontal = handler.detectFaceRectangles())
        for (const auto& face : *frontal)
            faces.push_back(toPixels(face.boundingBox, size));
    // Side faces only where no face was seen from the front: the side model, run both ways round, is
    // the dearest of the detectors.
    if (faces.empty()) {
        cv::Mat grey;
        cv::cvtColor(detection, grey, cv::COLOR_BGRA2GRAY);
        const double sx = double(size.width) / detection.cols, sy = double(size.height) / detection.rows;
        for (const cv::Rect& side : profileFaces(grey)) {
            const cv::Rect face = scaled(side, sx, sy);
            const bool seen = std::any_of(faces.begin(), faces.end(),
                                          [&](const cv::Rect& f) { return overlap(f, face) > 0.3; });
            if (!seen)
                faces.push_back(face);
        }
    }
    for (const cv::Rect& face : faces)
        addFace(priors, face, size);

    if (priors.empty())
        if (const auto box = salientBox(working)) {
            priors.regions.push_back(padded(*box, 0.05, 0.05, 0.05, 0.05, size));
            priors.cores.push_back(padded(*box, -0.4, -0.4, -0.4, -0.4, size));
            const double reach = salientReach * std::max(size.width, size.height);
            priors.reaches.push_back(padded(*box, reach / box->width, reach / box->width, reach / box->height,
                                            reach / box->height, size));
        }
    return priors;
}

} // namespace SubjectFinding
