#include "filters/ColorLookup.h"
#include "filters/CubeKernel.h"
#include "filters/LookCubeCache.h"
#include "platform/Assets.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <memory>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
#include <libavutil/opt.h>
}

// One look (a real 64-cube from the assets) on a 12 MP photo, against FFmpeg's lut3d filter with the same
// cube, the same pixels and trilinear interpolation, both on one thread.
namespace {

constexpr int kWidth = 4000, kHeight = 3000;
const char* const kLook = "Chemical";

const QImage& photo() {
    static const QImage image = [] {
        const QImage source(QStringLiteral(LUMIVEX_SAMPLES_DIR "/fruits.jpg"));
        if (source.isNull())
            qFatal("sample photo fruits.jpg is missing");
        return source.scaled(kWidth, kHeight, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
    }();
    return image;
}

const ColorCube& cube() {
    static const ColorCube cube = [] {
        const ImagePtr picture = Assets::image(QString::fromLatin1(kLook));
        const auto read = picture ? filterWithLookupImage(picture->bitmap(), lookDimension) : std::nullopt;
        if (!read)
            qFatal("lookup picture %s is missing or invalid", kLook);
        return *read;
    }();
    return cube;
}

const PackedCube& packed() {
    static const std::shared_ptr<const PackedCube> p = packCube(cube());
    return *p;
}

void runKernel(benchmark::State& state, const CubeApplyOptions& options) {
    QImage destination(photo().size(), photo().format());
    applyCube(packed(), photo(), destination, options); // fault the buffer in before timing
    for (auto _ : state) {
        applyCube(packed(), photo(), destination, options);
        benchmark::DoNotOptimize(destination.constBits());
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(kWidth) * kHeight);
}

void BM_ApplyLook12MP(benchmark::State& state) {
    runKernel(state, {CubeInterpolation::trilinear, KernelPath::automatic, false});
}
BENCHMARK(BM_ApplyLook12MP)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_ApplyLook12MPTetrahedral(benchmark::State& state) {
    runKernel(state, {CubeInterpolation::tetrahedral, KernelPath::automatic, false});
}
BENCHMARK(BM_ApplyLook12MPTetrahedral)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_ApplyLook12MPPlain(benchmark::State& state) {
    runKernel(state, {CubeInterpolation::trilinear, KernelPath::plain, false});
}
BENCHMARK(BM_ApplyLook12MPPlain)->Unit(benchmark::kMillisecond)->UseRealTime();

// The whole worker pool with the calling thread.
void BM_ApplyLook12MPPool(benchmark::State& state) {
    runKernel(state, {CubeInterpolation::trilinear, KernelPath::automatic, true});
}
BENCHMARK(BM_ApplyLook12MPPool)->Unit(benchmark::kMillisecond)->UseRealTime();

// The cube as an Iridas .cube file, red fastest, which is what lut3d reads.
QString writeCubeFile(const QTemporaryDir& dir) {
    const QString path = dir.filePath("look.cube");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        qFatal("cannot write %s", qPrintable(path));
    const ColorCube& c = cube();
    file.write(QByteArray("LUT_3D_SIZE ") + QByteArray::number(c.dimension) + "\n");
    char line[64];
    for (std::size_t i = 0; i < c.data.size(); i += 4) {
        const int length = std::snprintf(line, sizeof line, "%.7f %.7f %.7f\n", double(c.data[i]),
                                         double(c.data[i + 1]), double(c.data[i + 2]));
        file.write(line, length);
    }
    return path;
}

struct GraphDeleter {
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
};
struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

void BM_ApplyLookFFmpeg(benchmark::State& state) {
    const QTemporaryDir dir;
    const QString cubePath = writeCubeFile(dir);
    std::unique_ptr<AVFilterGraph, GraphDeleter> graph(avfilter_graph_alloc());
    graph->nb_threads = 1;
    AVFilterContext *source = nullptr, *lut = nullptr, *sink = nullptr;
    const QByteArray sourceArgs =
        QStringLiteral("video_size=%1x%2:pix_fmt=%3:time_base=1/25:pixel_aspect=1/1")
            .arg(kWidth)
            .arg(kHeight)
            .arg(int(AV_PIX_FMT_BGRA))
            .toUtf8();
    const QByteArray lutArgs = "file='" + cubePath.toUtf8() + "':interp=trilinear";
    if (avfilter_graph_create_filter(&source, avfilter_get_by_name("buffer"), "in", sourceArgs.constData(),
                                     nullptr, graph.get()) < 0 ||
        avfilter_graph_create_filter(&lut, avfilter_get_by_name("lut3d"), "lut", lutArgs.constData(), nullptr,
                                     graph.get()) < 0 ||
        avfilter_graph_create_filter(&sink, avfilter_get_by_name("buffersink"), "out", nullptr, nullptr,
                                     graph.get()) < 0 ||
        avfilter_link(source, 0, lut, 0) < 0 || avfilter_link(lut, 0, sink, 0) < 0 ||
        avfilter_graph_config(graph.get(), nullptr) < 0) {
        state.SkipWithError("could not build the lut3d graph");
        return;
    }

    std::unique_ptr<AVFrame, FrameDeleter> input(av_frame_alloc()), output(av_frame_alloc());
    input->format = AV_PIX_FMT_BGRA;
    input->width = kWidth;
    input->height = kHeight;
    av_frame_get_buffer(input.get(), 64);
    for (int y = 0; y < kHeight; ++y)
        std::memcpy(input->data[0] + y * input->linesize[0], photo().constScanLine(y),
                    std::size_t(kWidth) * 4);

    std::int64_t pts = 0;
    const auto pass = [&] {
        input->pts = pts++;
        // Keeping our reference leaves the input unwritable, so lut3d writes into a pooled frame as the
        // kernel writes into its reused buffer.
        return av_buffersrc_add_frame_flags(source, input.get(), AV_BUFFERSRC_FLAG_KEEP_REF) >= 0 &&
               av_buffersink_get_frame(sink, output.get()) >= 0;
    };
    if (!pass()) {
        state.SkipWithError("lut3d gave no frame");
        return;
    }
    // Same pixels, same cube: the two results must agree, or the comparison means nothing.
    QImage ours(photo().size(), photo().format());
    applyCube(packed(), photo(), ours, {CubeInterpolation::trilinear, KernelPath::automatic, false});
    int worst = 0;
    for (int y = 0; y < kHeight; ++y) {
        const uchar* a = output->data[0] + y * output->linesize[0];
        const uchar* b = ours.constScanLine(y);
        for (int x = 0; x < kWidth * 4; ++x)
            worst = std::max(worst, std::abs(int(a[x]) - int(b[x])));
    }
    av_frame_unref(output.get());
    state.counters["max_diff_levels"] = worst;

    for (auto _ : state) {
        if (!pass()) {
            state.SkipWithError("lut3d gave no frame");
            return;
        }
        benchmark::DoNotOptimize(output->data[0]);
        av_frame_unref(output.get());
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(kWidth) * kHeight);
}
BENCHMARK(BM_ApplyLookFFmpeg)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
