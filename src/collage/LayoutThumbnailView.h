#pragma once

#include "collage/CollageLayoutOption.h"

#include <QColor>
#include <QLineF>
#include <QRectF>
#include <QWidget>
#include <optional>
#include <vector>

// A line drawing of a layout: the rounded outline and the inner edges between panes. Transparent
// around the lines; draws nothing at all while it has no option.
class LayoutThumbnailView : public QWidget {
    Q_OBJECT
public:
    explicit LayoutThumbnailView(QWidget* parent = nullptr);

    // Everything a thumbnail strokes: the outline, a rounded rect, then each pane's interior edges
    // (left, right, top, bottom, those that are not on the border). Shared edges appear once per pane.
    struct Strokes {
        QRectF outline;
        std::vector<QLineF> edges;
    };
    // Empty when there is no option: not even the outline is drawn then.
    static std::optional<Strokes> strokes(std::optional<CollageLayoutOption> option, const QRectF& bounds);

    std::optional<CollageLayoutOption> option() const { return option_; }
    void setOption(std::optional<CollageLayoutOption> option);

    QColor lineColor() const { return lineColor_; }
    void setLineColor(const QColor& color);
    double lineWidth() const { return lineWidth_; }
    void setLineWidth(double width);
    double outerCornerRadius() const { return outerCornerRadius_; }
    void setOuterCornerRadius(double radius);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::optional<CollageLayoutOption> option_;
    QColor lineColor_ = Qt::white;
    double lineWidth_ = 2.0;
    double outerCornerRadius_ = 6.0;
};
