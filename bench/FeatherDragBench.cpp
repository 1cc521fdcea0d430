#include "collage/CollageCanvasView.h"
#include "platform/Screen.h"

#include <QCoreApplication>
#include <QImage>
#include <QThread>
#include <benchmark/benchmark.h>
#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

std::vector<ImagePtr> eightPhotos() {
    std::vector<ImagePtr> photos;
    for (int i = 0; i < 8; ++i) {
        QImage image(1600, 1200, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(i * 40, 180, 200));
        photos.push_back(Image::make(image));
    }
    return photos;
}

// Main-thread time of one feather slider event on a canvas of 8 panes: the call that applies the
// values (cache lookups, cancelling and scheduling mask builds) plus the main-queue blocks that
// install the finished masks. The builds themselves run on workers and are not counted.
void BM_FeatherDragMainThread(benchmark::State& state) {
    Screen::main().setScale(3.0);
    CollageCanvasView canvas;
    canvas.resize(390, 520);
    canvas.configure(eightPhotos(), CollageLayoutOption::eightLayoutOne);
    while (canvas.hasPendingWork())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    canvas.selectPane(3);
    int step = 0;
    for (auto _ : state) {
        const double feather = step % 101;
        ++step;
        auto start = Clock::now();
        canvas.setSelectedPaneFeather(feather, 100 - feather);
        Clock::duration mainThread = Clock::now() - start;
        while (canvas.hasPendingWork()) {
            QThread::usleep(50);
            start = Clock::now();
            QCoreApplication::processEvents();
            mainThread += Clock::now() - start;
        }
        state.SetIterationTime(std::chrono::duration<double>(mainThread).count());
    }
}
BENCHMARK(BM_FeatherDragMainThread)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(303);

} // namespace
