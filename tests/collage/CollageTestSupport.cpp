#include "CollageTestSupport.h"

#include "platform/Animations.h"
#include "platform/Dispatch.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace collagetest {

RealTimeAnimations::RealTimeAnimations() : wasInstant_(Animations::isInstant()) {
    Animations::setInstant(false);
}

RealTimeAnimations::~RealTimeAnimations() {
    Animations::setInstant(wasInstant_);
}

WorkerHold::WorkerHold() : state_(std::make_shared<State>()) {}

WorkerHold::~WorkerHold() {
    state_->released.release(1000);
}

std::function<void()> WorkerHold::gate() const {
    // The job holds the state, so the semaphores outlive a test that ended early.
    return [state = state_] {
        state->held.release();
        state->released.acquire();
    };
}

bool WorkerHold::waitUntilHeld(int timeoutMs) const {
    return state_->held.tryAcquire(1, timeoutMs);
}

void WorkerHold::release() const {
    state_->released.release();
}

bool drainWorkers(int timeoutMs) {
    struct Barrier {
        std::mutex mutex;
        std::condition_variable arrivedAll;
        int arrived = 0;
        int expected = 0;
    };
    auto barrier = std::make_shared<Barrier>();
    barrier->expected = Dispatch::workerCount();
    for (int i = 0; i < barrier->expected; ++i) {
        Dispatch::global(QualityOfService::background).async([barrier, timeoutMs] {
            std::unique_lock lock(barrier->mutex);
            ++barrier->arrived;
            barrier->arrivedAll.notify_all();
            barrier->arrivedAll.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                         [&] { return barrier->arrived == barrier->expected; });
        });
    }
    const bool drained = testsupport::waitUntil(
        [barrier] {
            std::lock_guard lock(barrier->mutex);
            return barrier->arrived == barrier->expected;
        },
        timeoutMs);
    // Blocks sent to the main queue before the barrier filled are queued by now; run them.
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    return drained;
}

} // namespace collagetest
