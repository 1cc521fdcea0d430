#include "Demo.h"

#include "collage/CollageCanvasView.h"
#include "collage/CollageEditorViewController.h"
#include "collage/CollageEditorViewModel.h"
#include "platform/Animations.h"
#include "platform/PhotoLibrary.h"
#include "platform/Screen.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QThread>
#include <cstdio>

namespace {

struct DemoCollage {
    const char* name;
    std::vector<int> photos; // indices into the sample list, in pane order
    CollageLayoutOption layout;
    CollageAspectRatioOption ratio;
    int pane;        // the pane that is moved, zoomed and feathered
    QPointF move;    // points
    double zoom;     // factor
    double feathers; // horizontal and vertical, points
};

const QStringList kSamples = {QStringLiteral("messi5.jpg"), QStringLiteral("basketball1.png"),
                              QStringLiteral("fruits.jpg"), QStringLiteral("building.jpg"),
                              QStringLiteral("home.jpg"),   QStringLiteral("orange.jpg"),
                              QStringLiteral("apple.jpg"),  QStringLiteral("baboon.jpg")};

bool settle(const CollageCanvasView& canvas) {
    QDeadlineTimer deadline(30000);
    while (canvas.hasPendingWork() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    QCoreApplication::processEvents();
    return !canvas.hasPendingWork();
}

template <typename T> std::optional<int> indexOf(const std::vector<T>& list, T value) {
    const auto it = std::find(list.begin(), list.end(), value);
    if (it == list.end())
        return std::nullopt;
    return static_cast<int>(it - list.begin());
}

} // namespace

QString samplesFolder() {
    const QStringList candidates = {
        QStringLiteral(LUMIVEX_SOURCE_SAMPLES_DIR),
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../share/lumivex/samples")),
        QStringLiteral(LUMIVEX_INSTALLED_SAMPLES_DIR),
    };
    for (const QString& folder : candidates) {
        if (QFileInfo::exists(QDir(folder).filePath(kSamples.front())))
            return QDir(folder).absolutePath();
    }
    return QString();
}

int runDemo(const QString& outDir) {
    // Nobody watches a headless run: every animation lands at once.
    Animations::setInstant(true);
    const QString folder = samplesFolder();
    if (folder.isEmpty()) {
        std::fprintf(stderr, "lumivex demo: the sample photos were not found.\n");
        return 1;
    }
    std::vector<ImagePtr> samples;
    for (const QString& name : kSamples) {
        QString error;
        ImagePtr image = Image::fromFile(QDir(folder).filePath(name), 1.0, &error);
        if (!image) {
            std::fprintf(stderr, "lumivex demo: %s: %s\n", qPrintable(name), qPrintable(error));
            return 1;
        }
        samples.push_back(image);
    }
    if (!QDir().mkpath(outDir)) {
        std::fprintf(stderr, "lumivex demo: cannot create the folder %s\n", qPrintable(outDir));
        return 1;
    }

    const std::vector<DemoCollage> collages = {
        {"three photos as a story",
         {0, 2, 5},
         CollageLayoutOption::threeTopFullBottomSplit,
         CollageAspectRatioOption::instagramStory,
         0,
         {18, -12},
         1.4,
         45},
        {"four photos in a pinwheel",
         {1, 3, 6, 7},
         CollageLayoutOption::fourPinwheelWideTopLeft,
         CollageAspectRatioOption::landscape4x3,
         1,
         {-10, 6},
         1.6,
         60},
        {"two photos with a gap",
         {0, 1},
         CollageLayoutOption::twoColumnsEqualGap,
         CollageAspectRatioOption::facebookPost,
         1,
         {0, 20},
         1.2,
         10},
        {"six photos on A4",
         {0, 1, 2, 3, 4, 5},
         CollageLayoutOption::sixThirdLayout,
         CollageAspectRatioOption::a4,
         2,
         {12, 12},
         2.0,
         35},
        {"eight photos",
         {0, 1, 2, 3, 4, 5, 6, 7},
         CollageLayoutOption::eightLayoutTwentyFour,
         CollageAspectRatioOption::original,
         0,
         {-20, 0},
         1.3,
         25},
    };

    PhotoLibrary library(outDir);
    int failures = 0;
    for (const DemoCollage& demo : collages) {
        std::vector<ImagePtr> images;
        for (int index : demo.photos)
            images.push_back(samples[index]);
        CollageEditorViewModel model(images);
        if (const auto layout = indexOf(model.layoutOptions(), demo.layout))
            model.selectLayoutOption(*layout);
        if (const auto ratio = indexOf(model.aspectRatioOptions(), demo.ratio))
            model.selectAspectRatioOption(*ratio);

        CollageCanvasView canvas;
        const auto option = model.selectedAspectRatioOption();
        const QSizeF size = CollageEditorViewController::canvasSizeFor(option ? ratio(*option) : std::nullopt,
                                                                       QSizeF(366, 560));
        canvas.resize(size.toSize());
        canvas.configure(model.images(), model.selectedLayoutOption());
        settle(canvas);

        canvas.selectPane(demo.pane);
        canvas.handleCanvasPan(GestureState::began, demo.move);
        canvas.handleCanvasPan(GestureState::ended);
        canvas.handleCanvasPinch(GestureState::began, demo.zoom);
        canvas.handleCanvasPinch(GestureState::ended);
        canvas.setSelectedPaneFeather(demo.feathers, demo.feathers);
        settle(canvas);

        const ImagePtr picture = canvas.flattenedImage();
        const PhotoLibraryResult saved = picture
                                             ? library.writeImage(*picture)
                                             : PhotoLibraryResult{false, {}, QStringLiteral("nothing drawn")};
        if (saved.ok) {
            std::printf("%s\n", qPrintable(saved.path));
        } else {
            ++failures;
            std::fprintf(stderr, "lumivex demo: %s: %s\n", demo.name, qPrintable(saved.error));
        }
        std::fflush(stdout);
    }
    return failures == 0 ? 0 : 1;
}
