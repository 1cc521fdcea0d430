#include "platform/Vision.h"

#include <QFileInfo>
#include <QtGlobal>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>
#include <string>

// The bitmap's 32-bit pixels are read as B, G, R, A bytes.
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN);

namespace {

// Faces are looked for on a copy with this longer side. The model's window is 20 pixels, so the smallest
// faces looked for (32 pixels here) are seen a pyramid step or two above the model's own size, which
// finds them more surely than a smaller copy where they would just fill the window.
constexpr int workingSide = 640;
// People are looked for on a smaller copy still. The people window is 128 pixels tall, so a person must
// fill about a quarter of the longer side to be seen, which a subject worth centring on does; this
// halves the people pass, and a smaller copy (400) already misses the man in our basketball photo.
constexpr int peopleSide = 480;

// People: a window must score above hitThreshold, and a place needs more than groupThreshold overlapping
// windows. Together they drop the lone hits that textures, circuit boards and blurred cars give (scores up
// to about 0.6) while people standing in a room or a street score about 0.9 to 2.
constexpr double hogHitThreshold = 0.5;
constexpr double hogGroupThreshold = 2.0;
// A step of 10 % between pyramid levels instead of 5 % halves the levels; the windows overlap enough at
// either step that the same people are found on every photo we test against.
constexpr double hogScaleStep = 1.1;
const cv::Size hogStride(8, 8);
// Lets a person cut by the picture's edge still fill a window.
const cv::Size hogPadding(8, 8);

// Faces: of the stock frontal models, "alt" with four neighbours kept every face in our test photos and
// gave no false face on several dozen pictures of fruit, buildings, boards and paintings, where "default"
// and "alt2" saw faces in a football shirt, a sudoku grid, playing cards and brush strokes.
constexpr const char* faceCascadeFile = "haarcascade_frontalface_alt.xml";
// The face pass is the dearest part of taking in a photo. Steps of 20 % scan about half the pixels that
// 10 % did and still find every test face (the LBP models, three times faster again, lose some of them).
constexpr double faceScaleStep = 1.2;
constexpr int faceMinNeighbours = 4;
// Most of the pass goes on the smallest faces, which fill the most windows. A face narrower than a
// twentieth of the photo is a face in a crowd or a landscape, not a subject to centre a pane on, and
// leaving those out takes about 40 % off the pass.
constexpr double faceMinFraction = 0.05;

#ifdef LUMIVEX_OPENCV_DATA_DIR
constexpr const char* builtInDataDir = LUMIVEX_OPENCV_DATA_DIR;
#else
constexpr const char* builtInDataDir = "/usr/share/opencv4";
#endif

cv::Mat matOf(const QImage& grey) {
    return cv::Mat(grey.height(), grey.width(), CV_8UC1, const_cast<uchar*>(grey.constBits()),
                   static_cast<size_t>(grey.bytesPerLine()));
}

// The same turns Image::uprightBitmap applies: mirror or flip first, then a quarter turn clockwise.
cv::Mat upright(const cv::Mat& stored, ImageOrientation orientation) {
    cv::Mat out;
    switch (orientation) {
    case ImageOrientation::up:
        return stored;
    case ImageOrientation::down:
        cv::rotate(stored, out, cv::ROTATE_180);
        return out;
    case ImageOrientation::left:
        cv::rotate(stored, out, cv::ROTATE_90_COUNTERCLOCKWISE);
        return out;
    case ImageOrientation::right:
        cv::rotate(stored, out, cv::ROTATE_90_CLOCKWISE);
        return out;
    case ImageOrientation::upMirrored:
        cv::flip(stored, out, 1);
        return out;
    case ImageOrientation::downMirrored:
        cv::flip(stored, out, 0);
        return out;
    case ImageOrientation::leftMirrored:
        cv::flip(stored, out, 0);
        cv::rotate(out, out, cv::ROTATE_90_CLOCKWISE);
        return out;
    case ImageOrientation::rightMirrored:
        cv::flip(stored, out, 1);
        cv::rotate(out, out, cv::ROTATE_90_CLOCKWISE);
        return out;
    }
    return stored;
}

// `image` averaged down to `side` pixels on its longer side, or itself when it is no larger. Averaging by
// a whole factor takes OpenCV's fast path, about twice as quick on a camera photo as one general pass,
// so most of the way is made by the largest whole factor that keeps the picture at least `side`, and
// only the rest the general way on a picture many times smaller. The picture is the same to within a
// grey level or so on average.
cv::Mat shrunk(const cv::Mat& image, int side) {
    const int longer = std::max(image.cols, image.rows);
    if (longer <= side)
        return image;
    const double scale = double(side) / longer;
    const cv::Size size(std::max(1, int(std::lround(image.cols * scale))),
                        std::max(1, int(std::lround(image.rows * scale))));
    const int factor = longer / side;
    cv::Mat coarse = image;
    if (factor >= 2) {
        // Trimmed to a multiple of the factor, centred: less than one coarse pixel lost at the edges.
        const int w = image.cols / factor * factor;
        const int h = image.rows / factor * factor;
        cv::resize(image(cv::Rect((image.cols - w) / 2, (image.rows - h) / 2, w, h)), coarse,
                   cv::Size(w / factor, h / factor), 0, 0, cv::INTER_AREA);
    }
    cv::Mat out;
    cv::resize(coarse, out, size, 0, 0, cv::INTER_AREA);
    return out;
}

QImage workingCopy(const QImage& bitmap, ImageOrientation orientation) {
    if (bitmap.isNull() || bitmap.width() <= 0 || bitmap.height() <= 0)
        return {};
    QImage source = bitmap;
    if (source.format() != QImage::Format_RGB32 && source.format() != QImage::Format_ARGB32 &&
        source.format() != QImage::Format_ARGB32_Premultiplied)
        source = source.convertToFormat(QImage::Format_RGB32);
    try {
        const cv::Mat bgra(source.height(), source.width(), CV_8UC4, const_cast<uchar*>(source.constBits()),
                           static_cast<size_t>(source.bytesPerLine()));
        // Shrink before dropping colour: the full-size grey buffer would be the largest allocation here.
        const cv::Mat small = shrunk(bgra, workingSide);
        cv::Mat grey;
        cv::cvtColor(small, grey, cv::COLOR_BGRA2GRAY);
        const cv::Mat turned = upright(grey, orientation);

        QImage result(turned.cols, turned.rows, QImage::Format_Grayscale8);
        if (result.isNull())
            return {};
        for (int y = 0; y < turned.rows; ++y)
            std::memcpy(result.scanLine(y), turned.ptr(y), static_cast<size_t>(turned.cols));
        return result;
    } catch (const cv::Exception&) {
        return {};
    }
}

// Pixel rectangle in the working copy (top-left origin) to the normalised, bottom-left-origin box.
std::optional<QRectF> normalised(const cv::Rect& rect, const cv::Size& size) {
    const cv::Rect clipped = rect & cv::Rect(0, 0, size.width, size.height);
    if (clipped.empty())
        return std::nullopt;
    const double w = size.width;
    const double h = size.height;
    return QRectF(clipped.x / w, 1.0 - (clipped.y + clipped.height) / h, clipped.width / w,
                  clipped.height / h);
}

cv::HOGDescriptor& peopleDetector() {
    struct Detector {
        cv::HOGDescriptor hog;
        Detector() { hog.setSVMDetector(cv::HOGDescriptor::getDefaultPeopleDetector()); }
    };
    thread_local Detector detector;
    return detector.hog;
}

} // namespace

VisionRequestHandler::VisionRequestHandler(const Image& image)
    : VisionRequestHandler(image.bitmap(), image.orientation()) {}

VisionRequestHandler::VisionRequestHandler(const QImage& bitmap, ImageOrientation orientation)
    : grey_(workingCopy(bitmap, orientation)) {}

std::optional<std::vector<VisionObservation>> VisionRequestHandler::detectHumanRectangles() const {
    if (grey_.isNull())
        return std::nullopt;
    try {
        cv::HOGDescriptor& hog = peopleDetector();
        const cv::Mat grey = shrunk(matOf(grey_), peopleSide);
        std::vector<VisionObservation> result;
        // No window fits, and the detector does not guard against that itself.
        if (grey.cols < hog.winSize.width || grey.rows < hog.winSize.height)
            return result;
        std::vector<cv::Rect> found;
        std::vector<double> scores;
        hog.detectMultiScale(grey, found, scores, hogHitThreshold, hogStride, hogPadding, hogScaleStep,
                             hogGroupThreshold);
        for (std::size_t i = 0; i < found.size(); ++i) {
            // The window keeps a margin around the body; trim it so the box holds the person.
            cv::Rect body = found[i];
            body.x += int(std::lround(body.width * 0.1));
            body.y += int(std::lround(body.height * 0.07));
            body.width = int(std::lround(body.width * 0.8));
            body.height = int(std::lround(body.height * 0.8));
            const auto box = normalised(body, grey.size());
            if (!box)
                continue;
            const double score = i < scores.size() ? scores[i] : hogHitThreshold;
            result.push_back({*box, 1.0 / (1.0 + std::exp(-score))});
        }
        return result;
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
}

std::optional<std::vector<VisionObservation>> VisionRequestHandler::detectFaceRectangles() const {
    if (grey_.isNull())
        return std::nullopt;
    try {
        cv::CascadeClassifier* cascade = Vision::stockCascade(faceCascadeFile);
        if (!cascade)
            return std::nullopt;
        const cv::Mat grey = matOf(grey_);
        const cv::Size window = cascade->getOriginalWindowSize();
        const int minSide = std::max({window.width, window.height,
                                      int(std::lround(faceMinFraction * std::max(grey.cols, grey.rows)))});
        std::vector<VisionObservation> result;
        if (grey.cols < minSide || grey.rows < minSide)
            return result;
        // Stretches the contrast of dim and backlit photos, whose faces are otherwise too flat for the model.
        cv::Mat equalised;
        cv::equalizeHist(grey, equalised);
        std::vector<cv::Rect> faces;
        std::vector<int> neighbours;
        cascade->detectMultiScale(equalised, faces, neighbours, faceScaleStep, faceMinNeighbours, 0,
                                  cv::Size(minSide, minSide));
        for (std::size_t i = 0; i < faces.size(); ++i) {
            const auto box = normalised(faces[i], grey.size());
            if (!box)
                continue;
            const double n = i < neighbours.size() ? neighbours[i] : faceMinNeighbours;
            result.push_back({*box, n / (n + faceMinNeighbours)});
        }
        return result;
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
}

namespace Vision {

std::optional<QRectF> largestBox(const std::vector<VisionObservation>& observations) {
    std::optional<QRectF> best;
    double bestArea = 0.0;
    for (const auto& observation : observations) {
        const double area = observation.boundingBox.width() * observation.boundingBox.height();
        if (!best || area > bestArea) {
            best = observation.boundingBox;
            bestArea = area;
        }
    }
    return best;
}

cv::CascadeClassifier* stockCascade(const char* fileName) {
    struct Loaded {
        std::string path;
        cv::CascadeClassifier cascade;
    };
    thread_local std::map<std::string, Loaded> loaded;
    QString dir = qEnvironmentVariable(VisionRequestHandler::dataDirVariable);
    if (dir.isEmpty())
        dir = QString::fromUtf8(builtInDataDir);
    const std::string path =
        (dir + QStringLiteral("/haarcascades/") + QString::fromUtf8(fileName)).toStdString();
    Loaded& entry = loaded[fileName];
    if (entry.path == path && !entry.cascade.empty())
        return &entry.cascade;
    entry.path.clear();
    entry.cascade = cv::CascadeClassifier();
    if (!QFileInfo(QString::fromStdString(path)).isFile() || !entry.cascade.load(path))
        return nullptr;
    entry.path = path;
    return &entry.cascade;
}

} // namespace Vision
