// Makes every named picture and file of the program into one folder, the same bytes on every run.
//
//   lumivex-assetgen --out DIR --samples DIR [--only GROUP,...] [--attribution FILE]
//   lumivex-assetgen --contact-sheet FILE --assets DIR
#include "Common.h"

#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QtConcurrent/QtConcurrentMap>
#include <atomic>
#include <cstdio>

using namespace assetgen;

namespace {

JobList allJobs() {
    JobList all;
    for (JobList (*groupJobs)() : {lookupJobs, stickerJobs, backgroundJobs, portraitJobs, layoutJobs,
                                   iconJobs, showcaseJobs, audioJobs}) {
        JobList jobs = groupJobs();
        std::move(jobs.begin(), jobs.end(), std::back_inserter(all));
    }
    return all;
}

bool copyReplacing(const QString& from, const QString& to) {
    QFile::remove(to);
    return QFile::copy(from, to);
}

} // namespace

int main(int argc, char** argv) {
    // Fonts need a GUI application; no window is ever shown.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption outOption("out", "Folder to write the assets to.", "dir");
    const QCommandLineOption samplesOption("samples", "Folder of the sample photos.", "dir");
    const QCommandLineOption onlyOption("only", "Comma-separated groups to make (default: all).", "groups");
    const QCommandLineOption attributionOption("attribution", "Attribution file to copy along.", "file");
    const QCommandLineOption sheetOption("contact-sheet", "Write a contact sheet of an assets folder.",
                                         "file");
    const QCommandLineOption assetsOption("assets", "Assets folder the contact sheet shows.", "dir");
    parser.addOptions({outOption, samplesOption, onlyOption, attributionOption, sheetOption, assetsOption});
    parser.process(app);

    if (parser.isSet(sheetOption))
        return writeContactSheet(parser.value(assetsOption), parser.value(sheetOption)) ? 0 : 1;

    if (!parser.isSet(outOption)) {
        std::fprintf(stderr, "lumivex-assetgen: --out is required\n");
        return 2;
    }
    Context context{QDir(parser.value(outOption)).absolutePath(), parser.value(samplesOption)};
    if (!QDir().mkpath(context.outDir)) {
        std::fprintf(stderr, "lumivex-assetgen: cannot create %s\n", qPrintable(context.outDir));
        return 1;
    }

    JobList jobs = allJobs();
    if (parser.isSet(onlyOption)) {
        const QStringList groups = parser.value(onlyOption).split(QLatin1Char(','), Qt::SkipEmptyParts);
        std::erase_if(jobs, [&](const Job& job) { return !groups.contains(job.group); });
    }

    QElapsedTimer timer;
    timer.start();
    std::atomic<int> failures{0};
    // Each job writes only its own file, so running them side by side cannot change any output.
    QtConcurrent::blockingMap(jobs, [&](const Job& job) {
        if (!job.make(context, context.outDir + QLatin1Char('/') + job.file)) {
            std::fprintf(stderr, "lumivex-assetgen: failed to make %s\n", qPrintable(job.file));
            ++failures;
        }
    });
    if (parser.isSet(attributionOption) &&
        !copyReplacing(parser.value(attributionOption), context.outDir + QStringLiteral("/ATTRIBUTION.md"))) {
        std::fprintf(stderr, "lumivex-assetgen: cannot copy the attribution file\n");
        ++failures;
    }
    std::printf("lumivex-assetgen: %zu files in %.1f s\n", jobs.size(), timer.elapsed() / 1000.0);
    return failures ? 1 : 0;
}
