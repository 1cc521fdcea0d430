#pragma once

#include "collage/CollageCell.h"
#include "collage/CollageTools.h"

#include <QColor>

// An action of the transform panel: a symbol on a round plate over its title, with a thin divider on
// the leading side between neighbours. The selection ring and dot exist for a caller that marks an
// action as chosen; the collage editor never does.
class TransformActionCell : public CollageCell {
    Q_OBJECT
public:
    explicit TransformActionCell(QWidget* parent = nullptr);

    static constexpr double iconBackgroundSide = 44.0;
    static constexpr double iconSide = 22.0;
    static constexpr int titleFontSize = 14;

    void configure(CollageTransformAction action, bool isSelected, bool showsLeadingDivider);

    QString title() const { return title_; }
    QString symbolName() const { return symbolName_; }
    bool isSelectionRingVisible() const { return isSelected(); }
    bool isSelectionDotVisible() const { return isSelected(); }
    bool isLeadingDividerVisible() const { return showsLeadingDivider_; }

    QRectF iconBackgroundRect() const;
    QRectF titleRect() const;
    QRectF selectionDotRect() const;
    QRectF leadingDividerRect() const;

    QSize sizeHint() const override { return {64, 88}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString title_;
    QString symbolName_;
    bool showsLeadingDivider_ = false;
};
