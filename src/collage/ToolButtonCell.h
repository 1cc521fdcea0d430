#pragma once

#include "collage/CollageCell.h"
#include "collage/CollageTools.h"

#include <QColor>
#include <QFont>

// A button of an editor's bottom bar: a symbol over a short title, blue when selected. A destructive
// tool stays red either way.
class ToolButtonCell : public CollageCell {
    Q_OBJECT
public:
    explicit ToolButtonCell(QWidget* parent = nullptr);

    static constexpr QSize cellSize{72, 64};
    static constexpr double iconSide = 22.0;
    static constexpr double spacing = 6.0;
    static constexpr double sideInset = 4.0;
    static constexpr int titleFontSize = 12;
    static constexpr int minimumTitleFontSize = 10;

    void configure(const ToolDisplayable& tool, bool isSelected);
    void configure(CollageTool tool, bool isSelected);

    QString title() const { return tool_.title; }
    QString symbolName() const { return tool_.symbolName; }
    // Colour of both the icon and the title.
    QColor tintColor() const;
    QRectF iconRect() const;
    QRectF titleRect() const;
    QFont titleFont() const;
    // The title font, a size or two smaller where the title would not fit the cell.
    QFont fittedTitleFont() const;

    QSize sizeHint() const override { return cellSize; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ToolDisplayable tool_;
};
