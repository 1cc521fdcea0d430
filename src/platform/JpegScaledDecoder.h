#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>
#include <vector>

// JPEG decoding through libjpeg-turbo at one of its scaled-DCT steps (whole eighths of the stored size):
// the reduction happens inside the inverse transform, so a reduced picture costs a fraction of the full
// decode in time and never needs the full-size pixels in memory.
namespace JpegScaledDecoder {

// The sizes the decoder can give for a picture stored at `stored`, smallest first, ending with `stored`.
std::vector<QSize> stepSizes(QSize stored);

// The smallest step's size whose sides are both at least `factor` times the stored ones (`factor` above
// 1 counts as 1). Each side is rounded up, as the decoder rounds it.
QSize scaledSize(QSize stored, double factor);

// Decodes the whole picture at `size`, which must be one of the steps that scaledSize gives for this
// picture. The result is Format_RGB32, pixels as stored (no orientation applied). Null for a picture the
// library cannot turn into RGB (CMYK, for one), with the reason in `error`.
QImage decode(const QByteArray& data, QSize size, QString* error = nullptr);

} // namespace JpegScaledDecoder
