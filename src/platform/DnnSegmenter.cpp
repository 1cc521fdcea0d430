#include "platform/DnnSegmenter.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <mutex>
#include <opencv2/dnn.hpp>
#include <opencv2/imgproc.hpp>

namespace {

constexpr int defaultSide = 320;
// A mask whose values barely vary says nothing; one with almost no subject is no answer either.
constexpr double minimumSpread = 0.1;
constexpr double minimumForeground = 0.004;

int sideFromName(const QString& path) {
    static const QRegularExpression pattern(QStringLiteral("_(\\d{2,4})\\.onnx$"),
                                            QRegularExpression::CaseInsensitiveOption);
    const auto match = pattern.match(path);
    return match.hasMatch() ? match.captured(1).toInt() : defaultSide;
}

} // namespace

struct DnnSegmenter::Model {
    QString path;
    int side = defaultSide;
    mutable std::mutex lock;
    mutable cv::dnn::Net net;
};

DnnSegmenter::DnnSegmenter(std::unique_ptr<Model> model) : model_(std::move(model)) {}
DnnSegmenter::~DnnSegmenter() = default;

std::shared_ptr<DnnSegmenter> DnnSegmenter::load(const QString& path, QString* error) {
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return nullptr;
    };
    const QFileInfo info(path);
    if (!info.isFile())
        return fail(QStringLiteral("no such file"));
    // Real models run to hundreds of megabytes; anything beyond a gigabyte is not one we can hold.
    if (info.size() > (qint64(1) << 30))
        return fail(QStringLiteral("larger than 1 GiB"));
    auto model = std::make_unique<Model>();
    model->path = path;
    model->side = sideFromName(path);
    try {
        model->net = cv::dnn::readNetFromONNX(path.toStdString());
    } catch (const cv::Exception& e) {
        return fail(QString::fromStdString(e.msg).trimmed());
    }
    if (model->net.empty())
        return fail(QStringLiteral("OpenCV could not read it"));
    model->net.setPreferableBackend(cv::dnn::DNN_BACKEND_OPENCV);
    model->net.setPreferableTarget(cv::dnn::DNN_TARGET_CPU);
    return std::shared_ptr<DnnSegmenter>(new DnnSegmenter(std::move(model)));
}

QString DnnSegmenter::name() const {
    return QFileInfo(model_->path).fileName();
}

int DnnSegmenter::inputSide() const {
    return model_->side;
}

std::optional<QImage> DnnSegmenter::foregroundMask(const QImage& upright) const {
    if (upright.isNull())
        return std::nullopt;
    const QImage source = upright.depth() == 32 ? upright : upright.convertToFormat(QImage::Format_RGB32);
    try {
        const cv::Mat bgra(source.height(), source.width(), CV_8UC4, const_cast<uchar*>(source.constBits()),
                           static_cast<std::size_t>(source.bytesPerLine()));
        cv::Mat small, bgr;
        cv::resize(bgra, small, cv::Size(model_->side, model_->side), 0, 0, cv::INTER_AREA);
        cv::cvtColor(small, bgr, cv::COLOR_BGRA2RGB);
        cv::Mat input;
        bgr.convertTo(input, CV_32FC3, 1.0 / 255.0);
        cv::subtract(input, cv::Scalar(0.485, 0.456, 0.406), input);
        cv::divide(input, cv::Scalar(0.229, 0.224, 0.225), input);
        const cv::Mat blob = cv::dnn::blobFromImage(input);
        cv::Mat output;
        {
            std::lock_guard<std::mutex> guard(model_->lock);
            model_->net.setInput(blob);
            output = model_->net.forward().clone();
        }
        if (output.dims != 4 || output.size[2] < 1 || output.size[3] < 1)
            return std::nullopt;
        const cv::Mat plane(output.size[2], output.size[3], CV_32F, output.ptr<float>(0, 0));
        double lowest = 0, highest = 0;
        cv::minMaxLoc(plane, &lowest, &highest);
        if (!(highest - lowest >= minimumSpread))
            return std::nullopt;
        QImage mask(plane.cols, plane.rows, QImage::Format_Grayscale8);
        cv::Mat out(mask.height(), mask.width(), CV_8UC1, mask.bits(),
                    static_cast<std::size_t>(mask.bytesPerLine()));
        plane.convertTo(out, CV_8U, 255.0 / (highest - lowest), -lowest * 255.0 / (highest - lowest));
        if (cv::countNonZero(out > 127) < minimumForeground * out.total())
            return std::nullopt;
        return mask;
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
}
