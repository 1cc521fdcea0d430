#include "platform/AppWindow.h"
#include "platform/NavigationController.h"
#include "platform/Notifications.h"
#include "platform/Tracking.h"
#include "platform/UserDefaults.h"
#include "shell/AppDelegate.h"
#include "shell/NewHomePageController.h"
#include "shell/TutorialPageIndicatorView.h"
#include "shell/TutorialPageViewController.h"
#include "shell/TutorialStartPageViewController.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

std::optional<uint32_t> reachableFlags() {
    return Reachability::kReachable;
}
std::optional<uint32_t> unreadableFlags() {
    return std::nullopt;
}

class LaunchTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString defaultsPath() const { return dir.filePath(QStringLiteral("defaults.ini")); }

    // One run of the program: a fresh application object over the same stored defaults.
    struct Run {
        UserDefaults defaults;
        Notifications notifications;
        AppDelegate delegate;
        Run(const QString& path, Reachability::FlagReader flags)
            : defaults(path), delegate(defaults, notifications, Reachability(std::move(flags))) {
            delegate.didFinishLaunchingWithOptions();
        }
        ViewController* root() const { return delegate.window()->rootViewController(); }
        NavigationController* navigation() const { return qobject_cast<NavigationController*>(root()); }
    };

    std::unique_ptr<Run> launch(Reachability::FlagReader flags = unreadableFlags) {
        return std::make_unique<Run>(defaultsPath(), std::move(flags));
    }
};

TEST_F(LaunchTest, FirstRunShowsTutorialUntilFinishedThenHomeAsBareRoot) {
    {
        auto run = launch();
        NavigationController* nav = run->navigation();
        ASSERT_NE(nav, nullptr);
        EXPECT_TRUE(nav->isNavigationBarHidden());
        auto* first = qobject_cast<TutorialPageViewController*>(nav->topViewController());
        ASSERT_NE(first, nullptr);
        EXPECT_EQ(first->content().pageIndex, 0);
        // Leaving in the middle of the tutorial stores nothing.
        first->didTapContinue();
        EXPECT_EQ(nav->viewControllers().size(), 2);
    }
    EXPECT_FALSE(UserDefaults(defaultsPath()).boolForKey(QStringLiteral("hasLaunchedBefore")));
    {
        auto run = launch();
        ASSERT_NE(run->navigation(), nullptr);
        auto* page = qobject_cast<TutorialPageViewController*>(run->navigation()->topViewController());
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(page->content().pageIndex, 0);
        page->didTapSkip();
        auto* home = qobject_cast<NewHomePageController*>(run->root());
        ASSERT_NE(home, nullptr);
        EXPECT_EQ(home->navigationController(), nullptr);
    }
    EXPECT_TRUE(UserDefaults(defaultsPath()).boolForKey(QStringLiteral("hasLaunchedBefore")));
    auto run = launch();
    auto* home = qobject_cast<NewHomePageController*>(run->root());
    ASSERT_NE(home, nullptr);
    EXPECT_EQ(home->parentWidget(), run->delegate.window());
    EXPECT_EQ(home->navigationController(), nullptr);
    EXPECT_TRUE(
        testsupport::waitUntil([&] { return home->headerLabel() && home->headerLabel()->isVisible(); }));
}

TEST_F(LaunchTest, StartUpAsksForNotificationsBeforeRegistering) {
    auto run = launch();
    EXPECT_EQ(run->notifications.callLog(), QStringList({QStringLiteral("requestAuthorization:7"),
                                                         QStringLiteral("registerForRemoteNotifications")}));
}

TEST_F(LaunchTest, WalkingTheWholeTutorialWithButtonsEndsOnHome) {
    auto run = launch();
    NavigationController* nav = run->navigation();
    ASSERT_NE(nav, nullptr);
    for (int page = 0; page < 3; ++page) {
        auto* current = qobject_cast<TutorialPageViewController*>(nav->topViewController());
        ASSERT_NE(current, nullptr) << "page " << page;
        EXPECT_EQ(current->content().pageIndex, page);
        QTest::mouseClick(current->continueButton(), Qt::LeftButton);
    }
    auto* start = qobject_cast<TutorialStartPageViewController*>(nav->topViewController());
    ASSERT_NE(start, nullptr);
    EXPECT_EQ(start->pageIndex(), 3);
    EXPECT_FALSE(start->selectedIndex().has_value());
    // Continue works without a picked card.
    QTest::mouseClick(start->continueButton(), Qt::LeftButton);
    EXPECT_NE(qobject_cast<NewHomePageController*>(run->root()), nullptr);
    EXPECT_TRUE(run->defaults.boolForKey(QStringLiteral("hasLaunchedBefore")));
}

TEST_F(LaunchTest, BackFromLastPageReturnsToThirdPageWithThirdDot) {
    auto run = launch();
    NavigationController* nav = run->navigation();
    for (int i = 0; i < 3; ++i)
        qobject_cast<TutorialPageViewController*>(nav->topViewController())->didTapContinue();
    auto* start = qobject_cast<TutorialStartPageViewController*>(nav->topViewController());
    ASSERT_NE(start, nullptr);
    QTest::mouseClick(start->backButton(), Qt::LeftButton);
    auto* page = qobject_cast<TutorialPageViewController*>(nav->topViewController());
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->content().pageIndex, 2);
    EXPECT_EQ(page->pageIndicatorView()->currentPage(), 2);
    EXPECT_EQ(page->pageIndicatorView()->targetDotWidths(), QList<int>({8, 8, 22, 8}));
    EXPECT_TRUE(page->isVisible());
    EXPECT_EQ(nav->viewControllers().size(), 3);
}

TEST_F(LaunchTest, FirstPageHasNoBackAction) {
    auto run = launch();
    NavigationController* nav = run->navigation();
    auto* first = qobject_cast<TutorialPageViewController*>(nav->topViewController());
    ASSERT_NE(first, nullptr);
    EXPECT_FALSE(first->hasBackAction());
    EXPECT_FALSE(first->backButton()->isVisibleTo(first));
    first->didTapBack();
    QTest::keyClick(first, Qt::Key_Backspace);
    EXPECT_EQ(nav->topViewController(), first);
    // Every later page has one.
    first->didTapContinue();
    auto* second = qobject_cast<TutorialPageViewController*>(nav->topViewController());
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(second->hasBackAction());
    second->didTapBack();
    EXPECT_EQ(nav->topViewController(), first);
}

TEST_F(LaunchTest, NotificationBadgeTakesOnlyIntegers) {
    auto run = launch();
    Notifications& n = run->notifications;
    AppDelegate& d = run->delegate;
    n.setApplicationIconBadgeNumber(4);

    int presentOptions = -1;
    d.willPresentNotification({{QStringLiteral("badge"), QStringLiteral("9")}},
                              [&](int o) { presentOptions = o; });
    EXPECT_EQ(n.applicationIconBadgeNumber(), 4);
    EXPECT_EQ(presentOptions, 7);

    bool responded = false;
    d.didReceiveNotificationResponse({{QStringLiteral("badge"), 2.5}}, [&] { responded = true; });
    EXPECT_TRUE(responded);
    EXPECT_EQ(n.applicationIconBadgeNumber(), 4);

    std::optional<BackgroundFetchResult> fetch;
    d.didReceiveRemoteNotification({{QStringLiteral("other"), 3}},
                                   [&](BackgroundFetchResult r) { fetch = r; });
    EXPECT_EQ(fetch, BackgroundFetchResult::newData);
    EXPECT_EQ(n.applicationIconBadgeNumber(), 4);

    d.didReceiveRemoteNotification({{QStringLiteral("badge"), 12}}, {});
    EXPECT_EQ(n.applicationIconBadgeNumber(), 12);
    // Numbers parsed from JSON are doubles; a whole one is still an integer.
    d.willPresentNotification({{QStringLiteral("badge"), 3.0}}, {});
    EXPECT_EQ(n.applicationIconBadgeNumber(), 3);
    EXPECT_FALSE(AppDelegate::badgeNumber({{QStringLiteral("badge"), true}}).has_value());
}

TEST_F(LaunchTest, ActivationClearsBadgeAndPromptsForTrackingOnlyWhenReachable) {
    TrackingManager::resetForTesting();
    {
        auto run = launch(unreadableFlags);
        run->notifications.setApplicationIconBadgeNumber(5);
        run->delegate.applicationDidBecomeActive();
        EXPECT_EQ(run->notifications.applicationIconBadgeNumber(), 0);
        EXPECT_FALSE(AppDelegate::isNetworkReachable());
        testsupport::spin(1300);
        EXPECT_EQ(TrackingManager::requestCount(), 0);
    }
    auto run = launch(reachableFlags);
    run->notifications.setApplicationIconBadgeNumber(2);
    run->delegate.applicationDidBecomeActive();
    EXPECT_EQ(run->notifications.applicationIconBadgeNumber(), 0);
    EXPECT_TRUE(AppDelegate::isNetworkReachable());
    // The prompt waits a second.
    testsupport::spin(300);
    EXPECT_EQ(TrackingManager::requestCount(), 0);
    EXPECT_TRUE(testsupport::waitUntil([] { return TrackingManager::requestCount() == 1; }, 3000));
}

TEST_F(LaunchTest, DelayedTrackingPromptIsDroppedWhenTheApplicationIsGone) {
    TrackingManager::resetForTesting();
    {
        auto run = launch(reachableFlags);
        run->delegate.applicationDidBecomeActive();
    }
    testsupport::spin(1300);
    EXPECT_EQ(TrackingManager::requestCount(), 0);
}

} // namespace
