#include "platform/Screen.h"

#include <gtest/gtest.h>

TEST(ScreenTest, EnvironmentScaleIsUsedOnlyWhenPositive) {
    const QByteArray saved = qgetenv("LUMIVEX_SCREEN_SCALE");
    qputenv("LUMIVEX_SCREEN_SCALE", "2");
    EXPECT_DOUBLE_EQ(Screen().scale(), 2.0);
    for (const char* bad : {"", "zero", "0", "-1", "nan", "inf"}) {
        qputenv("LUMIVEX_SCREEN_SCALE", bad);
        EXPECT_DOUBLE_EQ(Screen().scale(), Screen::kDefaultScale) << "LUMIVEX_SCREEN_SCALE=" << bad;
    }
    saved.isNull() ? qunsetenv("LUMIVEX_SCREEN_SCALE") : qputenv("LUMIVEX_SCREEN_SCALE", saved);
}

TEST(ScreenTest, IgnoresEmptySizesAndScales) {
    Screen screen;
    EXPECT_EQ(screen.bounds(), QRectF(0, 0, 390, 844));
    screen.setSize(QSizeF(0, 500));
    screen.setScale(-2);
    EXPECT_EQ(screen.size(), QSizeF(390, 844));
    screen.setSize(QSizeF(428, 926));
    EXPECT_EQ(screen.bounds(), QRectF(0, 0, 428, 926));
}
