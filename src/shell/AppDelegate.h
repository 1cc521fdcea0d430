#pragma once

#include "platform/Notifications.h"
#include "platform/Reachability.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <optional>

class AppWindow;
class UserDefaults;
class ViewController;

// The application object: decides the first screen, runs the start-up order, leads through the
// first-run tutorial and answers the system's activation and notification callbacks.
class AppDelegate : public QObject {
    Q_OBJECT
public:
    AppDelegate(UserDefaults& defaults, Notifications& notifications,
                Reachability reachability = Reachability(), QObject* parent = nullptr);
    ~AppDelegate() override;

    AppWindow* window() const { return window_.get(); }

    // Start-up; always answers true.
    bool didFinishLaunchingWithOptions();

    void applicationDidBecomeActive();
    void applicationWillResignActive() {}
    void applicationDidEnterBackground() {}
    void applicationWillEnterForeground() {}
    void applicationWillTerminate() {}

    // Push messaging: the token is neither kept nor sent, and neither is a device token.
    void didReceiveRegistrationToken(const QString& /*token*/) {}
    void didRegisterForRemoteNotificationsWithDeviceToken(const QByteArray& /*deviceToken*/) {}
    void didFailToRegisterForRemoteNotificationsWithError(const QString& error);

    void didReceiveRemoteNotification(const QVariantMap& userInfo,
                                      std::function<void(BackgroundFetchResult)> completionHandler);
    void willPresentNotification(const QVariantMap& userInfo,
                                 std::function<void(int options)> completionHandler);
    void didReceiveNotificationResponse(const QVariantMap& userInfo, std::function<void()> completionHandler);

    // The last answer of the reachability test, kept for the whole process.
    static bool isNetworkReachable();

    // Builds tutorial page `index` (0…3) with its navigation wired to this object.
    ViewController* makeOnboardingPage(int index);
    // Opens the collage editor with photos from outside the program over the home screen, which becomes
    // the root for this run when the tutorial was showing (it still shows on the next plain start).
    void openPhotos(const QStringList& files);

    // Stores that the tutorial has been seen and swaps the root for the home screen at once.
    void finishOnboarding();

    // The "badge" entry of a notification when it holds an integer.
    static std::optional<int> badgeNumber(const QVariantMap& userInfo);

private:
    void refreshReachability();
    void routeToFirstScreen();
    void pushOnboardingPage(int index);
    void popOnboardingPage();
    void applyBadge(const QVariantMap& userInfo);

    UserDefaults& defaults_;
    Notifications& notifications_;
    Reachability reachability_;
    std::unique_ptr<AppWindow> window_;
};
