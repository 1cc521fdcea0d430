#include "frames/FrameCellItem.h"

#include <gtest/gtest.h>

namespace {

ImagePtr picture(int width, int height) {
    QImage bitmap(width, height, QImage::Format_RGB32);
    bitmap.fill(Qt::darkCyan);
    return Image::make(bitmap);
}

// A cell that is not square pans each way only as far as the zoomed content passes that side of it.
TEST(FrameCellItem, PanningStopsAtEachSideOfAnOblongCell) {
    struct Case {
        QSizeF cell;
        ImagePtr photo;
        QPointF farthest; // content 150 × 150 at zoom 2 is 300 × 300, less the cell's own side
    };
    for (const Case& c :
         {Case{{200, 100}, picture(400, 300), {100, 200}}, Case{{100, 200}, picture(300, 400), {200, 100}}}) {
        FrameCellItem cell(0);
        cell.setFrame(QRectF(QPointF(10, 20), c.cell));
        cell.setImage(c.photo);
        cell.layoutContent(2.0);
        ASSERT_EQ(cell.contentSize(), QSizeF(150, 150));
        cell.panBy(QPointF(-1000, -1000)); // dragged up and left: the far corner shows
        EXPECT_EQ(cell.contentOffset(), c.farthest) << c.cell.width();
        cell.panBy(QPointF(1000, 1000));
        EXPECT_EQ(cell.contentOffset(), QPointF(0, 0));
    }
}

TEST(FrameCellItem, ZoomKeepsThePointUnderTheAnchorAndStopsAtSix) {
    FrameCellItem cell(0);
    cell.setFrame(QRectF(0, 0, 200, 100));
    cell.setImage(picture(400, 300));
    cell.layoutContent(2.0);
    cell.panBy(QPointF(1000, 1000));
    cell.zoomBy(1.5, QPointF(50, 25));
    EXPECT_DOUBLE_EQ(cell.zoomScale(), 3.0);
    EXPECT_EQ(cell.contentOffset(), QPointF(25, 12.5));
    cell.zoomBy(100, QPointF(0, 0));
    EXPECT_DOUBLE_EQ(cell.zoomScale(), 6.0);
}

} // namespace
