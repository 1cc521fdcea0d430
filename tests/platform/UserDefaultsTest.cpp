#include "platform/UserDefaults.h"

#include <QDir>
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

TEST_F(UserDefaultsTest, AbsentKeyReadsFalse) {
    UserDefaults defaults(file());
    EXPECT_FALSE(defaults.boolForKey("HasHomeLauned"));
    EXPECT_EQ(defaults.path(), file());
}

TEST_F(UserDefaultsTest, SynchronizedValueSurvivesARelaunch) {
    {
        UserDefaults first(file());
        first.setBool(true, "HasHomeLauned");
        first.setBool(false, "OnboardingDone");
        EXPECT_TRUE(first.boolForKey("HasHomeLauned"));
        EXPECT_TRUE(first.synchronize());
    }
    UserDefaults relaunched(file());
    EXPECT_TRUE(relaunched.boolForKey("HasHomeLauned"));
    EXPECT_FALSE(relaunched.boolForKey("OnboardingDone"));

    relaunched.removeObjectForKey("HasHomeLauned");
    EXPECT_FALSE(relaunched.boolForKey("HasHomeLauned"));
    EXPECT_TRUE(relaunched.synchronize());
    EXPECT_FALSE(UserDefaults(file()).boolForKey("HasHomeLauned"));
}

TEST_F(UserDefaultsTest, SynchronizePicksUpAnotherInstancesWrite) {
    UserDefaults reader(file());
    EXPECT_FALSE(reader.boolForKey("HasHomeLauned"));
    UserDefaults writer(file());
    writer.setBool(true, "HasHomeLauned");
    ASSERT_TRUE(writer.synchronize());
    EXPECT_TRUE(reader.synchronize());
    EXPECT_TRUE(reader.boolForKey("HasHomeLauned"));
}

TEST_F(UserDefaultsTest, KeysAreCaseSensitive) {
    UserDefaults defaults(file());
    defaults.setBool(true, "HasHomeLauned");
    ASSERT_TRUE(defaults.synchronize());
    UserDefaults relaunched(file());
    EXPECT_TRUE(relaunched.boolForKey("HasHomeLauned"));
    EXPECT_FALSE(relaunched.boolForKey("hasHomeLauned"));
    EXPECT_FALSE(relaunched.boolForKey("HasHomeLaunched"));
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

TEST_F(UserDefaultsTest, StandardStoreFollowsTheChosenPathAndKeepsItsIdentity) {
    UserDefaults& standard = UserDefaults::standard();
    const QString previous = standard.path();
    UserDefaults::setStandardPath(file("standard.ini"));
    EXPECT_EQ(&UserDefaults::standard(), &standard);
    EXPECT_EQ(standard.path(), file("standard.ini"));
    standard.setBool(true, "HasHomeLauned");
    UserDefaults::setStandardPath(previous);
    // Switching away saved what was pending.
    EXPECT_TRUE(UserDefaults(file("standard.ini")).boolForKey("HasHomeLauned"));
}
