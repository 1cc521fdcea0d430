#include "platform/ForegroundSegmenter.h"

#include "platform/DnnSegmenter.h"
#include "platform/Log.h"
#include "platform/SubjectPriors.h"

#include <QDir>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN); // 32-bit pixels read as B, G, R, A bytes

namespace {

// Around the picture a frame this fraction of the longer side wide is background for certain, except
// where a subject touches it.
constexpr double borderFraction = 0.03;
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

// Averaged down by a whole factor first, the rest the general way. OpenCV takes its fast path only when
// the factor divides the picture exactly, so the picture is trimmed to a multiple of it: the few rows
// and columns left out (fewer than the factor) move the copy by a fraction of one of its pixels.
cv::Mat shrunkTo(const cv::Mat& image, cv::Size size) {
    const int factor = std::min(image.cols / size.width, image.rows / size.height);
    cv::Mat coarse = image;
    if (factor >= 2) {
        const int w = image.cols / factor * factor, h = image.rows / factor * factor;
        cv::resize(image(cv::Rect(0, 0, w, h)), coarse, cv::Size(w / factor, h / factor), 0, 0,
                   cv::INTER_AREA);
    }
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

cv::Mat initialLabels(const SubjectPriors& seeds, cv::Size size) {
    cv::Mat labels(size, CV_8UC1, cv::Scalar(cv::GC_BGD));
    for (const cv::Rect& zone : seeds.reaches)
        labels(zone).setTo(cv::GC_PR_BGD);
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

// The subject as 0/1: GrabCut's foreground, without specks, kept where it meets a certain core.
cv::Mat cleanedForeground(const cv::Mat& labels, const SubjectPriors& seeds) {
    cv::Mat fg = (labels == cv::GC_FGD) | (labels == cv::GC_PR_FGD);
    cv::morphologyEx(fg, fg, cv::MORPH_OPEN, cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(3, 3)));
    cv::Mat components, stats, centroids;
    const int count = cv::connectedComponentsWithStats(fg, components, stats, centroids, 8);
    std::vector<uchar> keep(std::size_t(count), 0);
    cv::Mat seedArea(fg.size(), CV_8UC1, cv::Scalar(0));
    for (const cv::Rect& core : seeds.cores)
        if (!core.empty())
            seedArea(core).setTo(1);
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
    const double inv2s = 1.0 / (2.0 * refineSpatialSigma * refineSpatialSigma);
    // The colour weight by squared distance, from a table; beyond six spreads it is nothing.
    const int colourSteps = int(std::ceil(36.0 * refineColourSigma * refineColourSigma)) + 1;
    std::vector<float> colourWeight(static_cast<std::size_t>(colourSteps));
    for (int d = 0; d < colourSteps; ++d)
        colourWeight[std::size_t(d)] = float(std::exp(-d / (2.0 * refineColourSigma * refineColourSigma)));
    // Each working column covers a run of full-size columns: runs away from the edge are filled whole.
    // The spatial weight is a product of one per axis; a column's three, to its working column's left
    // neighbour, itself and its right neighbour, are worked out once.
    std::vector<int> runStart(static_cast<std::size_t>(w) + 1, W);
    std::vector<std::array<float, 3>> weightX(static_cast<std::size_t>(W));
    for (int X = W - 1; X >= 0; --X) {
        const double u = (X + 0.5) * sx - 0.5;
        const int ux = std::clamp(int(std::floor(u + 0.5)), 0, w - 1);
        runStart[std::size_t(ux)] = X;
        for (int k = 0; k < 3; ++k) {
            const double dx = u - (ux - 1 + k);
            weightX[std::size_t(X)][std::size_t(k)] = float(std::exp(-dx * dx * inv2s));
        }
    }
    for (int ux = w - 1; ux >= 0; --ux) // a column no full-size column falls in has an empty run
        runStart[std::size_t(ux)] = std::min(runStart[std::size_t(ux)], runStart[std::size_t(ux) + 1]);
    cv::parallel_for_(cv::Range(0, H), [&](const cv::Range& rows) {
        for (int Y = rows.start; Y < rows.end; ++Y) {
            const double v = (Y + 0.5) * sy - 0.5;
            const int vy = std::clamp(int(std::floor(v + 0.5)), 0, h - 1);
            float weightY[3];
            for (int k = 0; k < 3; ++k) {
                const double dy = v - (vy - 1 + k);
                weightY[k] = float(std::exp(-dy * dy * inv2s));
            }
            const uchar* labelRow = low.ptr<uchar>(vy);
            const uchar* edgeRow = edge.ptr<uchar>(vy);
            const uchar* pixels = full.constScanLine(Y);
            uchar* out = mask.scanLine(Y);
            for (int ux = 0; ux < w; ++ux) {
                const int from = runStart[std::size_t(ux)], to = runStart[std::size_t(ux) + 1];
                if (!edgeRow[ux]) {
                    std::memset(out + from, labelRow[ux] ? 255 : 0, std::size_t(to - from));
                    continue;
                }
                for (int X = from; X < to; ++X) {
                    const uchar* p = pixels + 4 * X;
                    float sum = 0.f, weight = 0.f;
                    for (int qy = std::max(0, vy - 1); qy <= std::min(h - 1, vy + 1); ++qy) {
                        const uchar* qLabel = low.ptr<uchar>(qy);
                        const uchar* qColour = lowBgr.ptr<uchar>(qy);
                        for (int qx = std::max(0, ux - 1); qx <= std::min(w - 1, ux + 1); ++qx) {
                            const uchar* c = qColour + 3 * qx;
                            const int db = p[0] - c[0], dg = p[1] - c[1], dr = p[2] - c[2];
                            const int d = db * db + dg * dg + dr * dr;
                            if (d >= colourSteps)
                                continue;
                            const float wq = weightY[qy - vy + 1] *
                                             weightX[std::size_t(X)][std::size_t(qx - ux + 1)] *
                                             colourWeight[std::size_t(d)];
                            sum += wq * qLabel[qx];
                            weight += wq;
                        }
                    }
                    out[X] =
                        weight > 1e-12f ? uchar(std::lround(255.f * sum / weight)) : (labelRow[ux] ? 255 : 0);
                }
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
        const SubjectPriors seeds = SubjectFinding::find(detection, working);
        if (seeds.empty())
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
