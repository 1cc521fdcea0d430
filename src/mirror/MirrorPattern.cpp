#include "mirror/MirrorPattern.h"

#include <QStringView>
#include <algorithm>

namespace MirrorPatterns {

namespace {

constexpr auto O = MirrorForm::original;
constexpr auto H = MirrorForm::horizontal;
constexpr auto V = MirrorForm::vertical;
constexpr auto cols = MirrorSplit::columns;
constexpr auto rows = MirrorSplit::rows;

MirrorPatternLayout entry(MirrorSplit split, std::vector<MirrorForm> forms, std::vector<int> tags,
                          MirrorLinkRule rule, int number) {
    return {split, std::move(forms), std::move(tags), rule, QStringLiteral("pt") + QString::number(number)};
}

} // namespace

const std::array<MirrorPatternLayout, lowCount>& table() {
    using R = MirrorLinkRule;
    static const std::array<MirrorPatternLayout, lowCount> patterns{{
        entry(cols, {O, H}, {0, 1}, R::flipX, 1),
        entry(cols, {H, O}, {20, 21}, R::flipX, 2),
        entry(cols, {O, O}, {22, 23}, R::same, 3),
        entry(cols, {H, H}, {5, 6}, R::same, 4),
        entry(cols, {O, V}, {7, 8}, R::flipX, 5),
        entry(rows, {O, V}, {9, 10}, R::flipY, 6),
        entry(rows, {V, O}, {11, 12}, R::flipY, 7),
        entry(rows, {O, O}, {13, 14}, R::flipY, 8),
        entry(rows, {O, H}, {15, 16}, R::flipY, 9),
        entry(cols, {O, O, O}, {17, 18, 19}, R::same, 10),
        entry(cols, {H, H, H}, {24, 25, 26}, R::same, 11),
        entry(rows, {O, O, O}, {27, 28, 29}, R::same, 12),
        entry(rows, {H, H, H}, {30, 31, 32}, R::same, 13),
        entry(rows, {O, H, O}, {33, 34, 35}, R::same, 14),
        entry(cols, {O, O, H, H}, {36, 37, 38, 39}, R::pairs, 15),
        entry(cols, {H, H, O, O}, {40, 41, 42, 43}, R::pairs, 16),
        entry(cols, {O, O, O, O}, {44, 45, 46, 47}, R::same, 17),
        entry(cols, {O, H, O, H}, {48, 49, 50, 51}, R::alternate, 18),
    }};
    return patterns;
}

const MirrorPatternLayout* pattern(int index) {
    return index >= 0 && index < lowCount ? &table()[size_t(index)] : nullptr;
}

QRectF paneRect(int index, int pane, double side) {
    const MirrorPatternLayout* p = pattern(index);
    if (!p || pane < 0 || pane >= p->paneCount())
        return {};
    const double step = side / p->paneCount();
    return p->split == MirrorSplit::columns ? QRectF(pane * step, 0, step, side)
                                            : QRectF(0, pane * step, side, step);
}

ImageOrientation orientationFor(MirrorForm form, ImageOrientation source) {
    const bool up = source == ImageOrientation::up;
    switch (form) {
    case MirrorForm::horizontal:
        return up ? ImageOrientation::upMirrored : ImageOrientation::leftMirrored;
    case MirrorForm::vertical:
        return up ? ImageOrientation::downMirrored : ImageOrientation::rightMirrored;
    case MirrorForm::original:
        break;
    }
    return source;
}

ImagePtr imageFor(MirrorForm form, const ImagePtr& selectedImage) {
    if (!selectedImage || form == MirrorForm::original)
        return selectedImage;
    return selectedImage->withOrientation(orientationFor(form, selectedImage->orientation()), 1.0);
}

QPointF restOffset(int index, int pane, double side) {
    const MirrorPatternLayout* p = pattern(index);
    if (!p || pane < 0 || pane >= p->paneCount())
        return {};
    double along = 0;
    switch (index) {
    case 0:
    case 1:
    case 4:
    case 5:
    case 6:
    case 7:
    case 8:
        along = pane == 0 ? side / 2 : 0;
        break;
    case 14:
    case 15:
        along = pane < 2 ? side * 3 / 4 : 0;
        break;
    case 16:
        along = side * 3 / 4;
        break;
    case 17:
        along = pane % 2 == 0 ? side * 3 / 4 : 0;
        break;
    default:
        break;
    }
    return p->split == MirrorSplit::columns ? QPointF(along, 0) : QPointF(0, along);
}

bool zoomsOwnPicture(int index) {
    switch (index) {
    case 2:
    case 3:
    case 9:
    case 10:
    case 11:
    case 12:
        return true;
    default:
        return false;
    }
}

std::vector<MirrorLinkUpdate> linkPane(int index, int source, const MirrorScrollState& state) {
    const MirrorPatternLayout* p = pattern(index);
    std::vector<MirrorLinkUpdate> updates;
    if (!p || source < 0 || source >= p->paneCount())
        return updates;
    const double ox = state.origin.x(), oy = state.origin.y();
    const double w = state.bounds.width(), h = state.bounds.height();
    const QPointF same(ox, oy), flippedX(w - ox, oy), flippedY(ox, h - oy), across(3 * w - ox, oy);
    for (int pane = 0; pane < p->paneCount(); ++pane) {
        if (pane == source)
            continue;
        MirrorLinkUpdate update{pane, same, state.zoomScale, std::nullopt};
        switch (p->rule) {
        case MirrorLinkRule::flipX:
            update.origin = flippedX;
            if (index == 0 && source == 1)
                update.contentInset = state.contentInset;
            break;
        case MirrorLinkRule::same:
            break;
        case MirrorLinkRule::flipY:
            update.origin = flippedY;
            break;
        case MirrorLinkRule::pairs:
            // Panes 1-2 and 3-4 are pairs: the partner follows, the other pair mirrors without zoom.
            if (pane / 2 != source / 2) {
                update.origin = across;
                update.zoomScale.reset();
            }
            break;
        case MirrorLinkRule::alternate:
            if (pane / 2 == source / 2) {
                update.origin = across; // the partner, a mirror of the source
            } else {
                update.zoomScale.reset();
                update.origin = pane == (source + 2) % 4 ? same : across;
            }
            break;
        }
        updates.push_back(update);
    }
    return updates;
}

} // namespace MirrorPatterns

Color colorFromHex(const QString& text, double alpha) {
    QStringView rest(text);
    if (rest.startsWith(QLatin1Char('#')))
        rest = rest.mid(1);
    // A scanner skips leading white space and takes an optional "0x".
    while (!rest.isEmpty() && rest.front().isSpace())
        rest = rest.mid(1);
    auto hexDigit = [](QChar c) {
        const char16_t u = c.toLower().unicode();
        return u >= '0' && u <= '9' ? int(u - '0') : u >= 'a' && u <= 'f' ? int(u - 'a') + 10 : -1;
    };
    if (rest.size() > 2 && rest.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) &&
        hexDigit(rest[2]) >= 0)
        rest = rest.mid(2);
    quint64 value = 0;
    for (QChar c : rest) {
        const int digit = hexDigit(c);
        if (digit < 0)
            break;
        // Past 32 bits the scanner saturates.
        value = std::min<quint64>(value * 16 + quint64(digit), 0xffffffffULL);
    }
    return Color((double((value >> 16) & 0xff)) / 255.0, double((value >> 8) & 0xff) / 255.0,
                 double(value & 0xff) / 255.0, alpha);
}
