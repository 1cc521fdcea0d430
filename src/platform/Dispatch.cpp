#include "platform/Dispatch.h"

#include "platform/Log.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

struct WorkItem::State {
    std::function<void()> block;
    std::atomic<bool> cancelled{false};
};

WorkItem::WorkItem(std::function<void()> block) : state_(std::make_shared<State>()) {
    state_->block = std::move(block);
}

void WorkItem::perform() const {
    if (!state_->cancelled.load(std::memory_order_acquire) && state_->block)
        state_->block();
}

void WorkItem::cancel() {
    state_->cancelled.store(true, std::memory_order_release);
}

bool WorkItem::isCancelled() const {
    return state_->cancelled.load(std::memory_order_acquire);
}

namespace {

using Clock = std::chrono::steady_clock;

// Beyond this a delay is as good as never, and the clock arithmetic would overflow.
constexpr double kLongestDelaySeconds = 1e8;

// Subject detection, mask building and network polls run side by side; fewer threads than this and one
// long job would hold up the others on a small machine.
constexpr int kMinimumWorkers = 4;

int poolPriority(QualityOfService qos) {
    switch (qos) {
    case QualityOfService::userInteractive:
        return 4;
    case QualityOfService::userInitiated:
        return 3;
    case QualityOfService::defaultQos:
        return 2;
    case QualityOfService::utility:
        return 1;
    case QualityOfService::background:
        return 0;
    }
    return 2;
}

void markApplicationClosing();

} // namespace

// Everything the queues share, torn down in a fixed order at exit: the timer thread first (it feeds the
// pool), then the pool (its jobs may still queue blocks to main, which are dropped by then).
struct DispatchRuntime {
    struct Delayed {
        DispatchQueue* queue;
        std::function<void()> block;
    };

    std::mutex mainMutex;
    QCoreApplication* application = nullptr;
    bool applicationClosing = false;

    DispatchQueue mainQueue{true, QualityOfService::userInteractive};
    DispatchQueue globalQueues[5] = {
        {false, QualityOfService::userInteractive}, {false, QualityOfService::userInitiated},
        {false, QualityOfService::defaultQos},      {false, QualityOfService::utility},
        {false, QualityOfService::background},
    };

    QThreadPool pool;

    std::mutex timeMutex;
    std::condition_variable timeChanged;
    // Keyed by deadline and then by call order, so equal deadlines leave in the order they were asked for.
    std::map<std::pair<Clock::time_point, uint64_t>, Delayed> delayed;
    uint64_t nextSequence = 0;
    bool stopping = false;
    std::thread timerThread;

    DispatchRuntime() {
        pool.setObjectName(QStringLiteral("Dispatch.global"));
        pool.setMaxThreadCount(std::max(kMinimumWorkers, QThread::idealThreadCount()));
        timerThread = std::thread([this] { runTimer(); });
    }

    ~DispatchRuntime() {
        {
            std::lock_guard lock(timeMutex);
            stopping = true;
        }
        timeChanged.notify_all();
        timerThread.join();
        delayed.clear();
        pool.clear();
        pool.waitForDone();
    }

    // Notices a new application object, so that its end drains the pool and stops blocks to main.
    // Answers the application, or null when there is none. Called with mainMutex held.
    QCoreApplication* watchApplication() {
        QCoreApplication* app = QCoreApplication::instance();
        if (!app)
            return nullptr;
        if (app != application) {
            application = app;
            applicationClosing = false;
            // The post routine runs before the application object starts tearing down; the destroyed
            // signal clears the pointer so a later application at the same address is seen as new.
            qAddPostRoutine(markApplicationClosing);
            QObject::connect(app, &QObject::destroyed, [this] {
                std::lock_guard lock(mainMutex);
                application = nullptr;
            });
        }
        return app;
    }

    void postToMain(std::function<void()> block) {
        std::lock_guard lock(mainMutex);
        QCoreApplication* app = watchApplication();
        if (!app || applicationClosing)
            return;
        QMetaObject::invokeMethod(app, std::move(block), Qt::QueuedConnection);
    }

    void startOnPool(std::function<void()> block, int priority) {
        {
            std::lock_guard lock(mainMutex);
            watchApplication();
        }
        pool.start(std::move(block), priority);
    }

    void schedule(double seconds, DispatchQueue* queue, std::function<void()> block) {
        const auto delay = std::chrono::ceil<Clock::duration>(
            std::chrono::duration<double>(std::min(seconds, kLongestDelaySeconds)));
        const Clock::time_point deadline = Clock::now() + delay;
        {
            std::lock_guard lock(timeMutex);
            if (stopping)
                return;
            delayed.emplace(std::pair(deadline, nextSequence++), Delayed{queue, std::move(block)});
        }
        timeChanged.notify_all();
    }

    // One thread waits for every deadline, so the delay is measured from the call on any thread, and blocks
    // due for the main queue are posted there in deadline order.
    void runTimer() {
        std::unique_lock lock(timeMutex);
        while (!stopping) {
            if (delayed.empty()) {
                timeChanged.wait(lock);
                continue;
            }
            const Clock::time_point now = Clock::now();
            const Clock::time_point first = delayed.begin()->first.first;
            if (now < first) {
                timeChanged.wait_until(lock, first);
                continue;
            }
            std::vector<Delayed> due;
            while (!delayed.empty() && delayed.begin()->first.first <= now) {
                due.push_back(std::move(delayed.begin()->second));
                delayed.erase(delayed.begin());
            }
            lock.unlock();
            for (Delayed& item : due)
                item.queue->async(std::move(item.block));
            lock.lock();
        }
    }
};

namespace {

DispatchRuntime& runtime() {
    static DispatchRuntime instance;
    return instance;
}

void markApplicationClosing() {
    DispatchRuntime& r = runtime();
    {
        std::lock_guard lock(r.mainMutex);
        r.applicationClosing = true;
    }
    // Jobs still queued will never be able to report back; running ones finish now, while the
    // libraries they use (OpenCV's own thread pool among them) still exist. Waiting until static
    // destruction would be too late.
    r.pool.clear();
    r.pool.waitForDone();
}

} // namespace

void DispatchQueue::async(std::function<void()> block) {
    if (!block)
        return;
    DispatchRuntime& r = runtime();
    if (isMain_)
        r.postToMain(std::move(block));
    else
        r.startOnPool(std::move(block), poolPriority(qos_));
}

void DispatchQueue::async(WorkItem item) {
    async([item] { item.perform(); });
}

void DispatchQueue::asyncAfter(double seconds, std::function<void()> block) {
    if (!block)
        return;
    if (!(seconds > 0)) {
        async(std::move(block));
        return;
    }
    runtime().schedule(seconds, this, std::move(block));
}

void DispatchQueue::asyncAfter(double seconds, WorkItem item) {
    asyncAfter(seconds, [item] { item.perform(); });
}

namespace Dispatch {

DispatchQueue& main() {
    return runtime().mainQueue;
}

DispatchQueue& global(QualityOfService qos) {
    const int index = static_cast<int>(qos);
    return runtime().globalQueues[std::clamp(index, 0, 4)];
}

bool isMainThread() {
    const QCoreApplication* app = QCoreApplication::instance();
    return app && QThread::currentThread() == app->thread();
}

int workerCount() {
    return runtime().pool.maxThreadCount();
}

} // namespace Dispatch

struct DispatchGroup::State {
    std::mutex mutex;
    std::condition_variable drained;
    int count = 0;
    std::vector<std::pair<DispatchQueue*, std::function<void()>>> waiting;
};

DispatchGroup::DispatchGroup() : state_(std::make_shared<State>()) {}

void DispatchGroup::enter() {
    std::lock_guard lock(state_->mutex);
    ++state_->count;
}

void DispatchGroup::leave() {
    std::vector<std::pair<DispatchQueue*, std::function<void()>>> ready;
    {
        std::lock_guard lock(state_->mutex);
        if (state_->count == 0)
            fatalError("Unbalanced call to DispatchGroup.leave()");
        if (--state_->count > 0)
            return;
        ready.swap(state_->waiting);
    }
    state_->drained.notify_all();
    for (auto& [queue, block] : ready)
        queue->async(std::move(block));
}

void DispatchGroup::notify(DispatchQueue& queue, std::function<void()> block) {
    {
        std::lock_guard lock(state_->mutex);
        if (state_->count > 0) {
            state_->waiting.emplace_back(&queue, std::move(block));
            return;
        }
    }
    queue.async(std::move(block));
}

bool DispatchGroup::wait(double timeoutSeconds) {
    std::unique_lock lock(state_->mutex);
    const double seconds = timeoutSeconds > 0 ? std::min(timeoutSeconds, kLongestDelaySeconds) : 0.0;
    const auto timeout = std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(seconds));
    return state_->drained.wait_for(lock, timeout, [this] { return state_->count == 0; });
}
