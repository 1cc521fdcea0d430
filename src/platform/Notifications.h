#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

enum class BackgroundFetchResult { newData = 0, noData = 1, failed = 2 };

// The application's badge number and its notification permissions. The desktop has neither a permission
// prompt nor a push service, so requests complete without granting anything; the calls are recorded so
// start-up order can be checked. Use from the main thread.
class Notifications : public QObject {
    Q_OBJECT
public:
    enum AuthorizationOption { badge = 1, sound = 2, alert = 4 };

    explicit Notifications(QObject* parent = nullptr);

    // The application's instance, for code that is not handed one.
    static Notifications& current();

    int applicationIconBadgeNumber() const { return badgeNumber_; }
    void setApplicationIconBadgeNumber(int number);

    // Completes later on the main queue, never inside this call, with granted false and no error.
    void requestAuthorization(int options, std::function<void(bool granted, QString error)> completion);
    // Nothing to register with on the desktop; only counted.
    void registerForRemoteNotifications();

    // What has been asked so far.
    const std::vector<int>& authorizationRequests() const { return authorizationRequests_; }
    int registrationCount() const { return registrationCount_; }
    // Every call in order: "requestAuthorization:<options>" and "registerForRemoteNotifications".
    const QStringList& callLog() const { return callLog_; }
    void clearRecord();

signals:
    void badgeNumberChanged(int number);

private:
    int badgeNumber_ = 0;
    std::vector<int> authorizationRequests_;
    int registrationCount_ = 0;
    QStringList callLog_;
};
