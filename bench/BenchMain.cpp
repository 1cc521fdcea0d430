#include "IntakeBench.h"

#include <QApplication>
#include <benchmark/benchmark.h>
#include <cstring>

// One application object for every benchmark, on the offscreen platform, so pictures, fonts and
// painters work as they do in the program without a display.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // --intake-peak=photos|huge-png: one intake in a process of its own, to read its peak memory.
    constexpr const char* peakFlag = "--intake-peak=";
    if (argc == 2 && std::strncmp(argv[1], peakFlag, std::strlen(peakFlag)) == 0)
        return runIntakePeak(QString::fromUtf8(argv[1] + std::strlen(peakFlag)));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
