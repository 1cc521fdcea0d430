#pragma once

#include "collage/CollageAspectRatioOption.h"
#include "collage/CollageCell.h"

#include <QColor>
#include <QSizeF>
#include <optional>

class SymbolIconView;

// A canvas ratio in the ratio panel: a small outline of the shape over its name, with the brand's badge
// in the corner for shapes made for one site.
class AspectRatioOptionCell : public CollageCell {
    Q_OBJECT
public:
    explicit AspectRatioOptionCell(QWidget* parent = nullptr);

    static constexpr double maxOutlineDimension = 26.0;
    static constexpr double minOutlineDimension = 8.0;
    // The brand badge in the top right corner, as large as the space beside the widest outline allows.
    static constexpr double badgeSide = 16.0;

    // Size of the shape preview: the long side at the maximum, neither side under the minimum. An absent
    // ratio is drawn as a square.
    static QSizeF outlineSize(std::optional<double> ratio);

    void configure(CollageAspectRatioOption option, bool isSelected);

    QString title() const { return title_; }
    QColor titleColor() const;
    QColor cardBackgroundColor() const;
    double borderWidth() const;
    QColor borderColor() const;
    QSizeF currentOutlineSize() const { return outlineSize_; }
    QRectF outlineRect() const;
    QRectF titleRect() const;

    QWidget* brandBadgeView() const { return brandBadgeView_; }
    SymbolIconView* brandIconView() const { return brandIconView_; }

    QSize sizeHint() const override { return {64, 64}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void placeBadge();

    QString title_;
    QSizeF outlineSize_ = outlineSize(std::nullopt);
    QWidget* brandBadgeView_;
    SymbolIconView* brandIconView_;
};
