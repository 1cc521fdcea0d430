#pragma once

#include "export/SavingProtocols.h"
#include "platform/Image.h"

#include <QList>
#include <QObject>

#include <QImage>
#include <QString>
#include <QStringList>

// Readers that check what the format sheets write without our own encoders or decoders: the
// command-line tools of libjpeg, libtiff, libxml2 and librsvg, and a zlib-only PNG reader.
namespace exportfiles {

struct ToolRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};
// Runs a tool to completion; a tool that is missing gives exit code -1 and says so in `err`.
ToolRun run(const QString& program, const QStringList& arguments);

// The PNG's pixels as RGBA8888, read by tests/export/pngpixels.py; null on failure.
QImage readPngIndependently(const QString& path);

// The pixel size djpeg decodes a JPEG to; empty on failure.
QSize djpegSize(const QString& path);

// A picture of `pixels` at `scale`: a smooth gradient with the left `clearColumns` fully transparent.
ImagePtr gradientPicture(QSize pixels, double scale, int clearColumns = 0);

// The largest difference of one channel between two pictures of the same size; -1 when they differ in size.
int maxChannelDifference(const QImage& a, const QImage& b);

// A file's bytes; empty when it cannot be read.
QByteArray readAll(const QString& path);

// Stands in for an editor at the end of a sheet: keeps every save it is handed.
struct Receiver : QObject, DataPassingToShareController {
    QList<SaveModelDetails> received;
    void saveDetailsPassed(const SaveModelDetails& details) override { received << details; }
};

} // namespace exportfiles
