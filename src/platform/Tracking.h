#pragma once

#include <functional>

// The advertising-tracking permission prompt. The desktop has no such permission: a request completes
// later on the main queue as denied. Requests are counted so tests can see a prompt was asked for.
class TrackingManager {
public:
    enum AuthorizationStatus { notDetermined = 0, restricted = 1, denied = 2, authorized = 3 };

    static void requestTrackingAuthorization(std::function<void(int status)> completion);

    static int requestCount();
    static void resetForTesting();
};
