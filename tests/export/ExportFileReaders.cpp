#include "ExportFileReaders.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>

namespace exportfiles {

ToolRun run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    ToolRun result;
    if (!process.waitForStarted(10000)) {
        result.err = (program + QStringLiteral(" could not be started: ") + process.errorString()).toUtf8();
        return result;
    }
    process.waitForFinished(60000);
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

QImage readPngIndependently(const QString& path) {
    QTemporaryDir temp;
    const QString raw = temp.filePath(QStringLiteral("pixels.rgba"));
    // Found from the test data folder, which does not depend on where the test runs from.
    const QString script = QStringLiteral(LUMIVEX_TEST_DATA_DIR "/../export/pngpixels.py");
    const ToolRun decoded = run(QStringLiteral("python3"), {script, path, raw});
    const QList<QByteArray> fields = decoded.out.trimmed().split(' ');
    if (decoded.exitCode != 0 || fields.size() != 4)
        return {};
    const int width = fields[0].toInt();
    const int height = fields[1].toInt();
    QFile file(raw);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    if (bytes.size() != qsizetype(width) * height * 4)
        return {};
    QImage image(width, height, QImage::Format_RGBA8888);
    for (int y = 0; y < height; ++y)
        std::copy_n(bytes.constData() + qsizetype(y) * width * 4, width * 4, image.scanLine(y));
    return image;
}

QSize djpegSize(const QString& path) {
    const ToolRun decoded = run(QStringLiteral("djpeg"), {QStringLiteral("-pnm"), path});
    if (decoded.exitCode != 0)
        return {};
    // "P6\nW H\n255\n" before the pixels.
    const QList<QByteArray> header = decoded.out.left(64).split('\n');
    if (header.size() < 3 || header[0] != "P6")
        return {};
    const QList<QByteArray> size = header[1].split(' ');
    return size.size() == 2 ? QSize(size[0].toInt(), size[1].toInt()) : QSize();
}

ImagePtr gradientPicture(QSize pixels, double scale, int clearColumns) {
    QImage bitmap(pixels, QImage::Format_ARGB32);
    for (int y = 0; y < pixels.height(); ++y)
        for (int x = 0; x < pixels.width(); ++x)
            bitmap.setPixelColor(x, y,
                                 x < clearColumns ? QColor(0, 0, 0, 0)
                                                  : QColor(40 + 150 * x / pixels.width(),
                                                           200 - 150 * y / pixels.height(), 90));
    return Image::make(bitmap, scale);
}

int maxChannelDifference(const QImage& a, const QImage& b) {
    if (a.size() != b.size())
        return -1;
    const QImage x = a.convertToFormat(QImage::Format_RGBA8888);
    const QImage y = b.convertToFormat(QImage::Format_RGBA8888);
    int worst = 0;
    for (int row = 0; row < x.height(); ++row) {
        const uchar* p = x.constScanLine(row);
        const uchar* q = y.constScanLine(row);
        for (int i = 0; i < x.width() * 4; ++i)
            worst = std::max(worst, std::abs(int(p[i]) - int(q[i])));
    }
    return worst;
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace exportfiles
