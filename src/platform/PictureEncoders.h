#pragma once

#include "platform/Image.h"

#include <QByteArray>
#include <QImage>

// The JPEG and PNG writers behind Image::jpegData and Image::pngData.
//
// Both read the stored 32-bit pixels (Format_RGB32 or Format_ARGB32_Premultiplied, as Image keeps them)
// through the orientation that turns them upright, so no turned copy of the picture is made first. Both
// are pure functions, safe on any thread, and return an empty array on any failure (a null or foreign
// bitmap, memory, the codec).

// Baseline JPEG, 4:2:0, quality 1…100 (lower values count as 1). Pixels with alpha are laid over white.
QByteArray encodeJpeg(const QImage& bitmap, ImageOrientation orientation, int quality);

// 8-bit PNG: RGBA with straight alpha for a bitmap with an alpha channel, RGB otherwise.
QByteArray encodePng(const QImage& bitmap, ImageOrientation orientation);
