#pragma once

#include "platform/Color.h"
#include "platform/Image.h"

#include <QMarginsF>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <array>
#include <optional>
#include <vector>

// The geometry of a mirror picture: a square canvas of W points split into equal columns or rows, each
// pane a small scrolling window on a full W × W copy of one picture, some copies mirrored by their
// orientation flag alone. Panes are linked: when one scrolls, the others follow by their pattern's rule,
// so that the reflections stay exact at zoom 1. Everything here is pure and in points.

// The three forms of the picture: as picked, mirrored left-right, mirrored top-bottom.
enum class MirrorForm { original, horizontal, vertical };
enum class MirrorSplit { columns, rows };
// How the other panes follow a pane that scrolls (see linkPane).
enum class MirrorLinkRule { flipX, same, flipY, pairs, alternate };

struct MirrorPatternLayout {
    MirrorSplit split = MirrorSplit::columns;
    std::vector<MirrorForm> forms; // one a pane, in pane order
    std::vector<int> tags;         // of the panes' outer and image views
    MirrorLinkRule rule = MirrorLinkRule::same;
    QString thumbnail; // "pt1" ... "pt18"

    int paneCount() const { return int(forms.size()); }
};

// A pane's scroll view as the links see it: the origin of its bounds (the scroll offset), its size, the
// size of what it scrolls over, its zoom and its content inset.
struct MirrorScrollState {
    QPointF origin;
    QSizeF bounds;
    QSizeF contentSize;
    double zoomScale = 1.0;
    QMarginsF contentInset;
};

// What a link writes into another pane: a new bounds origin, always, and maybe the zoom and the inset.
struct MirrorLinkUpdate {
    int pane = 0;
    QPointF origin;
    std::optional<double> zoomScale;
    std::optional<QMarginsF> contentInset;
};

namespace MirrorPatterns {

constexpr int lowCount = 18;  // two-dimensional patterns
constexpr int highCount = 28; // overlay patterns
constexpr double minimumZoomScale = 1.0;
constexpr double maximumZoomScale = 4.0;
// The scroll views of every pattern but the first resize with their pane (width and height).
constexpr int autoresizingMask = 18;

// The 18 patterns in strip order.
const std::array<MirrorPatternLayout, lowCount>& table();
// A pattern by index, or null out of range.
const MirrorPatternLayout* pattern(int index);

// Pane `pane` of pattern `index` on a canvas of side `side`; empty out of range.
QRectF paneRect(int index, int pane, double side);

// The orientation flag of a form, for a picture whose own flag is `source`. Only whether the source is
// upright counts: any other orientation is taken for a camera picture held upright.
ImageOrientation orientationFor(MirrorForm form, ImageOrientation source);
// The picture in a form: the same pixels under another flag, at scale 1.0; the original itself.
ImagePtr imageFor(MirrorForm form, const ImagePtr& selectedImage);

// Where pane `pane` of pattern `index` rests once the pattern is built, for a canvas of side `side`.
QPointF restOffset(int index, int pane, double side);

// Whether a pane of pattern `index` zooms its own picture; the others zoom the second picture of the
// first pattern.
bool zoomsOwnPicture(int index);

// The updates of every other pane of pattern `index` when pane `source` has scrolled to `state`.
// Panes are never written through their offset, so none of them reports a scroll in turn.
std::vector<MirrorLinkUpdate> linkPane(int index, int source, const MirrorScrollState& state);

// Overlay patterns: which two-dimensional pattern lies under overlay `index`, and its overlay picture.
constexpr bool mirrorFirst(int overlayIndex) {
    return overlayIndex % 2 == 0;
}
constexpr int basePattern(int overlayIndex) {
    return mirrorFirst(overlayIndex) ? 0 : 1;
}

} // namespace MirrorPatterns

// A colour written as text: a leading "#" dropped, then as many hexadecimal digits as can be read (an
// optional "0x" first), the bytes taken as red, green and blue. Text without a digit gives black.
Color colorFromHex(const QString& text, double alpha = 1.0);
