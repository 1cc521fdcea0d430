#include "mixer/BackgroundRemover.h"

#include <QImage>
#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

// Background removal of a 12 MP photo, against GrabCut alone on the working copy; the mask steps of the
// cut-out against the same steps in OpenCV.
namespace {

// The football photo brought to 12 MP, keeping its shape.
const ImagePtr& photo() {
    static const ImagePtr image =
        Image::make(QImage(QStringLiteral(LUMIVEX_SAMPLES_DIR "/messi5.jpg"))
                        .scaled(4384, 2736, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                        .convertToFormat(QImage::Format_RGB32));
    return image;
}

// End to end: subjects found, GrabCut on the working copy, the edge refined at full size, the cut-out.
void BM_RemoveBackground12MP(benchmark::State& state) {
    const BackgroundRemover remover(std::make_shared<GrabCutSegmenter>());
    for (auto _ : state) {
        ImagePtr cut = remover.removeBackground(*photo());
        if (!cut)
            state.SkipWithError("no cut-out");
        benchmark::DoNotOptimize(cut);
    }
}
BENCHMARK(BM_RemoveBackground12MP)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

// The yardstick: plain cv::grabCut, 3 iterations from a rectangle around the player, on the working copy
// (320 pixels on the longer side, as ours) made once outside the loop.
void BM_GrabCutOpenCV(benchmark::State& state) {
    const QImage& full = photo()->bitmap();
    const cv::Mat bgra(full.height(), full.width(), CV_8UC4, const_cast<uchar*>(full.constBits()),
                       std::size_t(full.bytesPerLine()));
    cv::Mat small, bgr;
    cv::resize(
        bgra, small,
        cv::Size(GrabCutSegmenter::workingSide, GrabCutSegmenter::workingSide * full.height() / full.width()),
        0, 0, cv::INTER_AREA);
    cv::cvtColor(small, bgr, cv::COLOR_BGRA2BGR);
    // The player spans about x 69…455 and y 62…335 of the 548 × 342 photo.
    const double s = double(bgr.cols) / 548.0;
    const cv::Rect rect(int(60 * s), int(55 * s), int(400 * s), int(285 * s));
    for (auto _ : state) {
        cv::Mat mask, background, foreground;
        cv::grabCut(bgr, mask, rect & cv::Rect(0, 0, bgr.cols, bgr.rows), background, foreground, 3,
                    cv::GC_INIT_WITH_RECT);
        benchmark::DoNotOptimize(mask.data);
    }
}
BENCHMARK(BM_GrabCutOpenCV)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

// A mask a quarter of the photo's side, as a model gives one.
QImage quarterMask() {
    QImage mask(photo()->pixelSize() / 4, QImage::Format_Grayscale8);
    mask.fill(0);
    for (int y = mask.height() / 5; y < mask.height() * 4 / 5; ++y)
        for (int x = mask.width() / 4 + (y % 7); x < mask.width() * 3 / 4; ++x)
            mask.scanLine(y)[x] = 255;
    return mask;
}

// Stretch to 12 MP, clamp, blur 0.8, erode 1, into a buffer kept from one run to the next.
void BM_CutoutMask(benchmark::State& state) {
    const QImage mask = quarterMask();
    QImage out;
    for (auto _ : state) {
        BackgroundRemover::prepareMask(mask, photo()->pixelSize(), out);
        benchmark::DoNotOptimize(out.constBits());
    }
}
BENCHMARK(BM_CutoutMask)->Unit(benchmark::kMillisecond)->UseRealTime();

// The same steps written in OpenCV in the ordinary way, with its buffers kept as well.
void BM_CutoutMaskOpenCV(benchmark::State& state) {
    const QImage maskImage = quarterMask();
    const cv::Mat mask(maskImage.height(), maskImage.width(), CV_8UC1,
                       const_cast<uchar*>(maskImage.constBits()), std::size_t(maskImage.bytesPerLine()));
    const cv::Size size(photo()->pixelSize().width(), photo()->pixelSize().height());
    cv::Mat stretched, blurred, eroded;
    const cv::Mat window = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(3, 3));
    for (auto _ : state) {
        cv::resize(mask, stretched, size, 0, 0, cv::INTER_LINEAR);
        cv::GaussianBlur(stretched, blurred, cv::Size(0, 0), 0.8);
        cv::erode(blurred, eroded, window);
        benchmark::DoNotOptimize(eroded.data);
    }
}
BENCHMARK(BM_CutoutMaskOpenCV)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
