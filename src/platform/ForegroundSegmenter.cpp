#include "platform/ForegroundSegmenter.h"

#include "platform/DnnSegmenter.h"
#include "platform/Log.h"
#include "platform/Vision.h"

#include <QDir>
#include <QStandardPaths>
#include <algorithm>
#include <cmath>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN); // 32-bit pixels read as B, G, R, A bytes

namespace {

// A people box from the detector is a tight standing body; arms and a stride reach past it.
constexpr double personPadX = 0.35, personPadY = 0.08;
// A face stands for the body below it: this many face widths to each side, face heights down.
constexpr double faceBodySides = 3.0, faceBodyAbove = 0.6, faceBodyBelow = 7.0;
// Around the picture a frame this fraction of the longer side wide is background for certain, except
// where a subject touches it.
constexpr double borderFraction = 0.03;
// Beyond this fraction of the longer side from every subject found, the picture is background for
// certain: limbs may reach that far out of a detector's box, and nothing else may join the subject.
constexpr double reachFraction = 0.15;
// The detectors look at a copy of this longer side (they shrink anything larger to it themselves).
constexpr int detectionSide = 640;
// A cut-out smaller than this, or larger, is no confident answer.
constexpr double minForeground = 0.004, maxForeground = 0.92;
// The edge refinement: spatial spread in working-copy pixels, colour spread in 8-bit levels.
constexpr double refineSpatialSigma = 0.9, refineColourSigma = 18.0;

cv::Mat wrap32(const QImage& image) {
    return cv::Mat(image.height(), image.width(), CV_8UC4, const_cast<uchar*>(image.constBits()),
                   static_cast<std::size_t>(image.bytesPerLine()));
}

// Averaged down by a whole factor first (OpenCV's fast path), the rest the general way.
cv::Mat shrunkTo(const cv::Mat& image, cv::Size size) {
    const int factor = std::min(image.cols / size.width, image.rows / size.height);
    cv::Mat coarse = image;
    if (factor >= 2)
        cv::resize(image, coarse, cv::Size(image.cols / factor, image.rows / factor), 0, 0, cv::INTER_AREA);
    cv::Mat out;
    cv::resize(coarse, out, size, 0, 0, cv::INTER_AREA);
    return out;
}

cv::Size scaledToSide(const QSize& full, int side) {
    const int longer = std::max(full.width(), full.height());
    if (longer <= side)
        return cv::Size(full.width(), full.height());
    const double scale = double(side) / longer;
    return cv::Size(std::max(1, int(std::lround(full.width() * scale))),
                    std::max(1, int(std::lround(full.height() * scale))));
}

cv::Size workingSize(const QSize& full) {
    return scaledToSide(full, GrabCutSegmenter::workingSide);
}

cv::Rect toPixels(const QRectF& normalisedBottomLeft, cv::Size size) {
    const double top = 1.0 - normalisedBottomLeft.y() - normalisedBottomLeft.height();
    return cv::Rect(int(std::lround(normalisedBottomLeft.x() * size.width)),
                    int(std::lround(top * size.height)),
                    int(std::lround(normalisedBottomLeft.width() * size.width)),
                    int(std::lround(normalisedBottomLeft.height() * size.height)));
}

cv::Rect padded(const cv::Rect& r, double left, double right, double above, double below, cv::Size size) {
    const cv::Rect grown(int(r.x - left * r.width), int(r.y - above * r.height),
                         int(r.width * (1.0 + left + right)), int(r.height * (1.0 + above + below)));
    return grown & cv::Rect(0, 0, size.width, size.height);
}

// Subjects that stand out from the picture's border by colour, for pictures without people or faces:
// the largest area far from every border colour, when it is compact and distinct enough.
std::optional<cv::Rect> salientBox(const cv::Mat& bgr) {
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

struct Seeds {
    std::vector<cv::Rect> regions; // probably subject
    std::vector<cv::Rect> cores;   // subject for certain
};

Seeds findSubjects(const QImage& detectionCopy, const cv::Mat& working) {
    Seeds seeds;
    const cv::Size size = working.size();
    const VisionRequestHandler handler(detectionCopy, ImageOrientation::up);
    if (const auto people = handler.detectHumanRectangles())
        for (const auto& person : *people) {
            const cv::Rect body = toPixels(person.boundingBox, size);
            seeds.regions.push_back(padded(body, personPadX, personPadX, personPadY, personPadY, size));
            // The middle of the torso and legs.
            seeds.cores.push_back(cv::Rect(body.x + body.width * 2 / 5, body.y + body.height / 5,
                                           std::max(1, body.width / 5), std::max(1, body.height * 3 / 5)) &
                                  cv::Rect(0, 0, size.width, size.height));
        }
    // Without a standing person, faces stand for the people the body detector misses: bent, sitting,
    // cut by the frame. (The face pass is the dearer of the two, so it is not run once people are found.)
    if (seeds.regions.empty())
        if (const auto faces = handler.detectFaceRectangles())
            for (const auto& face : *faces) {
                const cv::Rect f = toPixels(face.boundingBox, size);
                const cv::Point centre(f.x + f.width / 2, f.y + f.height / 2);
                const bool known = std::any_of(seeds.regions.begin(), seeds.regions.end(),
                                               [&](const cv::Rect& r) { return r.contains(centre); });
                if (!known)
                    seeds.regions.push_back(
                        padded(f, faceBodySides, faceBodySides, faceBodyAbove, faceBodyBelow, size));
                seeds.cores.push_back(padded(f, -0.2, -0.2, -0.1, -0.1, size));
            }
    if (seeds.regions.empty())
        if (const auto box = salientBox(working)) {
            seeds.regions.push_back(padded(*box, 0.05, 0.05, 0.05, 0.05, size));
            seeds.cores.push_back(padded(*box, -0.4, -0.4, -0.4, -0.4, size));
        }
    return seeds;
}

cv::Mat initialLabels(const Seeds& seeds, cv::Size size) {
    cv::Mat labels(size, CV_8UC1, cv::Scalar(cv::GC_BGD));
    const int reach = int(std::lround(std::max(size.width, size.height) * reachFraction));
    for (const cv::Rect& region : seeds.regions) {
        const cv::Rect zone = cv::Rect(region.x - reach, region.y - reach, region.width + 2 * reach,
                                       region.height + 2 * reach) &
                              cv::Rect(0, 0, size.width, size.height);
        labels(zone).setTo(cv::GC_PR_BGD);
    }
    const int frame = std::max(1, int(std::lround(std::max(size.width, size.height) * borderFraction)));
    cv::Mat certain(size, CV_8UC1, cv::Scalar(0));
    certain.rowRange(0, frame).setTo(1);
    certain.rowRange(size.height - frame, size.height).setTo(1);
    certain.colRange(0, frame).setTo(1);
    certain.colRange(size.width - frame, size.width).setTo(1);
    labels.setTo(cv::GC_BGD, certain);
    for (const cv::Rect& region : seeds.regions)
        labels(region).setTo(cv::GC_PR_FGD);
    for (const cv::Rect& core : seeds.cores)
        if (!core.empty())
            labels(core).setTo(cv::GC_FGD);
    return labels;
}

// The subject as 0/1: GrabCut's foreground, without specks, kept where it meets a seed region.
cv::Mat cleanedForeground(const cv::Mat& labels, const Seeds& seeds) {
    cv::Mat fg = (labels == cv::GC_FGD) | (labels == cv::GC_PR_FGD);
    cv::morphologyEx(fg, fg, cv::MORPH_OPEN, cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(3, 3)));
    cv::Mat components, stats, centroids;
    const int count = cv::connectedComponentsWithStats(fg, components, stats, centroids, 8);
    std::vector<uchar> keep(std::size_t(count), 0);
    cv::Mat seedArea(fg.size(), CV_8UC1, cv::Scalar(0));
    for (const cv::Rect& region : seeds.regions)
        seedArea(region).setTo(1);
    const double minArea = 0.002 * fg.rows * fg.cols;
    for (int y = 0; y < fg.rows; ++y)
        for (int x = 0; x < fg.cols; ++x) {
            const int label = components.at<int>(y, x);
            if (label > 0 && seedArea.at<uchar>(y, x) && stats.at<int>(label, cv::CC_STAT_AREA) >= minArea)
                keep[std::size_t(label)] = 1;
        }
    cv::Mat out(fg.size(), CV_8UC1);
    for (int y = 0; y < fg.rows; ++y)
        for (int x = 0; x < fg.cols; ++x)
            out.at<uchar>(y, x) = keep[std::size_t(components.at<int>(y, x))];
    // Holes the subject closes all round (a logo on a shirt, a gap between arm and body that GrabCut
    // found background-like) belong to it: fill every background area that does not reach the border.
    cv::Mat outside = out.clone();
    cv::Mat flood(out.rows + 2, out.cols + 2, CV_8UC1, cv::Scalar(0));
    for (int x = 0; x < out.cols; ++x)
        for (int y : {0, out.rows - 1})
            if (!outside.at<uchar>(y, x))
                cv::floodFill(outside, flood, cv::Point(x, y), cv::Scalar(2), nullptr, 0, 0, 4);
    for (int y = 0; y < out.rows; ++y)
        for (int x : {0, out.cols - 1})
            if (!outside.at<uchar>(y, x))
                cv::floodFill(outside, flood, cv::Point(x, y), cv::Scalar(2), nullptr, 0, 0, 4);
    out.setTo(1, outside == 0);
    return out;
}

// The working mask brought to the full picture. Away from the edge a pixel takes its working pixel's
// label; near the edge it takes the labels of the working pixels around it weighted by how close they
// are and how like its own colour theirs is (joint bilateral upsampling), so the edge follows the
// picture's own detail rather than the working copy's coarse steps.
QImage refinedAtFullSize(const cv::Mat& low, const cv::Mat& lowBgr, const QImage& full) {
    const int W = full.width(), H = full.height(), w = low.cols, h = low.rows;
    QImage mask(W, H, QImage::Format_Grayscale8);
    if (mask.isNull())
        return {};
    cv::Mat edge;
    {
        cv::Mat grown, shrunk;
        const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(3, 3));
        cv::dilate(low, grown, kernel);
        cv::erode(low, shrunk, kernel);
        edge = grown != shrunk;
    }
    const double sx = double(w) / W, sy = double(h) / H;
    const float inv2s = float(1.0 / (2.0 * refineSpatialSigma * refineSpatialSigma));
    const float inv2r = float(1.0 / (2.0 * refineColourSigma * refineColourSigma));
    std::vector<int> lowX(static_cast<std::size_t>(W));
    std::vector<float> fracX(static_cast<std::size_t>(W));
    for (int X = 0; X < W; ++X) {
        const double u = (X + 0.5) * sx - 0.5;
        lowX[std::size_t(X)] = std::clamp(int(std::floor(u + 0.5)), 0, w - 1);
        fracX[std::size_t(X)] = float(u);
    }
    cv::parallel_for_(cv::Range(0, H), [&](const cv::Range& rows) {
        for (int Y = rows.start; Y < rows.end; ++Y) {
            const double v = (Y + 0.5) * sy - 0.5;
            const int vy = std::clamp(int(std::floor(v + 0.5)), 0, h - 1);
            const uchar* labelRow = low.ptr<uchar>(vy);
            const uchar* edgeRow = edge.ptr<uchar>(vy);
            const uchar* pixels = full.constScanLine(Y);
            uchar* out = mask.scanLine(Y);
            for (int X = 0; X < W; ++X) {
                const int ux = lowX[std::size_t(X)];
                if (!edgeRow[ux]) {
                    out[X] = labelRow[ux] ? 255 : 0;
                    continue;
                }
                const uchar* p = pixels + 4 * X;
                float sum = 0.f, weight = 0.f;
                for (int qy = std::max(0, vy - 1); qy <= std::min(h - 1, vy + 1); ++qy) {
                    const float dy = float(v) - float(qy);
                    const uchar* qLabel = low.ptr<uchar>(qy);
                    const uchar* qColour = lowBgr.ptr<uchar>(qy);
                    for (int qx = std::max(0, ux - 1); qx <= std::min(w - 1, ux + 1); ++qx) {
                        const float dx = fracX[std::size_t(X)] - float(qx);
                        const uchar* c = qColour + 3 * qx;
                        const float db = float(p[0]) - c[0], dg = float(p[1]) - c[1], dr = float(p[2]) - c[2];
                        const float wq =
                            std::exp(-(dx * dx + dy * dy) * inv2s - (db * db + dg * dg + dr * dr) * inv2r);
                        sum += wq * qLabel[qx];
                        weight += wq;
                    }
                }
                out[X] =
                    weight > 1e-12f ? uchar(std::lround(255.f * sum / weight)) : (labelRow[ux] ? 255 : 0);
            }
        }
    });
    return mask;
}

} // namespace

std::optional<QImage> GrabCutSegmenter::foregroundMask(const QImage& upright) const {
    if (upright.isNull() || upright.width() < 8 || upright.height() < 8)
        return std::nullopt;
    try {
        // GrabCut and the colour clusters start from random centres: the same picture always gets the
        // same mask. The generator is the calling thread's own.
        cv::theRNG().state = 0x1F2E3D4C5B6A7988ULL;
        const QImage full = upright.depth() == 32 ? upright : upright.convertToFormat(QImage::Format_RGB32);
        // One pass over the full picture: a copy for the detectors, and from it the working copy.
        const cv::Size size = workingSize(full.size());
        const cv::Size detectionSize = scaledToSide(full.size(), detectionSide);
        const cv::Mat detection = shrunkTo(wrap32(full), detectionSize);
        cv::Mat working;
        cv::cvtColor(shrunkTo(detection, size), working, cv::COLOR_BGRA2BGR);
        const QImage detectionCopy(detection.data, detection.cols, detection.rows, int(detection.step),
                                   QImage::Format_RGB32);

        const Seeds seeds = findSubjects(detectionCopy, working);
        if (seeds.regions.empty())
            return std::nullopt;
        cv::Mat labels = initialLabels(seeds, size);
        cv::Mat background, foreground;
        cv::grabCut(working, labels, cv::Rect(), background, foreground, iterations, cv::GC_INIT_WITH_MASK);
        const cv::Mat subject = cleanedForeground(labels, seeds);
        const double fraction = cv::countNonZero(subject) / double(size.area());
        if (fraction < minForeground || fraction > maxForeground)
            return std::nullopt;
        QImage mask = refinedAtFullSize(subject, working, full);
        if (mask.isNull())
            return std::nullopt;
        return mask;
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
}

namespace ForegroundSegmentation {

QString modelsDirectory() {
    const QString fromEnvironment = qEnvironmentVariable(modelsDirVariable);
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/models");
}

std::shared_ptr<const ForegroundSegmenter> makeSegmenter() {
    const QDir dir(modelsDirectory());
    const QStringList models = dir.entryList({QStringLiteral("*.onnx")}, QDir::Files, QDir::Name);
    for (const QString& file : models) {
        QString error;
        if (auto model = DnnSegmenter::load(dir.filePath(file), &error)) {
            printLine(QStringLiteral("Background removal: segmentation model %1 through OpenCV dnn")
                          .arg(dir.filePath(file))
                          .toStdString());
            return model;
        }
        printLine(QStringLiteral("Background removal: model %1 not used: %2")
                      .arg(dir.filePath(file), error)
                      .toStdString());
    }
    printLine("Background removal: GrabCut segmentation (no model in " + dir.path().toStdString() + ")");
    return std::make_shared<GrabCutSegmenter>();
}

} // namespace ForegroundSegmentation
