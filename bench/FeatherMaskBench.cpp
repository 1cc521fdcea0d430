#include "collage/FeatherMask.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <vector>

// A full-screen pane on a 390 × 844 point screen at 3×, feather 25: the mask a slider drag asks for.
namespace {

constexpr double kWidth = 390, kHeight = 844, kScale = 3, kFeather = 25;

void BM_FeatherMask(benchmark::State& state) {
    const QSize size = FeatherMask::pixelSize(kWidth, kHeight, kScale);
    std::vector<uchar> buffer(std::size_t(size.width()) * size.height());
    for (auto _ : state) {
        FeatherMask::render(buffer.data(), size.width(), size.width(), size.height(), kFeather * kScale,
                            kFeather * kScale);
        benchmark::DoNotOptimize(buffer.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(buffer.size()));
}
BENCHMARK(BM_FeatherMask);

// The floor: writing the same bytes with nothing to compute.
void BM_WriteFloor(benchmark::State& state) {
    const QSize size = FeatherMask::pixelSize(kWidth, kHeight, kScale);
    std::vector<uchar> buffer(std::size_t(size.width()) * size.height());
    int value = 0;
    for (auto _ : state) {
        std::memset(buffer.data(), ++value & 0xFF, buffer.size());
        benchmark::DoNotOptimize(buffer.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(buffer.size()));
}
BENCHMARK(BM_WriteFloor);

// The whole image as the cache stores it, allocation included, for reference.
void BM_FeatherMaskImage(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(FeatherMask::make(kWidth, kHeight, kFeather, kFeather, kScale));
}
BENCHMARK(BM_FeatherMaskImage)->Unit(benchmark::kMillisecond);

} // namespace
