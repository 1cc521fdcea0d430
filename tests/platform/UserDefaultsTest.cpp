#include "platform/UserDefaults.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class UserDefaultsTest : public ::testing::Test {
protected:
    QString file(const QString& name = QStringLiteral("defaults.ini")) const { return folder.filePath(name); }
    QTemporaryDir folder;
};

} // namespace

TEST_F(UserDefaultsTest, SynchronizedValuesSurviveARelaunchUnderTheirExactKey) {
    {
        UserDefaults first(file());
        EXPECT_FALSE(first.boolForKey("HasHomeLauned"));
        first.setBool(true, "HasHomeLauned");
        first.setBool(true, "ToBeRemoved");
        first.removeObjectForKey("ToBeRemoved");
        EXPECT_TRUE(first.synchronize());
    }
    UserDefaults relaunched(file());
    EXPECT_TRUE(relaunched.boolForKey("HasHomeLauned"));
    EXPECT_FALSE(relaunched.boolForKey("hasHomeLauned"));
    EXPECT_FALSE(relaunched.boolForKey("ToBeRemoved"));
}

TEST_F(UserDefaultsTest, UnwritableLocationFailsQuietly) {
    // A folder cannot be made under a plain file, whoever runs the test.
    QFile blocker(file("not-a-folder"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    UserDefaults defaults(file("not-a-folder/defaults.ini"));
    defaults.setBool(true, "HasHomeLauned");
    EXPECT_FALSE(defaults.synchronize());
}

TEST_F(UserDefaultsTest, StandardStoreMovesWithoutLosingPendingWrites) {
    UserDefaults& standard = UserDefaults::standard();
    const QString previous = standard.path();
    UserDefaults::setStandardPath(file("standard.ini"));
    EXPECT_EQ(&UserDefaults::standard(), &standard);
    EXPECT_EQ(standard.path(), file("standard.ini"));
    standard.setBool(true, "HasHomeLauned");
    UserDefaults::setStandardPath(previous);
    EXPECT_TRUE(UserDefaults(file("standard.ini")).boolForKey("HasHomeLauned"));
}
