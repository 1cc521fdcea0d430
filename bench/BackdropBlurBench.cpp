#include "collage/BackdropBlur.h"

#include <QImage>
#include <QPainter>
#include <benchmark/benchmark.h>
#include <cmath>
#include <opencv2/imgproc.hpp>

// A 12 MP camera photo behind a 400 × 600 point pane at 3×, at the editor's 35 % blur.
namespace {

constexpr double kScale = 3, kFraction = 0.35;
const QSizeF kPane(400, 600);

// A real photo enlarged once to 4000 × 3000; a painted stand-in if the samples are not installed.
const ImagePtr& photo() {
    static const ImagePtr image = [] {
        QImage source(QStringLiteral(LUMIVEX_SAMPLES_DIR "/fruits.jpg"));
        if (source.isNull()) {
            source = QImage(400, 300, QImage::Format_RGB32);
            QPainter painter(&source);
            painter.fillRect(source.rect(), QLinearGradient(0, 0, 400, 300));
            for (int i = 0; i < 60; ++i)
                painter.fillRect((i * 37) % 400, (i * 53) % 300, 25, 18,
                                 QColor::fromHsv(i * 23 % 360, 200, 220));
        }
        return Image::make(source.scaled(4000, 3000, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }();
    return image;
}

cv::Mat wrap(const QImage& image) {
    return cv::Mat(image.height(), image.width(), CV_8UC4, const_cast<uchar*>(image.constBits()),
                   static_cast<std::size_t>(image.bytesPerLine()));
}

// The aspect-fill window of the photo for the pane, centred.
cv::Rect fillWindow(const QSize& source, const QSize& pane) {
    const double fill =
        std::max(double(pane.width()) / source.width(), double(pane.height()) / source.height());
    const int w = std::min(source.width(), int(std::lround(pane.width() / fill)));
    const int h = std::min(source.height(), int(std::lround(pane.height() / fill)));
    return cv::Rect((source.width() - w) / 2, (source.height() - h) / 2, w, h);
}

const QSize kPanePixels(int(kPane.width() * kScale), int(kPane.height() * kScale));
const double kSigmaPixels = BackdropBlur::kFullRadius * kFraction * kScale;

void BM_BackdropBlur(benchmark::State& state) {
    const Image& source = *photo();
    for (auto _ : state)
        benchmark::DoNotOptimize(BackdropBlur::make(source, kPane, kScale, kFraction));
}
BENCHMARK(BM_BackdropBlur)->Unit(benchmark::kMillisecond);

// OpenCV done the usual way: area downscale to the pane's pixels, blur there. The result is already
// at the pane's pixel size, so the final enlargement to it is nothing.
void BM_BackdropBlurOpenCV(benchmark::State& state) {
    const QImage& bitmap = photo()->bitmap();
    const cv::Mat source = wrap(bitmap)(fillWindow(bitmap.size(), kPanePixels));
    for (auto _ : state) {
        cv::Mat small, blurred;
        cv::resize(source, small, cv::Size(kPanePixels.width(), kPanePixels.height()), 0, 0, cv::INTER_AREA);
        cv::GaussianBlur(small, blurred, cv::Size(0, 0), kSigmaPixels);
        benchmark::DoNotOptimize(blurred.data);
    }
}
BENCHMARK(BM_BackdropBlurOpenCV)->Unit(benchmark::kMillisecond);

// For reference, what the painter's later enlargement of the small result costs in OpenCV terms.
void BM_BackdropUpscale(benchmark::State& state) {
    const QImage small = BackdropBlur::make(*photo(), kPane, kScale, kFraction);
    const cv::Mat source = wrap(small);
    for (auto _ : state) {
        cv::Mat large;
        cv::resize(source, large, cv::Size(kPanePixels.width(), kPanePixels.height()), 0, 0,
                   cv::INTER_LINEAR);
        benchmark::DoNotOptimize(large.data);
    }
}
BENCHMARK(BM_BackdropUpscale)->Unit(benchmark::kMillisecond);

} // namespace
