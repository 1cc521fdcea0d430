#include "platform/Notifications.h"
#include "platform/Tracking.h"

#include "platform/Dispatch.h"
#include "support/TestSupport.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using testsupport::waitUntil;

TEST(NotificationsTest, BadgeSignalsOnlyRealChanges) {
    Notifications notifications;
    QSignalSpy changed(&notifications, &Notifications::badgeNumberChanged);
    for (int number : {0, 3, 3, 0})
        notifications.setApplicationIconBadgeNumber(number);
    ASSERT_EQ(changed.count(), 2);
    EXPECT_EQ(changed.at(0).at(0).toInt(), 3);
    EXPECT_EQ(notifications.applicationIconBadgeNumber(), 0);
}

TEST(NotificationsTest, AuthorizationIsRefusedLaterOnMainAndCallsAreRecordedInOrder) {
    Notifications notifications;
    bool called = false, granted = true, onMain = false;
    notifications.requestAuthorization(Notifications::alert | Notifications::badge | Notifications::sound,
                                       [&](bool g, QString error) {
                                           called = true;
                                           granted = g || !error.isEmpty();
                                           onMain = Dispatch::isMainThread();
                                       });
    notifications.registerForRemoteNotifications();
    EXPECT_FALSE(called) << "completion must not run inside the request";
    ASSERT_TRUE(waitUntil([&] { return called; }, 1000));
    EXPECT_FALSE(granted);
    EXPECT_TRUE(onMain);
    EXPECT_EQ(notifications.authorizationRequests(), std::vector<int>{7});
    EXPECT_EQ(notifications.registrationCount(), 1);
    EXPECT_EQ(notifications.callLog(),
              QStringList({"requestAuthorization:7", "registerForRemoteNotifications"}));
}

TEST(TrackingTest, RequestIsCountedAndAnsweredDeniedLaterOnMain) {
    TrackingManager::resetForTesting();
    int status = -1;
    TrackingManager::requestTrackingAuthorization([&](int s) { status = s; });
    EXPECT_EQ(TrackingManager::requestCount(), 1);
    EXPECT_EQ(status, -1);
    ASSERT_TRUE(waitUntil([&] { return status != -1; }, 1000));
    EXPECT_EQ(status, TrackingManager::denied);
}
