#include "collage/FeatherOptionsView.h"
#include "collage/FeatherSliderRow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>
#include <vector>

namespace {

struct RowFixture {
    FeatherSliderRow row{QStringLiteral("arrow.left.and.right"), QStringLiteral("Horizontal")};
    std::vector<double> sent;

    RowFixture() {
        row.onValueChanged = [this](double value) { sent.push_back(value); };
        row.resize(360, FeatherSliderRow::rowHeight);
        row.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&row));
    }
};

} // namespace

TEST(FeatherSliderRowTest, DraggingToTheEndSendsOneHundred) {
    RowFixture f;
    f.row.setValue(50);
    QSlider* slider = f.row.slider();
    // At 50 the thumb sits in the middle of the slider.
    const QPoint thumb(slider->width() / 2, slider->height() / 2);
    QTest::mousePress(slider, Qt::LeftButton, {}, thumb);
    QTest::mouseMove(slider, QPoint(slider->width() * 3 / 4, thumb.y()));
    QTest::mouseMove(slider, QPoint(slider->width() + 80, thumb.y()));
    QTest::mouseRelease(slider, Qt::LeftButton, {}, QPoint(slider->width() + 80, thumb.y()));

    ASSERT_GE(f.sent.size(), 2u) << "every step of a drag is sent";
    EXPECT_DOUBLE_EQ(f.sent.back(), 100.0);
    EXPECT_EQ(f.row.valueLabel()->text(), "100");
}

TEST(FeatherSliderRowTest, LoadingShowsTheRoundedValueAndFiresNothing) {
    RowFixture f;
    f.row.setValue(25.4);
    EXPECT_EQ(f.row.valueLabel()->text(), "25");
    EXPECT_DOUBLE_EQ(f.row.value(), 25.4);
    f.row.setValue(25.6);
    EXPECT_EQ(f.row.valueLabel()->text(), "26");
    f.row.setValue(140);
    EXPECT_EQ(f.row.valueLabel()->text(), "100");
    EXPECT_DOUBLE_EQ(f.row.value(), 100.0);
    f.row.setValue(-3);
    EXPECT_EQ(f.row.valueLabel()->text(), "0");
    EXPECT_TRUE(f.sent.empty());
}

TEST(FeatherSliderRowTest, KeysAndWheelChangeTheValueAndFire) {
    RowFixture f;
    f.row.setValue(25.4);
    f.row.slider()->setFocus();

    QTest::keyClick(f.row.slider(), Qt::Key_Right);
    ASSERT_EQ(f.sent.size(), 1u);
    EXPECT_DOUBLE_EQ(f.sent.back(), 26.4) << "an arrow moves one unit, the fraction kept";
    EXPECT_EQ(f.row.valueLabel()->text(), "26");

    QTest::keyClick(f.row.slider(), Qt::Key_PageUp);
    EXPECT_DOUBLE_EQ(f.sent.back(), 36.4);
    QTest::keyClick(f.row.slider(), Qt::Key_End);
    EXPECT_DOUBLE_EQ(f.sent.back(), 100.0);
    QTest::keyClick(f.row.slider(), Qt::Key_Home);
    EXPECT_DOUBLE_EQ(f.sent.back(), 0.0);
    EXPECT_EQ(f.row.valueLabel()->text(), "0");

    const size_t before = f.sent.size();
    const QPointF centre(f.row.slider()->width() / 2.0, f.row.slider()->height() / 2.0);
    QWheelEvent wheel(centre, f.row.slider()->mapToGlobal(centre), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(f.row.slider(), &wheel);
    ASSERT_GT(f.sent.size(), before);
    EXPECT_GT(f.sent.back(), 0.0);
    EXPECT_DOUBLE_EQ(f.sent.back(), f.row.value());
}

TEST(FeatherOptionsViewTest, EachRowReportsToItsOwnCallback) {
    FeatherOptionsView view;
    view.resize(390, FeatherOptionsView::preferredHeight);
    std::vector<double> horizontal, vertical;
    view.onHorizontalFeatherChanged = [&](double value) { horizontal.push_back(value); };
    view.onVerticalFeatherChanged = [&](double value) { vertical.push_back(value); };

    EXPECT_EQ(view.titleLabel()->text(), "Feather Intensity");
    EXPECT_EQ(view.horizontalRow()->titleLabel()->text(), "Horizontal");
    EXPECT_EQ(view.verticalRow()->titleLabel()->text(), "Vertical");

    view.horizontalRow()->slider()->setValue(123); // as a drag would
    view.verticalRow()->setValue(40);              // as the owner loads a pane
    view.verticalRow()->slider()->setValue(777);
    EXPECT_EQ(horizontal, std::vector<double>{12.3});
    EXPECT_EQ(vertical, std::vector<double>{77.7});
}
