#include "filters/CubeKernel.h"

#include "filters/CubeRows.h"
#include "platform/Dispatch.h"

#include <QThread>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace {

std::uint32_t toByte(float value) {
    return std::uint32_t(std::clamp(std::lround(double(value) * 255.0), 0L, 255L));
}

// Rows are handed out in chunks from a shared counter. The calling thread works too and waits only for
// chunks that were taken, never for a helper to start: helpers that start late find nothing left and
// leave, so a caller that is itself a pool thread cannot deadlock a busy pool.
struct RowJob {
    std::function<void(int, int)> work; // valid while chunks remain
    int rows = 0;
    int chunkRows = 0;
    int chunks = 0;
    std::atomic<int> next{0};
    std::atomic<int> finished{0};
    std::mutex mutex;
    std::condition_variable allFinished;

    void run() {
        for (;;) {
            const int chunk = next.fetch_add(1, std::memory_order_relaxed);
            if (chunk >= chunks)
                return;
            const int begin = chunk * chunkRows;
            work(begin, std::min(rows, begin + chunkRows));
            if (finished.fetch_add(1, std::memory_order_acq_rel) + 1 == chunks) {
                std::lock_guard lock(mutex);
                allFinished.notify_all();
            }
        }
    }
};

void forEachRowRange(int rows, std::int64_t pixelsPerRow, bool useWorkerPool,
                     const std::function<void(int, int)>& work) {
    // Below about a quarter megapixel the hand-over costs more than it saves.
    const int threads = std::min(Dispatch::workerCount(), std::max(1, QThread::idealThreadCount()));
    if (!useWorkerPool || threads < 2 || rows * pixelsPerRow < 250'000) {
        work(0, rows);
        return;
    }
    auto job = std::make_shared<RowJob>();
    job->work = work;
    job->rows = rows;
    // Several chunks per thread even out a thread that the system holds back.
    job->chunks = std::min(rows, threads * 8);
    job->chunkRows = (rows + job->chunks - 1) / job->chunks;
    job->chunks = (rows + job->chunkRows - 1) / job->chunkRows;
    for (int i = 1; i < threads; ++i)
        Dispatch::global(QualityOfService::userInitiated).async([job] { job->run(); });
    job->run();
    std::unique_lock lock(job->mutex);
    job->allFinished.wait(lock, [&] { return job->finished.load(std::memory_order_acquire) == job->chunks; });
}

} // namespace

std::shared_ptr<const PackedCube> packCube(const ColorCube& cube) {
    const int n = cube.dimension;
    if (n < 1 || cube.data.size() != std::size_t(n) * n * n * 4)
        return nullptr;
    auto packed = std::make_shared<PackedCube>();
    const auto entry = [&](std::size_t i) {
        const float* v = cube.data.data() + i * 4;
        return (toByte(v[3]) << 24) | (toByte(v[0]) << 16) | (toByte(v[1]) << 8) | toByte(v[2]);
    };
    if (n == 1) {
        // A single colour: the kernel interpolates inside a cell, so give it one cell of that colour.
        packed->dimension = 2;
        packed->entries.assign(8, entry(0));
    } else {
        packed->dimension = n;
        packed->entries.resize(std::size_t(n) * n * n);
        for (std::size_t i = 0; i < packed->entries.size(); ++i)
            packed->entries[i] = entry(i);
    }
    packed->opaque = std::all_of(packed->entries.begin(), packed->entries.end(),
                                 [](std::uint32_t e) { return (e >> 24) == 0xff; });
    return packed;
}

bool cpuHasAvx2() {
    static const bool has = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    }();
    return has;
}

namespace {

QImage::Format outputFormat(const PackedCube& cube, QImage::Format input) {
    return input == QImage::Format_RGB32 && cube.opaque ? QImage::Format_RGB32
                                                        : QImage::Format_ARGB32_Premultiplied;
}

} // namespace

void applyCube(const PackedCube& cube, const QImage& source, QImage& destination,
               const CubeApplyOptions& options) {
    if (source.isNull() || cube.dimension < 2 ||
        cube.entries.size() != std::size_t(cube.dimension) * cube.dimension * cube.dimension) {
        destination = QImage();
        return;
    }
    const QImage::Format format = outputFormat(cube, source.format());
    QImage input = source;
    if (source.format() == QImage::Format_RGB32 && format != QImage::Format_RGB32)
        input.reinterpretAsFormat(format); // the alpha bytes of RGB32 are 255: already premultiplied
    else if (source.format() != format)
        input = source.convertToFormat(format);
    if (input.isNull()) {
        destination = QImage();
        return;
    }
    if (destination.size() != input.size() || destination.format() != format || destination.isNull()) {
        destination = QImage(input.size(), format);
        if (destination.isNull())
            return;
    }
    const cuberows::PixelAlpha alpha =
        format == QImage::Format_RGB32 ? cuberows::PixelAlpha::opaque : cuberows::PixelAlpha::premultiplied;
    const bool avx2 = options.path != KernelPath::plain && cpuHasAvx2();
    const auto row = avx2 ? cuberows::avx2Row : cuberows::plainRow;
    const cuberows::CubeView view{cube.entries.data(), cube.dimension, cube.opaque};
    const cuberows::Interpolation interpolation = options.interpolation == CubeInterpolation::tetrahedral
                                                      ? cuberows::Interpolation::tetrahedral
                                                      : cuberows::Interpolation::trilinear;
    const int width = input.width();
    const QImage& in = input;
    uchar* const out = destination.bits(); // detaches once, here, not on a worker
    const qsizetype outStride = destination.bytesPerLine();
    forEachRowRange(input.height(), width, options.useWorkerPool, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            row(view, reinterpret_cast<const std::uint32_t*>(in.constScanLine(y)),
                reinterpret_cast<std::uint32_t*>(out + y * outStride), width, alpha, interpolation);
    });
}

QImage applyCube(const PackedCube& cube, const QImage& source, const CubeApplyOptions& options) {
    QImage destination;
    applyCube(cube, source, destination, options);
    return destination;
}
