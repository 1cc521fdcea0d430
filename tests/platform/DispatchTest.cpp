#include "platform/Dispatch.h"

#include "support/TestSupport.h"

#include <QElapsedTimer>
#include <QThread>
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

using testsupport::spin;
using testsupport::waitUntil;

namespace {

// Occupies every worker of the global queues until released, so that whatever is queued next waits.
class PoolBlocker {
public:
    PoolBlocker() {
        for (int i = 0; i < Dispatch::workerCount(); ++i)
            Dispatch::global().async([this] {
                const int ticket = started_++;
                while (ticket >= released_.load())
                    QThread::msleep(1);
            });
    }
    ~PoolBlocker() { release(); }

    bool allStarted() {
        return waitUntil([this] { return started_ == Dispatch::workerCount(); }, 2000);
    }
    // Frees exactly one worker, which then takes the next queued job.
    void releaseOne() { ++released_; }
    void release() { released_ = 1 << 20; }

private:
    std::atomic<int> started_{0};
    std::atomic<int> released_{0};
};

// Records the order blocks ran in, from any thread.
struct RunLog {
    std::mutex mutex;
    std::vector<int> order;
    void add(int value) {
        std::lock_guard lock(mutex);
        order.push_back(value);
    }
    size_t size() {
        std::lock_guard lock(mutex);
        return order.size();
    }
};

} // namespace

TEST(DispatchTest, GlobalPoolHasRoomForConcurrentJobs) {
    EXPECT_GE(Dispatch::workerCount(), 4);
}

TEST(DispatchTest, CancelledItemThatHasNotStartedNeverRuns) {
    std::atomic<bool> ran{false};
    WorkItem item([&] { ran = true; });
    {
        PoolBlocker blocker;
        ASSERT_TRUE(blocker.allStarted());
        Dispatch::global(QualityOfService::userInitiated).async(item);
        item.cancel();
    }
    // A plain block queued afterwards tells us the queue has moved past the cancelled item.
    std::atomic<bool> later{false};
    Dispatch::global(QualityOfService::background).async([&] { later = true; });
    ASSERT_TRUE(waitUntil([&] { return later.load(); }, 2000));
    spin(20);
    EXPECT_FALSE(ran);
    EXPECT_TRUE(item.isCancelled());

    // A copy shares the cancellation, and a direct perform is refused too.
    WorkItem copy = item;
    copy.perform();
    EXPECT_FALSE(ran);
}

TEST(DispatchTest, CancellingARunningItemLetsItFinish) {
    std::atomic<bool> started{false}, mayFinish{false}, finished{false};
    WorkItem item([&] {
        started = true;
        while (!mayFinish.load())
            QThread::msleep(1);
        finished = true;
    });
    Dispatch::global().async(item);
    ASSERT_TRUE(waitUntil([&] { return started.load(); }, 2000));
    item.cancel();
    mayFinish = true;
    EXPECT_TRUE(waitUntil([&] { return finished.load(); }, 2000));
}

TEST(DispatchTest, CancelledDelayedItemNeverRuns) {
    bool ran = false;
    WorkItem item([&] { ran = true; });
    Dispatch::main().asyncAfter(0.02, item);
    item.cancel();
    spin(60);
    EXPECT_FALSE(ran);
}

TEST(DispatchTest, GroupNotifiesOnMainOnceAfterLeavesFromSeveralWorkers) {
    DispatchGroup group;
    constexpr int kJobs = 8;
    std::atomic<int> done{0};
    std::atomic<bool> go{false};
    int firstNotifies = 0, secondNotifies = 0;
    int doneAtNotify = -1;
    bool notifiedOnMain = false;

    for (int i = 0; i < kJobs; ++i) {
        group.enter();
        Dispatch::global(QualityOfService::utility).async([&, group]() mutable {
            while (!go.load())
                QThread::msleep(1);
            ++done;
            group.leave();
        });
    }
    group.notify(Dispatch::main(), [&] {
        ++firstNotifies;
        doneAtNotify = done.load();
        notifiedOnMain = Dispatch::isMainThread();
    });
    group.notify(Dispatch::main(), [&] { ++secondNotifies; });
    spin(20);
    EXPECT_EQ(firstNotifies, 0) << "notified while work was outstanding";

    go = true;
    ASSERT_TRUE(waitUntil([&] { return firstNotifies > 0 && secondNotifies > 0; }, 2000));
    spin(30);
    EXPECT_EQ(firstNotifies, 1);
    EXPECT_EQ(secondNotifies, 1);
    EXPECT_EQ(doneAtNotify, kJobs);
    EXPECT_TRUE(notifiedOnMain);
}

TEST(DispatchTest, GroupAlreadyDrainedNotifiesAtOnceButNotInline) {
    DispatchGroup group;
    bool notified = false;
    group.notify(Dispatch::main(), [&] { notified = true; });
    EXPECT_FALSE(notified);
    EXPECT_TRUE(waitUntil([&] { return notified; }, 1000));
}

TEST(DispatchTest, GroupWaitTimesOutOrSeesTheDrain) {
    DispatchGroup group;
    group.enter();
    EXPECT_FALSE(group.wait(0.01));
    Dispatch::global().asyncAfter(0.01, [group]() mutable { group.leave(); });
    EXPECT_TRUE(group.wait(2.0));
    EXPECT_TRUE(group.wait(0));
}

TEST(DispatchDeathTest, LeaveWithoutEnterIsFatal) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            DispatchGroup group;
            group.leave();
        },
        "Unbalanced call to DispatchGroup.leave");
}

TEST(DispatchTest, DelayedBlocksRunInDeadlineOrderAndNotEarly) {
    QElapsedTimer clock;
    clock.start();
    std::vector<std::pair<int, qint64>> runs;
    for (int delay : {60, 20, 40})
        Dispatch::main().asyncAfter(delay / 1000.0,
                                    [&, delay] { runs.emplace_back(delay, clock.nsecsElapsed()); });
    // Equal delays leave in the order they were asked for.
    for (int tag : {41, 42, 43})
        Dispatch::main().asyncAfter(0.04, [&, tag] { runs.emplace_back(tag, clock.nsecsElapsed()); });

    ASSERT_TRUE(waitUntil([&] { return runs.size() == 6; }, 2000));
    std::vector<int> order;
    for (auto [tag, at] : runs)
        order.push_back(tag);
    EXPECT_EQ(order, (std::vector<int>{20, 40, 41, 42, 43, 60}));
    for (auto [tag, at] : runs) {
        const int delay = tag > 40 ? 40 : tag;
        EXPECT_GE(at, delay * 1'000'000LL) << "block " << tag << " ran early";
    }
}

TEST(DispatchTest, DelayFromAWorkerCountsFromTheCallNotFromWhenMainHearsOfIt) {
    QElapsedTimer clock;
    clock.start();
    std::atomic<qint64> calledAt{-1};
    qint64 ranAt = -1;
    bool onMain = false;
    Dispatch::global().async([&] {
        const qint64 before = clock.nsecsElapsed();
        Dispatch::main().asyncAfter(0.04, [&] {
            ranAt = clock.nsecsElapsed();
            onMain = Dispatch::isMainThread();
        });
        calledAt = before;
    });
    // Keep the main thread away from its event loop for the whole delay.
    while (calledAt.load() < 0)
        QThread::msleep(1);
    QThread::msleep(40);
    ASSERT_TRUE(waitUntil([&] { return ranAt >= 0; }, 2000));
    EXPECT_TRUE(onMain);
    EXPECT_GE(ranAt - calledAt.load(), 40'000'000LL);
    EXPECT_LT(ranAt - calledAt.load(), 70'000'000LL);
}

TEST(DispatchTest, MainAsyncFromWorkersLandsOnMainInOrder) {
    std::vector<int> order;
    bool allOnMain = true;
    std::atomic<bool> queued{false};
    Dispatch::global().async([&] {
        for (int i = 0; i < 100; ++i)
            Dispatch::main().async([&, i] {
                order.push_back(i);
                allOnMain = allOnMain && Dispatch::isMainThread();
            });
        queued = true;
    });
    ASSERT_TRUE(waitUntil([&] { return queued && order.size() == 100; }, 2000));
    EXPECT_TRUE(allOnMain);
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(order[i], i);
}

TEST(DispatchTest, MainAsyncNeverRunsInline) {
    std::vector<int> order;
    Dispatch::main().async([&] { order.push_back(1); });
    order.push_back(0);
    ASSERT_TRUE(waitUntil([&] { return order.size() == 2; }, 1000));
    EXPECT_EQ(order, (std::vector<int>{0, 1}));
}

TEST(DispatchTest, GlobalAsyncAfterRunsOffMainAfterTheDelay) {
    QElapsedTimer clock;
    clock.start();
    std::atomic<qint64> ranAt{-1};
    std::atomic<bool> onMain{true};
    Dispatch::global(QualityOfService::background).asyncAfter(0.02, [&] {
        onMain = Dispatch::isMainThread();
        ranAt = clock.nsecsElapsed();
    });
    ASSERT_TRUE(waitUntil([&] { return ranAt.load() >= 0; }, 2000));
    EXPECT_FALSE(onMain);
    EXPECT_GE(ranAt.load(), 20'000'000LL);
}

TEST(DispatchTest, GlobalDelayDoesNotWaitForABusyMainThread) {
    std::atomic<bool> ran{false};
    Dispatch::global().asyncAfter(0.01, [&] { ran = true; });
    // The main thread sleeps without running its event loop; the worker still gets its turn.
    for (int i = 0; i < 200 && !ran; ++i)
        QThread::msleep(5);
    EXPECT_TRUE(ran);
}

TEST(DispatchTest, HigherQualityOfServiceStartsFirstWhenWorkersAreBusy) {
    RunLog log;
    PoolBlocker blocker;
    ASSERT_TRUE(blocker.allStarted());
    Dispatch::global(QualityOfService::background).async([&] { log.add(0); });
    Dispatch::global(QualityOfService::utility).async([&] { log.add(1); });
    Dispatch::global(QualityOfService::userInteractive).async([&] { log.add(4); });
    blocker.releaseOne();
    ASSERT_TRUE(waitUntil([&] { return log.size() == 3; }, 2000));
    EXPECT_EQ(log.order, (std::vector<int>{4, 1, 0}));
}
