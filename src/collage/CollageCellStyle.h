#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

// Colours and icon drawing shared by the editor's option and tool cells (dark appearance).
namespace CollageCellStyle {

inline QColor systemBlue() {
    return QColor(10, 132, 255);
}
inline QColor systemRed() {
    return QColor(255, 69, 58);
}
inline QColor white(double alpha) {
    return QColor::fromRgbF(1, 1, 1, static_cast<float>(alpha));
}

inline constexpr double cardCornerRadius = 16.0;

// The rounded card behind the layout and ratio cells, its border stroked inside `bounds`.
void paintCard(QPainter& painter, const QRectF& bounds, const QColor& fill, double borderWidth,
               const QColor& borderColor);

// What stands in for a symbol whose picture is not installed.
enum class SymbolFallback {
    nothing,
    outline,       // a small neutral rounded square
    initialLetter, // the first letter of the name, enough to tell brand badges apart
};

// Draws the picture named `symbolName` fitted into `rect` and tinted with `tint`, as symbols are
// templates. Answers false when the picture is missing, after drawing the fallback.
bool drawSymbol(QPainter& painter, const QString& symbolName, const QRectF& rect, const QColor& tint,
                SymbolFallback fallback = SymbolFallback::nothing);

// Draws the brand mark of a ratio made for one site ("f.square.fill", "x.square.fill",
// "play.rectangle.fill", ...) filling `rect`: the brand's colour with a white letter or sign, drawn at
// the size asked for so it stays readable at a badge's few pixels. Answers false for a name that is
// no brand, after drawing nothing.
bool drawBrandMark(QPainter& painter, const QString& symbolName, const QRectF& rect);

} // namespace CollageCellStyle
