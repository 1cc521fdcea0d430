#include "IntakeBench.h"

#include "collage/CollageCanvasView.h"
#include "collage/CollageEditorViewController.h"
#include "collage/CollageEditorViewModel.h"
#include "collage/PhotoLoading.h"
#include "platform/Animations.h"
#include "platform/AppWindow.h"
#include "platform/ItemProvider.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QImageWriter>
#include <QPainter>
#include <QTemporaryDir>
#include <QTimer>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <string>

// From the picker's files to a settled collage editor, against OpenCV reading the same files.
namespace {

const QStringList kSamples = {"apple.jpg",  "baboon.jpg", "basketball1.png", "building.jpg",
                              "fruits.jpg", "home.jpg",   "messi5.jpg",      "orange.jpg"};

// Every sample photo enlarged to a 12 MP camera frame (aspect-filled, centred) and saved as JPEG at a
// camera's quality, once per process.
const QStringList& cameraPhotos() {
    static QTemporaryDir dir;
    static const QStringList paths = [] {
        QStringList list;
        for (const QString& name : kSamples) {
            const QImage source(QStringLiteral(LUMIVEX_SAMPLES_DIR "/") + name);
            if (source.isNull()) {
                std::fprintf(stderr, "missing sample %s\n", qPrintable(name));
                std::exit(1);
            }
            const QImage filled =
                source.convertToFormat(QImage::Format_RGB32)
                    .scaled(4000, 3000, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
            const QImage frame =
                filled.copy((filled.width() - 4000) / 2, (filled.height() - 3000) / 2, 4000, 3000);
            const QString path = dir.filePath(QFileInfo(name).completeBaseName() + QStringLiteral(".jpg"));
            QImageWriter writer(path, "jpeg");
            writer.setQuality(92);
            if (!writer.write(frame)) {
                std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
                std::exit(1);
            }
            list << path;
        }
        return list;
    }();
    return paths;
}

// A 14000 × 14000 picture of under a megabyte of file: large flat areas and a few blocks.
QString hugePng(const QString& folder) {
    const QString path = QDir(folder).filePath(QStringLiteral("huge.png"));
    QImage image(14000, 14000, QImage::Format_RGB32);
    image.fill(QColor(40, 120, 150));
    QPainter painter(&image);
    for (int i = 0; i < 40; ++i)
        painter.fillRect(i * 340, i * 330, 700, 500, QColor::fromHsv(i * 37 % 360, 180, 210));
    painter.end();
    return image.save(path, "png") ? path : QString();
}

// Processor time of the whole process, every thread, in milliseconds.
double processCpuMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

// Turns the event loop until `done` holds, looking every millisecond.
void runUntil(const std::function<bool()>& done) {
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done())
            loop.quit();
    });
    poll.start(1);
    if (!done())
        loop.exec();
}

// The collage editor as the home screen opens it, in a phone-sized window on the offscreen platform.
struct OpenEditor {
    AppWindow window;
    ViewController* root = new ViewController;
    CollageEditorViewController* editor = nullptr;

    OpenEditor() {
        window.resize(390, 844);
        window.setRootViewController(root);
        window.makeKeyAndVisible();
    }
    void open(std::vector<ImagePtr> images) {
        editor = new CollageEditorViewController(std::make_unique<CollageEditorViewModel>(std::move(images)));
        root->present(editor, false);
    }
    bool isSettled() const { return editor && !editor->canvasView()->hasPendingWork(); }
};

// Loads the picked files through their item providers, opens the editor with what arrived and waits
// until every mask, blur and subject detection has landed. Answers how many photos the editor got.
long peakResidentMegabytes();

std::size_t intake(const QStringList& files, OpenEditor& screen, bool report = false) {
    std::vector<PickerResult> results;
    for (const QString& file : files)
        results.push_back({ItemProvider::forFile(file)});
    std::optional<std::vector<ImagePtr>> loaded;
    loadImagesInOrder(results, nullptr, [&](std::vector<ImagePtr> images) { loaded = std::move(images); });
    runUntil([&] { return loaded.has_value(); });
    if (report)
        std::printf("photos decoded: peak resident %ld MB\n", peakResidentMegabytes());
    const std::size_t count = loaded->size();
    if (count >= 2) {
        screen.open(std::move(*loaded));
        runUntil([&] { return screen.isSettled(); });
    }
    return count;
}

void BM_IntakeEightPhotos(benchmark::State& state) {
    const QStringList& files = cameraPhotos();
    Animations::setInstant(true);
    double cpuTotal = 0;
    for (auto _ : state) {
        auto screen = std::make_unique<OpenEditor>();
        const double cpuBefore = processCpuMilliseconds();
        const std::size_t count = intake(files, *screen);
        cpuTotal += processCpuMilliseconds() - cpuBefore;
        if (count != std::size_t(files.size()))
            state.SkipWithError("a photo did not load");
        state.PauseTiming();
        screen.reset();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
    Animations::setInstant(false);
    // Every thread's processor time: with two cores a wall time of half of it means nothing waited.
    state.counters["cpu_ms"] = benchmark::Counter(cpuTotal, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_IntakeEightPhotos)->Unit(benchmark::kMillisecond)->UseRealTime();

// The yardstick: OpenCV reading the same files at full size, one after another.
void BM_DecodeEightPhotosOpenCV(benchmark::State& state) {
    const QStringList& files = cameraPhotos();
    for (auto _ : state)
        for (const QString& file : files) {
            cv::Mat image = cv::imread(file.toStdString(), cv::IMREAD_COLOR);
            if (image.empty())
                state.SkipWithError("imread failed");
            benchmark::DoNotOptimize(image.data);
        }
}
BENCHMARK(BM_DecodeEightPhotosOpenCV)->Unit(benchmark::kMillisecond)->UseRealTime();

// The process's resident high-water mark in MB, from the kernel's own count.
long peakResidentMegabytes() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmHWM:", 0) == 0)
            return std::stol(line.substr(6)) / 1024;
    return -1;
}

// Starts the high-water mark again from what is resident now (Linux 4.0 and later).
bool resetPeakResident() {
    std::ofstream clear("/proc/self/clear_refs");
    clear << "5";
    clear.flush();
    return bool(clear);
}

} // namespace

int runIntakePeak(const QString& what) {
    Animations::setInstant(true);
    QTemporaryDir folder;
    QStringList files;
    if (what == QLatin1String("photos")) {
        files = cameraPhotos();
    } else if (what == QLatin1String("huge-png")) {
        const QString png = hugePng(folder.path());
        if (png.isEmpty())
            return 1;
        for (int i = 0; i < 8; ++i)
            files << png;
    } else {
        std::fprintf(stderr, "unknown intake %s (photos or huge-png)\n", qPrintable(what));
        return 2;
    }
    // Making the test files is no part of the intake: the peak counts from what is resident once they
    // are written (the program, its libraries, Qt's and OpenCV's start-up).
    const bool reset = resetPeakResident();
    const long before = peakResidentMegabytes();
    QElapsedTimer timer;
    timer.start();
    OpenEditor screen;
    const std::size_t count = intake(files, screen, true);
    std::printf("intake of %lld %s: %zu opened in %.0f ms, peak resident %ld MB (%ld MB %s)\n",
                static_cast<long long>(files.size()), qPrintable(what), count, double(timer.elapsed()),
                peakResidentMegabytes(), before,
                reset ? "resident before the picks" : "peak before the picks");
    return count == std::size_t(files.size()) ? 0 : 3;
}
