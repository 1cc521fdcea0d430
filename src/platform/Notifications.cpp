#include "platform/Notifications.h"

#include "platform/Dispatch.h"

Notifications::Notifications(QObject* parent) : QObject(parent) {}

Notifications& Notifications::current() {
    static Notifications instance;
    return instance;
}

void Notifications::setApplicationIconBadgeNumber(int number) {
    if (number == badgeNumber_)
        return;
    badgeNumber_ = number;
    emit badgeNumberChanged(number);
}

void Notifications::requestAuthorization(int options,
                                         std::function<void(bool granted, QString error)> completion) {
    authorizationRequests_.push_back(options);
    callLog_.append(QStringLiteral("requestAuthorization:%1").arg(options));
    if (!completion)
        return;
    Dispatch::main().async([completion = std::move(completion)] { completion(false, QString()); });
}

void Notifications::registerForRemoteNotifications() {
    ++registrationCount_;
    callLog_.append(QStringLiteral("registerForRemoteNotifications"));
}

void Notifications::clearRecord() {
    authorizationRequests_.clear();
    registrationCount_ = 0;
    callLog_.clear();
}
