#include "shell/AppDelegate.h"

#include "platform/AppWindow.h"
#include "platform/Dispatch.h"
#include "platform/Log.h"
#include "platform/NavigationController.h"
#include "platform/Tracking.h"
#include "platform/UserDefaults.h"
#include "shell/LaunchManager.h"
#include "shell/NewHomePageController.h"
#include "shell/TutorialPageViewController.h"
#include "shell/TutorialStartPageViewController.h"

#include <QPointer>
#include <atomic>
#include <cmath>
#include <limits>

namespace {

std::atomic<bool> networkReachable{false};

constexpr int kOnboardingPageCount = 4;
constexpr int kBadgeSoundAlert = Notifications::badge | Notifications::sound | Notifications::alert;

TutorialPageContent pageContent(int index) {
    switch (index) {
    case 0:
        return {QStringLiteral("slider1"),
                QStringLiteral("Turn photos"),
                QStringLiteral("into one story."),
                QStringLiteral("Make every moment worth remembering."),
                QStringLiteral("Continue"),
                0,
                kOnboardingPageCount,
                true,
                {},
                0};
    case 1:
        return {QStringLiteral("slider2"),
                QStringLiteral("Start with"),
                QStringLiteral("a story."),
                QStringLiteral("Photos, type and layout in one design."),
                QStringLiteral("Continue"),
                1,
                kOnboardingPageCount,
                false,
                {},
                0};
    default:
        return {QStringLiteral("slider3"),
                QStringLiteral("Choose your"),
                QStringLiteral("Reflection."),
                QStringLiteral("One photo, Multiple style."),
                QStringLiteral("Continue"),
                2,
                kOnboardingPageCount,
                false,
                {QStringLiteral("Original"), QStringLiteral("Mirror"), QStringLiteral("Reflection")},
                0};
    }
}

} // namespace

AppDelegate::AppDelegate(UserDefaults& defaults, Notifications& notifications, Reachability reachability,
                         QObject* parent)
    : QObject(parent), defaults_(defaults), notifications_(notifications),
      reachability_(std::move(reachability)) {}

AppDelegate::~AppDelegate() = default;

bool AppDelegate::isNetworkReachable() {
    return networkReachable;
}

void AppDelegate::refreshReachability() {
    networkReachable = reachability_.isReachable();
}

bool AppDelegate::didFinishLaunchingWithOptions() {
    refreshReachability();
    // Push messaging has no service on the desktop; its configuration and delegate steps keep their
    // place in the order but have nothing to do.
    notifications_.requestAuthorization(kBadgeSoundAlert, [](bool, const QString&) {});
    notifications_.registerForRemoteNotifications();
    routeToFirstScreen();
    return true;
}

void AppDelegate::routeToFirstScreen() {
    window_ = std::make_unique<AppWindow>();
    if (defaults_.boolForKey(LaunchManager::shared().hasLaunchedBeforeKey)) {
        window_->setRootViewController(new NewHomePageController(defaults_));
    } else {
        auto* navigation = new NavigationController(makeOnboardingPage(0));
        navigation->setNavigationBarHidden(true);
        window_->setRootViewController(navigation);
    }
    window_->makeKeyAndVisible();
}

ViewController* AppDelegate::makeOnboardingPage(int index) {
    QPointer<AppDelegate> self(this);
    auto finish = [self]() {
        if (self)
            self->finishOnboarding();
    };
    auto pop = [self]() {
        if (self)
            self->popOnboardingPage();
    };
    if (index >= 3) {
        return new TutorialStartPageViewController(
            QStringLiteral("Make every moment"), QStringLiteral("more meaningful."),
            QStringLiteral("Where would you like to begin?"), TutorialStartPageViewController::startOptions(),
            QStringLiteral("Start Creating"), 3, kOnboardingPageCount, finish, pop);
    }
    const int page = std::max(0, index);
    auto next = [self, page]() {
        if (self)
            self->pushOnboardingPage(page + 1);
    };
    // The first page has nowhere to go back to.
    std::function<void()> back = page == 0 ? std::function<void()>() : std::function<void()>(pop);
    return new TutorialPageViewController(pageContent(page), next, back, finish);
}

void AppDelegate::pushOnboardingPage(int index) {
    auto* navigation = window_ ? qobject_cast<NavigationController*>(window_->rootViewController()) : nullptr;
    if (!navigation)
        return;
    navigation->pushViewController(makeOnboardingPage(index), true);
}

void AppDelegate::popOnboardingPage() {
    auto* navigation = window_ ? qobject_cast<NavigationController*>(window_->rootViewController()) : nullptr;
    if (!navigation)
        return;
    navigation->popViewController(true);
}

void AppDelegate::finishOnboarding() {
    defaults_.setBool(true, LaunchManager::shared().hasLaunchedBeforeKey);
    defaults_.synchronize();
    auto* home = new NewHomePageController(defaults_);
    if (!window_)
        window_ = std::make_unique<AppWindow>();
    // The swap is instant on purpose: no fade between the tutorial and the home screen.
    window_->setRootViewController(home);
    window_->makeKeyAndVisible();
}

void AppDelegate::openPhotos(const QStringList& files) {
    if (!window_)
        return;
    auto* home = qobject_cast<NewHomePageController*>(window_->rootViewController());
    if (!home) {
        home = new NewHomePageController(defaults_);
        window_->setRootViewController(home);
        window_->makeKeyAndVisible();
    }
    home->openPhotos(files);
}

void AppDelegate::applicationDidBecomeActive() {
    refreshReachability();
    if (networkReachable) {
        QPointer<AppDelegate> self(this);
        Dispatch::main().asyncAfter(1.0, WorkItem([self]() {
                                        if (self)
                                            TrackingManager::requestTrackingAuthorization([](int) {});
                                    }));
    }
    notifications_.setApplicationIconBadgeNumber(0);
}

void AppDelegate::didFailToRegisterForRemoteNotificationsWithError(const QString& error) {
    printLine(QStringLiteral("Failed to register for remote notifications: %1").arg(error).toStdString());
}

std::optional<int> AppDelegate::badgeNumber(const QVariantMap& userInfo) {
    const auto it = userInfo.constFind(QStringLiteral("badge"));
    if (it == userInfo.constEnd())
        return std::nullopt;
    const QVariant& value = it.value();
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort: {
        bool ok = false;
        const qlonglong n = value.toLongLong(&ok);
        if (ok && n >= std::numeric_limits<int>::min() && n <= std::numeric_limits<int>::max())
            return static_cast<int>(n);
        return std::nullopt;
    }
    case QMetaType::Double:
    case QMetaType::Float: {
        // Numbers parsed from JSON arrive as doubles; a whole number still counts.
        const double d = value.toDouble();
        if (std::isfinite(d) && std::floor(d) == d && std::abs(d) <= std::numeric_limits<int>::max())
            return static_cast<int>(d);
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

void AppDelegate::applyBadge(const QVariantMap& userInfo) {
    if (const auto badge = badgeNumber(userInfo))
        notifications_.setApplicationIconBadgeNumber(*badge);
}

void AppDelegate::didReceiveRemoteNotification(const QVariantMap& userInfo,
                                               std::function<void(BackgroundFetchResult)> completionHandler) {
    applyBadge(userInfo);
    if (completionHandler)
        completionHandler(BackgroundFetchResult::newData);
}

void AppDelegate::willPresentNotification(const QVariantMap& userInfo,
                                          std::function<void(int options)> completionHandler) {
    applyBadge(userInfo);
    if (completionHandler)
        completionHandler(kBadgeSoundAlert);
}

void AppDelegate::didReceiveNotificationResponse(const QVariantMap& userInfo,
                                                 std::function<void()> completionHandler) {
    applyBadge(userInfo);
    if (completionHandler)
        completionHandler();
}
