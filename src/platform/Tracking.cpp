#include "platform/Tracking.h"

#include "platform/Dispatch.h"

#include <atomic>

namespace {
std::atomic<int> requests{0};
}

void TrackingManager::requestTrackingAuthorization(std::function<void(int status)> completion) {
    ++requests;
    if (!completion)
        return;
    Dispatch::main().async([completion = std::move(completion)] { completion(denied); });
}

int TrackingManager::requestCount() {
    return requests.load();
}

void TrackingManager::resetForTesting() {
    requests.store(0);
}
