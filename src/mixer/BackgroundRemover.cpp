#include "mixer/BackgroundRemover.h"

#include "platform/ImageFilters.h"

#include <opencv2/imgproc.hpp>

namespace {
constexpr double kEdgeBlurRadius = 0.8;
constexpr int kErodeRadius = 1;

// One segmenter for the whole run: loading a model is dear, and the choice is logged once.
std::shared_ptr<const ForegroundSegmenter> sharedSegmenter() {
    static const std::shared_ptr<const ForegroundSegmenter> segmenter =
        ForegroundSegmentation::makeSegmenter();
    return segmenter;
}
} // namespace

BackgroundRemover::BackgroundRemover() : BackgroundRemover(sharedSegmenter()) {}

BackgroundRemover::BackgroundRemover(std::shared_ptr<const ForegroundSegmenter> segmenter)
    : segmenter_(std::move(segmenter)) {}

ImagePtr BackgroundRemover::removeBackground(const Image& image) const {
    if (image.bitmap().isNull())
        return nullptr;
    const auto mask = segmenter_->foregroundMask(image.bitmap());
    if (!mask)
        return nullptr;
    return cutout(image, std::move(*mask));
}

QImage BackgroundRemover::preparedMask(const QImage& mask, const QSize& size) {
    QImage out;
    prepareMask(mask, size, out);
    return out;
}

void BackgroundRemover::prepareMask(const QImage& mask, const QSize& size, QImage& out) {
    if (mask.isNull() || size.isEmpty()) {
        out = QImage();
        return;
    }
    thread_local cv::Mat scratch;
    const cv::Mat window =
        cv::getStructuringElement(cv::MORPH_RECT, cv::Size(2 * kErodeRadius + 1, 2 * kErodeRadius + 1));
    if (&mask == &out && mask.size() == size && mask.format() == QImage::Format_Grayscale8) {
        cv::Mat work(out.height(), out.width(), CV_8UC1, out.bits(), std::size_t(out.bytesPerLine()));
        cv::GaussianBlur(work, scratch, cv::Size(0, 0), kEdgeBlurRadius, kEdgeBlurRadius,
                         cv::BORDER_REFLECT_101);
        cv::erode(scratch, work, window, cv::Point(-1, -1), 1, cv::BORDER_REFLECT_101);
        return;
    }
    const QImage grey =
        mask.format() == QImage::Format_Grayscale8 ? mask : mask.convertToFormat(QImage::Format_Grayscale8);
    if (out.size() != size || out.format() != QImage::Format_Grayscale8)
        out = QImage(size, QImage::Format_Grayscale8);
    if (out.isNull())
        return;
    const cv::Mat in(grey.height(), grey.width(), CV_8UC1, const_cast<uchar*>(grey.constBits()),
                     std::size_t(grey.bytesPerLine()));
    cv::Mat work(out.height(), out.width(), CV_8UC1, out.bits(), std::size_t(out.bytesPerLine()));
    // The steps go back and forth between the caller's buffer and one of this thread's own, kept from
    // one cut-out to the next: working in place would make OpenCV copy the picture each time.
    scratch.create(work.size(), CV_8UC1);
    // Stretched per axis, so a mask of another shape still covers the picture. An 8-bit mask cannot
    // leave 0…255, so the clamp a floating-point pipeline needs here is already done by its type.
    const cv::Mat* stretched = &in;
    if (grey.size() != size) {
        cv::resize(in, work, work.size(), 0, 0, cv::INTER_LINEAR);
        stretched = &work;
    }
    // Softened first, then eroded: the soft edge moves one pixel into the subject and nothing sharpens
    // it again. Both keep the picture's size (edges reflected), so nothing needs cropping back.
    cv::GaussianBlur(*stretched, scratch, cv::Size(0, 0), kEdgeBlurRadius, kEdgeBlurRadius,
                     cv::BORDER_REFLECT_101);
    cv::erode(scratch, work, window, cv::Point(-1, -1), 1, cv::BORDER_REFLECT_101);
}

ImagePtr BackgroundRemover::cutout(const Image& image, QImage mask) {
    if (image.bitmap().isNull() || mask.isNull())
        return nullptr;
    // A mask of the picture's own size is prepared in its own pixels: one 12 MP buffer less to fault in.
    prepareMask(mask, image.pixelSize(), mask);
    const QImage blended = ImageFilters::blendWithMaskOverClear(image.bitmap(), mask);
    if (blended.isNull())
        return nullptr;
    return Image::make(blended, image.scale(), image.orientation());
}
