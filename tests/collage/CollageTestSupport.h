#pragma once

#include <QSemaphore>
#include <functional>
#include <memory>

// Helpers for collage tests that need real timing or a worker held at a chosen point.
namespace collagetest {

// Animations take their real time while this lives; the suite otherwise finishes them at once.
class RealTimeAnimations {
public:
    RealTimeAnimations();
    ~RealTimeAnimations();
    RealTimeAnimations(const RealTimeAnimations&) = delete;
    RealTimeAnimations& operator=(const RealTimeAnimations&) = delete;

private:
    bool wasInstant_;
};

// A worker job that calls the gate stops there until the test releases it, so the test can change the
// state while the job is known to be under way. A test that ends early lets every held job go.
class WorkerHold {
public:
    WorkerHold();
    ~WorkerHold();
    WorkerHold(const WorkerHold&) = delete;
    WorkerHold& operator=(const WorkerHold&) = delete;

    // For the worker: tells the test the job has started, then waits for release().
    std::function<void()> gate() const;
    // Whether a job reached the gate within the time.
    bool waitUntilHeld(int timeoutMs = 10000) const;
    void release() const;

private:
    struct State {
        QSemaphore held;
        QSemaphore released;
    };
    std::shared_ptr<State> state_;
};

// Waits until every job that the global queues had started has finished, then delivers what those
// jobs sent to the main queue. It occupies every worker at once, which is only possible when nothing
// that started earlier still runs; the jobs send their results before they end.
bool drainWorkers(int timeoutMs = 15000);

} // namespace collagetest
