#include "platform/Screen.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

// Sets an environment variable for one scope.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const QByteArray& value)
        : name_(name), had_(qEnvironmentVariableIsSet(name)), old_(qgetenv(name)) {
        qputenv(name, value);
    }
    ~ScopedEnvironment() { had_ ? (void)qputenv(name_, old_) : (void)qunsetenv(name_); }

private:
    const char* name_;
    bool had_;
    QByteArray old_;
};

} // namespace

TEST(ScreenTest, ScaleComesFromTheEnvironmentOnlyWhenUsable) {
    {
        ScopedEnvironment scale("LUMIVEX_SCREEN_SCALE", "2");
        EXPECT_DOUBLE_EQ(Screen().scale(), 2.0);
    }
    for (const char* bad : {"", "zero", "0", "-1", "nan", "inf"}) {
        ScopedEnvironment scale("LUMIVEX_SCREEN_SCALE", bad);
        EXPECT_DOUBLE_EQ(Screen().scale(), Screen::kDefaultScale) << "LUMIVEX_SCREEN_SCALE=" << bad;
    }
}

TEST(ScreenTest, DefaultsToThePhoneShapeAndRejectsEmptySizes) {
    Screen screen;
    EXPECT_EQ(screen.bounds(), QRectF(0, 0, 390, 844));
    QSignalSpy changed(&screen, &Screen::changed);

    screen.setSize(QSizeF(0, 844));
    screen.setScale(0);
    screen.setSize(QSizeF(390, 844));
    EXPECT_EQ(changed.count(), 0);

    screen.setSize(QSizeF(428, 926));
    screen.setScale(2);
    EXPECT_EQ(screen.bounds(), QRectF(0, 0, 428, 926));
    EXPECT_DOUBLE_EQ(screen.scale(), 2.0);
    EXPECT_EQ(changed.count(), 2);
}
