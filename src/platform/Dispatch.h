#pragma once

#include <functional>
#include <memory>

// The only way work leaves the main thread: a main queue that runs blocks on the Qt main thread in order,
// concurrent global queues on a pool of our own, cancellable work items and groups.

enum class QualityOfService { userInteractive, userInitiated, defaultQos, utility, background };

// A handle to a block that can be cancelled before it starts. Copies share the same item, so a copy kept by
// the caller can cancel the copy that was queued.
class WorkItem {
public:
    explicit WorkItem(std::function<void()> block);

    // Runs the block on the calling thread unless the item was cancelled before this call.
    void perform() const;
    // Prevents every later start; a run already under way finishes.
    void cancel();
    bool isCancelled() const;

private:
    struct State;
    std::shared_ptr<State> state_;
};

class DispatchQueue {
public:
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    // Never runs the block inline, even when called on the queue's own thread.
    void async(std::function<void()> block);
    void async(WorkItem item);
    // The delay counts from this call, whichever thread makes it.
    void asyncAfter(double seconds, std::function<void()> block);
    void asyncAfter(double seconds, WorkItem item);

    bool isMain() const { return isMain_; }
    QualityOfService qualityOfService() const { return qos_; }

private:
    friend struct DispatchRuntime;
    DispatchQueue(bool isMain, QualityOfService qos) : isMain_(isMain), qos_(qos) {}

    bool isMain_;
    QualityOfService qos_;
};

namespace Dispatch {
DispatchQueue& main();
DispatchQueue& global(QualityOfService qos = QualityOfService::defaultQos);
bool isMainThread();
// How many threads the global queues share; tests use it to occupy all of them.
int workerCount();
} // namespace Dispatch

// Counts outstanding work; copies share the same count.
class DispatchGroup {
public:
    DispatchGroup();

    void enter();
    // A leave without a matching enter is a programmer's error and stops the process.
    void leave();
    // Queues `block` on `queue` once the count is back to zero, at once if it already is. Every notify
    // registered while work is outstanding fires once.
    void notify(DispatchQueue& queue, std::function<void()> block);
    // For worker threads: answers whether the count reached zero within the time-out. Never call it on the
    // main thread while the work needs the main queue to finish.
    bool wait(double timeoutSeconds);

private:
    struct State;
    std::shared_ptr<State> state_;
};
