#include "collage/LayersPanelView.h"
#include "collage/CollageCellStyle.h"
#include "collage/LayerCell.h"
#include "collage/LayersTabButton.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QScrollArea>
#include <QTest>
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

ImagePtr solidImage(QColor colour) {
    QImage bitmap(8, 8, QImage::Format_RGB32);
    bitmap.fill(colour);
    return Image::make(bitmap);
}

// A screen's side of the panel: layers as a list of pictures, front first, and one selected row.
struct LayersFixture {
    QWidget host;
    LayersPanelView* panel = nullptr;
    std::vector<ImagePtr> layers{solidImage(Qt::red), solidImage(Qt::green), solidImage(Qt::blue)};
    std::optional<int> selected;
    std::vector<int> selectCalls;
    std::vector<std::pair<int, int>> moves;
    int countQueries = 0;

    LayersFixture() {
        host.resize(390, 844);
        panel = new LayersPanelView(&host);
        panel->numberOfLayers = [this]() {
            ++countQueries;
            return static_cast<int>(layers.size());
        };
        panel->thumbnail = [this](int row) { return layers.at(static_cast<size_t>(row)); };
        panel->isRowSelected = [this](int row) { return selected == row; };
        panel->onSelectRow = [this](int row) {
            selectCalls.push_back(row);
            selected = row;
        };
        panel->onMoveRow = [this](int from, int to) {
            moves.emplace_back(from, to);
            ImagePtr moving = layers[static_cast<size_t>(from)];
            layers.erase(layers.begin() + from);
            layers.insert(layers.begin() + to, moving);
            // The selection follows the pane that moved.
            if (selected == from)
                selected = to;
        };
        host.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&host));
    }

    QWidget* viewport() const { return panel->tableView()->viewport(); }
    // A point in the list's viewport over `row`.
    QPoint pointInRow(int row) const {
        return panel->cellForRow(row)->mapTo(viewport(), panel->cellForRow(row)->rect().center());
    }

    // Sends a drag over and a drop at `position`; answers whether the list took them.
    std::pair<bool, bool> dragAndDrop(QMimeData* data, QPoint position) {
        QDragEnterEvent enter(position, Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport(), &enter);
        QDropEvent drop(QPointF(position), Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport(), &drop);
        return {enter.isAccepted(), drop.isAccepted()};
    }
};

} // namespace

TEST(LayersPanelViewTest, OpensOverTheScreenWithRowsFromTheClosures) {
    LayersFixture f;
    EXPECT_TRUE(f.panel->isHidden());
    EXPECT_EQ(f.panel->rowCount(), 0) << "nothing is asked before opening";

    f.panel->open();
    EXPECT_TRUE(f.panel->isOpen());
    EXPECT_TRUE(f.panel->isVisible());
    EXPECT_EQ(f.panel->geometry(), f.host.rect());
    EXPECT_DOUBLE_EQ(f.panel->scrimAlpha(), 1.0);
    const QRect card = f.panel->cardView()->geometry();
    EXPECT_NEAR(card.width(), 390 * 0.72, 1.0);
    EXPECT_EQ(card.right(), f.host.rect().right()) << "the card rests against the right edge";

    ASSERT_EQ(f.panel->rowCount(), 3);
    EXPECT_EQ(f.panel->cellForRow(0)->title(), "Layer 01");
    EXPECT_EQ(f.panel->cellForRow(0)->thumbnail(), f.layers[0]);
    EXPECT_EQ(f.panel->cellForRow(2)->title(), "Layer 03");
    EXPECT_EQ(f.panel->cellForRow(2)->thumbnail(), f.layers[2]);
    EXPECT_EQ(f.panel->cellForRow(1)->height(), LayerCell::rowHeight);
    EXPECT_EQ(LayerCell::layerTitle(11), "Layer 12");
}

TEST(LayersPanelViewTest, SelectionBorderFollowsTheScreensAnswer) {
    LayersFixture f;
    f.selected = 1;
    f.panel->open();
    const auto expectSelected = [&](int selectedRow) {
        for (int row = 0; row < f.panel->rowCount(); ++row) {
            const LayerCell* cell = f.panel->cellForRow(row);
            const bool isSelected = row == selectedRow;
            EXPECT_EQ(cell->isLayerSelected(), isSelected) << row;
            EXPECT_DOUBLE_EQ(cell->borderWidth(), isSelected ? 2.0 : 1.0) << row;
            EXPECT_EQ(cell->borderColor(),
                      isSelected ? CollageCellStyle::systemBlue() : CollageCellStyle::white(0.06))
                << row;
        }
    };
    expectSelected(1);

    // A click selects through the screen and the panel stays open.
    QTest::mouseClick(f.panel->cellForRow(2), Qt::LeftButton, {}, f.panel->cellForRow(2)->rect().center());
    EXPECT_EQ(f.selectCalls, std::vector<int>{2});
    expectSelected(2);
    EXPECT_TRUE(f.panel->isOpen());

    // The screen changes its mind on its own: a reload shows it.
    f.selected.reset();
    f.panel->reloadData();
    expectSelected(-1);

    // Keys: Down from nothing picks the front row, Down again the next.
    f.panel->setFocus();
    QTest::keyClick(f.panel, Qt::Key_Down);
    QTest::keyClick(f.panel, Qt::Key_Down);
    EXPECT_EQ(f.selectCalls, (std::vector<int>{2, 0, 1}));
    expectSelected(1);
}

TEST(LayersPanelViewTest, DropsMoveRowsWithinTheListOnly) {
    LayersFixture f;
    f.panel->open();
    const std::vector<ImagePtr> original = f.layers;

    // Same source and destination: nothing.
    std::unique_ptr<QMimeData> same(f.panel->mimeDataForRow(1));
    f.dragAndDrop(same.get(), f.pointInRow(1));
    EXPECT_TRUE(f.moves.empty());

    // From outside the program: a plain text, and a layer drag of another list.
    QMimeData outside;
    outside.setText("layer-0");
    EXPECT_EQ(f.dragAndDrop(&outside, f.pointInRow(2)), std::make_pair(false, false));
    LayersPanelView otherPanel;
    otherPanel.numberOfLayers = []() { return 3; };
    otherPanel.reloadData();
    std::unique_ptr<QMimeData> foreign(otherPanel.mimeDataForRow(0));
    EXPECT_EQ(f.dragAndDrop(foreign.get(), f.pointInRow(2)), std::make_pair(false, false));
    EXPECT_TRUE(f.moves.empty());
    EXPECT_EQ(f.layers, original);

    // Front to back: the numbers stay in place and the pictures change.
    std::unique_ptr<QMimeData> front(f.panel->mimeDataForRow(0));
    EXPECT_EQ(front->text(), "layer-0");
    EXPECT_EQ(f.dragAndDrop(front.get(), f.pointInRow(2)), std::make_pair(true, true));
    ASSERT_EQ(f.moves, (std::vector<std::pair<int, int>>{{0, 2}}));
    EXPECT_EQ(f.panel->cellForRow(2)->title(), "Layer 03");
    EXPECT_EQ(f.panel->cellForRow(2)->thumbnail(), original[0]);
    EXPECT_EQ(f.panel->cellForRow(0)->thumbnail(), original[1]);

    // Below the last row there is no row: the drop goes to the last one.
    const QPoint belowRows(f.viewport()->width() / 2, 3 * LayerCell::rowHeight + 100);
    ASSERT_LT(belowRows.y(), f.viewport()->height());
    std::unique_ptr<QMimeData> middle(f.panel->mimeDataForRow(0));
    f.dragAndDrop(middle.get(), belowRows);
    EXPECT_EQ(f.moves.back(), std::make_pair(0, 2));
}

// While a row is dragged, a line shows where it will land: above the row under the pointer when it
// moves up the list, below it when it moves down, and nothing over its own row or once the drag leaves.
TEST(LayersPanelViewTest, TheDropLineStandsOnTheSideTheRowWillTake) {
    LayersFixture f;
    f.panel->open();
    auto* line = f.panel->findChild<QWidget*>(QStringLiteral("dropIndicator"));
    ASSERT_NE(line, nullptr);
    const auto hover = [&](int from, int over) {
        std::unique_ptr<QMimeData> data(f.panel->mimeDataForRow(from));
        QDragEnterEvent enter(f.pointInRow(over), Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(f.viewport(), &enter);
        QDragMoveEvent move(f.pointInRow(over), Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(f.viewport(), &move);
    };
    hover(0, 2);
    ASSERT_TRUE(line->isVisible());
    EXPECT_EQ(line->geometry().center().y(), 3 * LayerCell::rowHeight - 1);
    hover(2, 1);
    ASSERT_TRUE(line->isVisible());
    EXPECT_EQ(line->geometry().center().y(), LayerCell::rowHeight - 1);
    hover(1, 1);
    EXPECT_FALSE(line->isVisible());
    hover(0, 1);
    QDragLeaveEvent leave;
    QApplication::sendEvent(f.viewport(), &leave);
    EXPECT_FALSE(line->isVisible());
    EXPECT_TRUE(f.moves.empty());
}

TEST(LayersPanelViewTest, ControlArrowsMoveTheSelectedRow) {
    LayersFixture f;
    f.selected = 0;
    f.panel->open();
    f.panel->setFocus();
    QTest::keyClick(f.panel, Qt::Key_Up, Qt::ControlModifier); // already in front
    EXPECT_TRUE(f.moves.empty());
    QTest::keyClick(f.panel, Qt::Key_Down, Qt::ControlModifier);
    QTest::keyClick(f.panel, Qt::Key_Down, Qt::ControlModifier);
    QTest::keyClick(f.panel, Qt::Key_Down, Qt::ControlModifier); // already at the back
    EXPECT_EQ(f.moves, (std::vector<std::pair<int, int>>{{0, 1}, {1, 2}}));
    EXPECT_TRUE(f.panel->cellForRow(2)->isLayerSelected());
}

TEST(LayersPanelViewTest, ScrimCloseButtonAndEscCloseAndKeepTheSelection) {
    LayersFixture f;
    f.selected = 1;
    f.panel->open();
    QTest::mouseClick(f.panel->scrimView(), Qt::LeftButton, {}, QPoint(20, 400));
    EXPECT_FALSE(f.panel->isOpen());
    EXPECT_TRUE(f.panel->isHidden());
    EXPECT_GE(f.panel->cardTrailing(), LayersPanelView::closedTrailing);
    EXPECT_DOUBLE_EQ(f.panel->scrimAlpha(), 0.0);
    EXPECT_EQ(f.selected, 1);
    EXPECT_TRUE(f.selectCalls.empty());

    // A click on the card is not a click on the scrim.
    f.panel->open();
    QTest::mouseClick(f.panel->cardView(), Qt::LeftButton, {}, QPoint(100, 30));
    EXPECT_TRUE(f.panel->isOpen());

    QTest::mouseClick(f.panel->closeButton(), Qt::LeftButton);
    EXPECT_TRUE(f.panel->isHidden());

    f.panel->open();
    f.panel->setFocus();
    QTest::keyClick(f.panel, Qt::Key_Escape);
    EXPECT_TRUE(f.panel->isHidden());
    EXPECT_EQ(f.selected, 1);
}

TEST(LayersPanelViewTest, DismissWhenHiddenDoesNothing) {
    LayersFixture f;
    f.panel->dismiss(true);
    f.panel->dismiss(false);
    EXPECT_TRUE(f.panel->isHidden());
    EXPECT_EQ(f.countQueries, 0);

    f.panel->open();
    f.panel->dismiss(false);
    EXPECT_TRUE(f.panel->isHidden());
    const int queries = f.countQueries;
    f.panel->dismiss(true);
    EXPECT_EQ(f.countQueries, queries);
    EXPECT_TRUE(f.panel->isHidden());
}

TEST(LayersPanelViewTest, FollowsTheScreensSizeAndEmptiesCleanly) {
    LayersFixture f;
    f.panel->open();
    f.host.resize(600, 700);
    EXPECT_EQ(f.panel->geometry(), f.host.rect());
    EXPECT_EQ(f.panel->cardView()->geometry().right(), 599);

    f.layers.clear();
    f.panel->reloadData();
    EXPECT_EQ(f.panel->rowCount(), 0);
    EXPECT_FALSE(f.panel->destinationRow(QPoint(10, 10)));
    QTest::keyClick(f.panel, Qt::Key_Down, Qt::ControlModifier);
    EXPECT_TRUE(f.moves.empty());
}

TEST(LayersTabButtonTest, IsOneLineAtLeastFortyHighWithoutItsSymbolInstalled) {
    LayersTabButton button;
    EXPECT_EQ(button.text(), "Layers");
    EXPECT_GE(button.sizeHint().height(), LayersTabButton::minimumHeight);
    button.resize(button.sizeHint());
    QImage image(button.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    button.render(&image);
    // The stand-in symbol is drawn left of the title: some bright pixels there.
    int bright = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = LayersTabButton::padding; x < LayersTabButton::padding + 20; ++x)
            bright += qGray(image.pixel(x, y)) > 128 && qAlpha(image.pixel(x, y)) > 128;
    EXPECT_GT(bright, 5);
}
