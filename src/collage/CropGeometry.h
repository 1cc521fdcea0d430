#pragma once

#include <QPointF>
#include <QRectF>
#include <optional>

// The parts of the crop rectangle a pointer can take hold of.
enum class CropHandle { none, inside, topLeft, top, topRight, right, bottomRight, bottom, bottomLeft, left };

// Rules for moving and resizing the crop rectangle. Everything is in pixels of the turned picture.
namespace CropGeometry {

// The largest rectangle of `aspect` (width over height) inside `bounds`, centred on `centre` and then
// pushed back inside; the whole of `bounds` when `aspect` is empty.
QRectF fittedRect(const QRectF& bounds, std::optional<double> aspect, const QPointF& centre);

// `start` moved by `delta`, kept inside `bounds`.
QRectF moved(const QRectF& start, const QPointF& delta, const QRectF& bounds);

// `start` with the part `handle` dragged by `delta`. The opposite corner or edge stays put; the
// result stays inside `bounds`, keeps `aspect` when there is one, and keeps both sides at least
// `minimumSide` (or as much as the bounds allow).
QRectF resized(const QRectF& start, CropHandle handle, const QPointF& delta, const QRectF& bounds,
               std::optional<double> aspect, double minimumSide);

// `rect` in a picture of `pictureSize` after one quarter turn, clockwise or not.
QRectF turned(const QRectF& rect, const QSizeF& pictureSize, bool clockwise);

// Whole pixels: edges rounded to the nearest pixel and clipped to `bounds`.
QRect pixelRect(const QRectF& rect, const QRect& bounds);

} // namespace CropGeometry
