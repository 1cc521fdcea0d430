#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

// PNG decoding a row at a time into a picture a whole number of times smaller, each output pixel the
// average of its block of stored pixels. Only the reduced picture and one row are ever in memory, so a
// 14000 × 14000 file of a megabyte never becomes 784 MB of pixels.
namespace PngReducedDecoder {

// Whether the file can be read row by row: interlaced files deliver their rows in seven passes.
bool canDecodeRowByRow(const QByteArray& data);

// The stored size divided by `divisor`, each side rounded up.
QSize reducedSize(QSize stored, int divisor);

// Decodes with blocks of `divisor` × `divisor` stored pixels (the last row and column of blocks may be
// smaller). Pixels as stored; Format_ARGB32_Premultiplied when the file has transparency, Format_RGB32
// otherwise. Null on a damaged file, with the reason in `error`.
QImage decode(const QByteArray& data, int divisor, QString* error = nullptr);

} // namespace PngReducedDecoder
