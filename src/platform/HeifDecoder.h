#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

// HEIF pictures (HEIC from phones' cameras, and AVIF) through libheif. libheif applies the file's
// rotation and mirroring while it decodes, so what comes out is already upright and the sizes here are
// the upright ones. It can only decode the whole picture; a smaller one is scaled from it afterwards.
namespace HeifDecoder {

// File name endings of these pictures, lower case, without the dot.
QStringList suffixes();

// Whether the first bytes of a file (a dozen are enough) say HEIF or AVIF, whether or not a decoder for
// its codec is installed.
bool recognizes(const QByteArray& head);

struct Probe {
    QSize size; // upright, as decoded
    bool hasAlpha = false;
};

// The primary picture's size, read from the file's boxes without decoding anything. Nothing for a
// damaged file, with the reason in `error`.
std::optional<Probe> probe(const QByteArray& data, QString* error = nullptr);

// Bytes held on the way besides the file and the returned bitmap: libheif's decoded planes and its
// interleaved copy, for a picture of `size`.
std::int64_t transientBytes(QSize size);

// Decodes the primary picture whole and upright. Format_RGBA8888 when it has alpha, Format_RGBX8888
// otherwise. Null on failure, with a reason that names a missing codec as such.
QImage decode(const QByteArray& data, QString* error = nullptr);

} // namespace HeifDecoder
