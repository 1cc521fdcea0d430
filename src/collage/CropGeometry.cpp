#include "collage/CropGeometry.h"

#include <QRect>
#include <algorithm>
#include <cmath>

namespace CropGeometry {

namespace {

// Clamp where the upper limit wins when the limits cross: the picture's edge beats a minimum size.
double clampToUpper(double value, double lower, double upper) {
    return std::min(upper, std::max(lower, value));
}
double clampToLower(double value, double lower, double upper) {
    return std::max(lower, std::min(upper, value));
}

struct Edges {
    bool left = false, top = false, right = false, bottom = false;
};

Edges edgesOf(CropHandle handle) {
    switch (handle) {
    case CropHandle::topLeft:
        return {true, true, false, false};
    case CropHandle::top:
        return {false, true, false, false};
    case CropHandle::topRight:
        return {false, true, true, false};
    case CropHandle::right:
        return {false, false, true, false};
    case CropHandle::bottomRight:
        return {false, false, true, true};
    case CropHandle::bottom:
        return {false, false, false, true};
    case CropHandle::bottomLeft:
        return {true, false, false, true};
    case CropHandle::left:
        return {true, false, false, false};
    case CropHandle::none:
    case CropHandle::inside:
        break;
    }
    return {};
}

QRectF resizedFree(const QRectF& start, const Edges& edges, const QPointF& delta, const QRectF& bounds,
                   double minimumSide) {
    const double minW = std::min(minimumSide, bounds.width());
    const double minH = std::min(minimumSide, bounds.height());
    double left = start.left(), right = start.right(), top = start.top(), bottom = start.bottom();
    if (edges.left)
        left = clampToLower(left + delta.x(), bounds.left(), right - minW);
    if (edges.right)
        right = clampToUpper(right + delta.x(), left + minW, bounds.right());
    if (edges.top)
        top = clampToLower(top + delta.y(), bounds.top(), bottom - minH);
    if (edges.bottom)
        bottom = clampToUpper(bottom + delta.y(), top + minH, bounds.bottom());
    return QRectF(QPointF(left, top), QPointF(right, bottom));
}

// Smallest and largest width a rectangle of `aspect` may take, given the largest width and height
// room allows.
double limitedWidth(double width, double aspect, double roomW, double roomH, double minimumSide) {
    const double widest = std::min(roomW, roomH * aspect);
    const double narrowest = std::max(minimumSide, minimumSide * aspect);
    return clampToUpper(width, narrowest, widest);
}

QRectF resizedCorner(const QRectF& start, const Edges& edges, const QPointF& delta, const QRectF& bounds,
                     double aspect, double minimumSide) {
    const double sx = edges.right ? 1.0 : -1.0;
    const double sy = edges.bottom ? 1.0 : -1.0;
    const QPointF anchor(edges.right ? start.left() : start.right(),
                         edges.bottom ? start.top() : start.bottom());
    const QPointF corner(edges.right ? start.right() : start.left(),
                         edges.bottom ? start.bottom() : start.top());
    const QPointF pointer = corner + delta;
    // Follow the pointer along the diagonal of the shape: the nearest point on it to the pointer.
    const double px = (pointer.x() - anchor.x()) * sx;
    const double py = (pointer.y() - anchor.y()) * sy;
    const double t = (px * aspect + py) / (aspect * aspect + 1.0);
    const double roomW = sx > 0 ? bounds.right() - anchor.x() : anchor.x() - bounds.left();
    const double roomH = sy > 0 ? bounds.bottom() - anchor.y() : anchor.y() - bounds.top();
    const double w = limitedWidth(t * aspect, aspect, roomW, roomH, minimumSide);
    const double h = w / aspect;
    const double left = sx > 0 ? anchor.x() : anchor.x() - w;
    const double top = sy > 0 ? anchor.y() : anchor.y() - h;
    return {left, top, w, h};
}

QRectF resizedEdge(const QRectF& start, const Edges& edges, const QPointF& delta, const QRectF& bounds,
                   double aspect, double minimumSide) {
    if (edges.left || edges.right) {
        const double proposed = start.width() + (edges.right ? delta.x() : -delta.x());
        const double room = edges.right ? bounds.right() - start.left() : start.right() - bounds.left();
        const double w = limitedWidth(proposed, aspect, room, bounds.height(), minimumSide);
        const double h = w / aspect;
        // The other axis grows about the middle, shifted back if it meets an edge.
        const double top = clampToLower(start.center().y() - h / 2, bounds.top(), bounds.bottom() - h);
        const double left = edges.right ? start.left() : start.right() - w;
        return {left, top, w, h};
    }
    const double proposed = start.height() + (edges.bottom ? delta.y() : -delta.y());
    const double room = edges.bottom ? bounds.bottom() - start.top() : start.bottom() - bounds.top();
    const double w = limitedWidth(proposed * aspect, aspect, bounds.width(), room, minimumSide);
    const double h = w / aspect;
    const double left = clampToLower(start.center().x() - w / 2, bounds.left(), bounds.right() - w);
    const double top = edges.bottom ? start.top() : start.bottom() - h;
    return {left, top, w, h};
}

} // namespace

QRectF fittedRect(const QRectF& bounds, std::optional<double> aspect, const QPointF& centre) {
    if (!aspect || *aspect <= 0.0 || bounds.isEmpty())
        return bounds;
    double w = bounds.width();
    double h = w / *aspect;
    if (h > bounds.height()) {
        h = bounds.height();
        w = h * *aspect;
    }
    QRectF rect(0, 0, w, h);
    rect.moveCenter(centre);
    return moved(rect, QPointF(), bounds);
}

QRectF moved(const QRectF& start, const QPointF& delta, const QRectF& bounds) {
    const double x = clampToLower(start.x() + delta.x(), bounds.left(), bounds.right() - start.width());
    const double y = clampToLower(start.y() + delta.y(), bounds.top(), bounds.bottom() - start.height());
    return {x, y, start.width(), start.height()};
}

QRectF resized(const QRectF& start, CropHandle handle, const QPointF& delta, const QRectF& bounds,
               std::optional<double> aspect, double minimumSide) {
    if (handle == CropHandle::inside)
        return moved(start, delta, bounds);
    const Edges edges = edgesOf(handle);
    if (!edges.left && !edges.right && !edges.top && !edges.bottom)
        return start;
    if (!aspect || *aspect <= 0.0)
        return resizedFree(start, edges, delta, bounds, minimumSide);
    const bool corner = (edges.left || edges.right) && (edges.top || edges.bottom);
    return corner ? resizedCorner(start, edges, delta, bounds, *aspect, minimumSide)
                  : resizedEdge(start, edges, delta, bounds, *aspect, minimumSide);
}

QRectF turned(const QRectF& rect, const QSizeF& pictureSize, bool clockwise) {
    if (clockwise)
        return {pictureSize.height() - rect.bottom(), rect.left(), rect.height(), rect.width()};
    return {rect.top(), pictureSize.width() - rect.right(), rect.height(), rect.width()};
}

QRect pixelRect(const QRectF& rect, const QRect& bounds) {
    const int left = static_cast<int>(std::lround(rect.left()));
    const int top = static_cast<int>(std::lround(rect.top()));
    const int right = static_cast<int>(std::lround(rect.right()));
    const int bottom = static_cast<int>(std::lround(rect.bottom()));
    return QRect(left, top, right - left, bottom - top).intersected(bounds);
}

} // namespace CropGeometry
