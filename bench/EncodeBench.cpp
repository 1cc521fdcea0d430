#include "platform/Image.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <benchmark/benchmark.h>
#include <opencv2/imgcodecs.hpp>
#include <turbojpeg.h>
#include <vector>

// Writing pictures: a 12 MP photo to JPEG as the album does, against TurboJPEG on the same RGB pixels at
// the same quality and subsampling; a phone-sized canvas with transparent corners to PNG, against
// OpenCV's imencode at compression 1. Both sides report the bytes they produced, so a faster encoder
// cannot hide a worse file.
namespace {

constexpr int kPhotoWidth = 4000, kPhotoHeight = 3000;
constexpr int kCanvasWidth = 1170, kCanvasHeight = 2532;
constexpr double kAlbumQuality = 0.9; // what the album write uses

QImage sample(const char* name) {
    const QImage image(QStringLiteral(LUMIVEX_SAMPLES_DIR "/") + QString::fromLatin1(name));
    if (image.isNull())
        qFatal("sample photo %s is missing", name);
    return image;
}

const ImagePtr& photo() {
    static const ImagePtr image =
        Image::make(sample("fruits.jpg")
                        .scaled(kPhotoWidth, kPhotoHeight, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                        .convertToFormat(QImage::Format_RGB32));
    return image;
}

void drawCovering(QPainter& painter, const QRectF& box, const QImage& picture) {
    const QSizeF covered = QSizeF(picture.size()).scaled(box.size(), Qt::KeepAspectRatioByExpanding);
    painter.drawImage(QRectF(box.center() - QPointF(covered.width(), covered.height()) / 2, covered),
                      picture);
}

// Laid out like a saved collage: a painted backdrop with rounded corners outside which nothing is drawn,
// four photos in rounded panes, a translucent caption band and a soft glow, as the canvas renders them.
const ImagePtr& canvas() {
    static const ImagePtr image = [] {
        QImage bitmap(kCanvasWidth, kCanvasHeight, QImage::Format_ARGB32_Premultiplied);
        bitmap.fill(Qt::transparent);
        QPainter painter(&bitmap);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        const QRectF whole(0, 0, kCanvasWidth, kCanvasHeight);
        QPainterPath outline;
        outline.addRoundedRect(whole, 90, 90);
        painter.setClipPath(outline);
        drawCovering(painter, whole, sample("starry_night.jpg"));
        QLinearGradient shade(0, 0, 0, kCanvasHeight);
        shade.setColorAt(0, QColor(255, 255, 255, 60));
        shade.setColorAt(1, QColor(20, 10, 40, 140));
        painter.fillRect(whole, shade);

        const char* const photos[] = {"fruits.jpg", "baboon.jpg", "HappyFish.jpg", "building.jpg"};
        const double margin = 36, width = (kCanvasWidth - 3 * margin) / 2, height = 900;
        for (int i = 0; i < 4; ++i) {
            const QRectF pane(margin + (i % 2) * (width + margin), 180 + (i / 2) * (height + margin), width,
                              height);
            QPainterPath rounded;
            rounded.addRoundedRect(pane, 40, 40);
            painter.save();
            painter.setClipPath(rounded, Qt::IntersectClip);
            drawCovering(painter, pane, sample(photos[i]));
            painter.restore();
        }
        painter.fillRect(QRectF(0, 2100, kCanvasWidth, 220), QColor(255, 255, 255, 150));
        QFont font = painter.font();
        font.setPixelSize(120);
        painter.setFont(font);
        painter.setPen(QColor(40, 30, 60));
        painter.drawText(QRectF(0, 2100, kCanvasWidth, 220), Qt::AlignCenter, QStringLiteral("Summer days"));
        QRadialGradient glow(QPointF(900, 120), 160);
        glow.setColorAt(0, QColor(255, 230, 120, 230));
        glow.setColorAt(1, QColor(255, 230, 120, 0));
        painter.setBrush(glow);
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(QPointF(900, 120), 160, 160);
        painter.end();
        return Image::make(std::move(bitmap));
    }();
    return image;
}

void BM_EncodeJpeg12MP(benchmark::State& state) {
    const ImagePtr& image = photo();
    qsizetype bytes = 0;
    for (auto _ : state) {
        const QByteArray jpeg = image->jpegData(kAlbumQuality);
        bytes = jpeg.size();
        benchmark::DoNotOptimize(jpeg.constData());
    }
    if (bytes == 0)
        state.SkipWithError("no JPEG");
    state.counters["bytes"] = double(bytes);
}
BENCHMARK(BM_EncodeJpeg12MP)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_EncodeJpegTurbo(benchmark::State& state) {
    const QImage rgb = photo()->bitmap().convertToFormat(QImage::Format_RGB888);
    tjhandle handle = tjInitCompress();
    unsigned long bytes = 0;
    for (auto _ : state) {
        unsigned char* jpeg = nullptr;
        if (tjCompress2(handle, rgb.constBits(), rgb.width(), int(rgb.bytesPerLine()), rgb.height(), TJPF_RGB,
                        &jpeg, &bytes, TJSAMP_420, int(kAlbumQuality * 100), 0) != 0)
            state.SkipWithError(tjGetErrorStr2(handle));
        benchmark::DoNotOptimize(jpeg);
        tjFree(jpeg);
    }
    tjDestroy(handle);
    state.counters["bytes"] = double(bytes);
}
BENCHMARK(BM_EncodeJpegTurbo)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_EncodePngCanvas(benchmark::State& state) {
    const ImagePtr& image = canvas();
    qsizetype bytes = 0;
    for (auto _ : state) {
        const QByteArray png = image->pngData();
        bytes = png.size();
        benchmark::DoNotOptimize(png.constData());
    }
    if (bytes == 0)
        state.SkipWithError("no PNG");
    state.counters["bytes"] = double(bytes);
}
BENCHMARK(BM_EncodePngCanvas)->Unit(benchmark::kMillisecond)->UseRealTime();

// OpenCV gets the pixels already unpremultiplied, in its BGRA order; only the encode is timed.
void BM_EncodePngOpenCV(benchmark::State& state) {
    const QImage straight = canvas()->bitmap().convertToFormat(QImage::Format_ARGB32);
    const cv::Mat bgra(straight.height(), straight.width(), CV_8UC4, const_cast<uchar*>(straight.constBits()),
                       std::size_t(straight.bytesPerLine()));
    const std::vector<int> params{cv::IMWRITE_PNG_COMPRESSION, 1};
    std::size_t bytes = 0;
    for (auto _ : state) {
        std::vector<uchar> png;
        if (!cv::imencode(".png", bgra, png, params))
            state.SkipWithError("imencode failed");
        bytes = png.size();
        benchmark::DoNotOptimize(png.data());
    }
    state.counters["bytes"] = double(bytes);
}
BENCHMARK(BM_EncodePngOpenCV)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
