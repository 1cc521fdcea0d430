// Draws every traced photo and composite beside its cut-out over a checkerboard, with the traced
// outline in red and the overlap with it, into one picture to look at.
#include "CutoutSamples.h"
#include "mixer/BackgroundRemover.h"

#include <QGuiApplication>
#include <QPainter>
#include <cstdio>

namespace {

constexpr int kCell = 240, kLabel = 18, kColumns = 4;

QImage checkerboard(QSize size) {
    QImage board(size, QImage::Format_RGB32);
    QPainter painter(&board);
    for (int y = 0; y < size.height(); y += 8)
        for (int x = 0; x < size.width(); x += 8)
            painter.fillRect(x, y, 8, 8, ((x + y) / 8) % 2 ? QColor(200, 200, 200) : QColor(255, 255, 255));
    return board;
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    const QString out =
        argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("cutout_contact_sheet.png");
    std::vector<CutoutSamples::Sample> samples = CutoutSamples::tracedPhotos();
    for (auto& composite : CutoutSamples::composites())
        samples.push_back(std::move(composite));
    const BackgroundRemover remover;
    const int rows = (int(samples.size()) + kColumns - 1) / kColumns;
    QImage sheet(kColumns * 2 * kCell, rows * (kCell + kLabel), QImage::Format_RGB32);
    sheet.fill(Qt::black);
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    double total = 0;
    for (int i = 0; i < int(samples.size()); ++i) {
        const auto& sample = samples[std::size_t(i)];
        const QPoint origin((i % kColumns) * 2 * kCell, (i / kColumns) * (kCell + kLabel));
        const QSize fit = sample.picture->pixelSize().scaled(kCell - 4, kCell - 4, Qt::KeepAspectRatio);
        const QRect left(origin + QPoint(2, 2), fit), right(origin + QPoint(kCell + 2, 2), fit);
        painter.drawImage(left, sample.picture->uprightBitmap());
        ImagePtr cutout = remover.removeBackground(*sample.picture);
        double iou = 0;
        painter.drawImage(right, checkerboard(fit));
        if (cutout) {
            painter.drawImage(right, cutout->uprightBitmap());
            iou = CutoutSamples::intersectionOverUnion(CutoutSamples::alphaOf(*cutout), sample.truth);
        }
        const QImage truth = sample.truth.scaled(fit);
        QImage outline(fit, QImage::Format_ARGB32);
        auto inside = [&](int x, int y) {
            return x >= 0 && y >= 0 && x < fit.width() && y < fit.height() &&
                   truth.constScanLine(y)[x] >= 128;
        };
        for (int y = 0; y < fit.height(); ++y)
            for (int x = 0; x < fit.width(); ++x) {
                const bool edge = inside(x, y) && (!inside(x - 1, y) || !inside(x + 1, y) ||
                                                   !inside(x, y - 1) || !inside(x, y + 1));
                outline.setPixel(x, y, edge ? qRgba(255, 0, 0, 255) : qRgba(0, 0, 0, 0));
            }
        painter.drawImage(right, outline);
        total += iou;
        painter.setPen(Qt::white);
        painter.drawText(QRect(origin.x(), origin.y() + kCell, 2 * kCell, kLabel), Qt::AlignCenter,
                         QStringLiteral("%1  IoU %2").arg(sample.name).arg(iou, 0, 'f', 3));
        std::printf("%-40s IoU %.3f%s\n", qPrintable(sample.name), iou, cutout ? "" : "  (no cut-out)");
    }
    painter.end();
    std::printf("mean IoU %.3f over %zu pictures\n", samples.empty() ? 0.0 : total / samples.size(),
                samples.size());
    if (!sheet.save(out)) {
        std::fprintf(stderr, "could not write %s\n", qPrintable(out));
        return 1;
    }
    std::printf("wrote %s\n", qPrintable(out));
    return 0;
}
