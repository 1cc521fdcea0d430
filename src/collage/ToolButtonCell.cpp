#include "collage/ToolButtonCell.h"

#include "collage/CollageCellStyle.h"

#include <QFontMetricsF>
#include <QPainter>

using namespace CollageCellStyle;

ToolButtonCell::ToolButtonCell(QWidget* parent) : CollageCell(parent) {
    resize(cellSize);
}

void ToolButtonCell::configure(const ToolDisplayable& tool, bool isSelected) {
    tool_ = tool;
    setAccessibleName(tool.title);
    setSelected(isSelected);
    update();
}

void ToolButtonCell::configure(CollageTool tool, bool isSelected) {
    configure(toolDisplayable(tool), isSelected);
}

QColor ToolButtonCell::tintColor() const {
    if (tool_.isDestructive)
        return systemRed();
    return isSelected() ? systemBlue() : QColor(Qt::white);
}

QFont ToolButtonCell::titleFont() const {
    QFont titleFont = font();
    titleFont.setPixelSize(titleFontSize);
    titleFont.setWeight(QFont::Medium);
    return titleFont;
}

// A title a little wider than the cell ("Background" in a wide font) is set smaller rather than cut;
// only one that would need to shrink past the smallest size is elided.
QFont ToolButtonCell::fittedTitleFont() const {
    QFont font = titleFont();
    const double room = titleRect().width();
    while (font.pixelSize() > minimumTitleFontSize &&
           QFontMetricsF(font).horizontalAdvance(tool_.title) > room)
        font.setPixelSize(font.pixelSize() - 1);
    return font;
}

// The icon and title stack is centred in the cell.
QRectF ToolButtonCell::iconRect() const {
    const double titleHeight = QFontMetricsF(titleFont()).height();
    const double stackHeight = iconSide + spacing + titleHeight;
    const double top = (height() - stackHeight) / 2.0;
    return {(width() - iconSide) / 2.0, top, iconSide, iconSide};
}

QRectF ToolButtonCell::titleRect() const {
    const double titleHeight = QFontMetricsF(titleFont()).height();
    return {sideInset, iconRect().bottom() + spacing, width() - 2 * sideInset, titleHeight};
}

void ToolButtonCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(contentOpacity());
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor tint = tintColor();
    drawSymbol(painter, tool_.symbolName, iconRect(), tint, SymbolFallback::outline);
    const QRectF textRect = titleRect();
    const QFont font = fittedTitleFont();
    painter.setFont(font);
    painter.setPen(tint);
    painter.drawText(textRect, Qt::AlignCenter,
                     QFontMetricsF(font).elidedText(tool_.title, Qt::ElideRight, textRect.width()));
}
