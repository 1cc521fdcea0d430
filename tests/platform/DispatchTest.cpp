#include "platform/Dispatch.h"

#include "support/TestSupport.h"

#include <QElapsedTimer>
#include <QThread>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <vector>

using testsupport::spin;
using testsupport::waitUntil;

namespace {

// Occupies every worker of the global queues until released, so whatever is queued next waits. The workers
// hold the shared state, so a test that stops early cannot leave them reading a dead object.
class PoolBlocker {
public:
    PoolBlocker() : state_(std::make_shared<State>()) {
        for (int i = 0; i < Dispatch::workerCount(); ++i)
            Dispatch::global().async([state = state_] {
                const int ticket = state->started++;
                while (ticket >= state->released.load())
                    QThread::msleep(1);
            });
    }
    ~PoolBlocker() { state_->released = 1 << 20; }

    bool allStarted() {
        return waitUntil([this] { return state_->started == Dispatch::workerCount(); }, 2000);
    }
    // Frees exactly one worker, which then takes the queued jobs one after another.
    void releaseOne() { ++state_->released; }

private:
    struct State {
        std::atomic<int> started{0};
        std::atomic<int> released{0};
    };
    std::shared_ptr<State> state_;
};

} // namespace

TEST(DispatchTest, CancelPreventsAStartButNotARunUnderWay) {
    std::atomic<int> notStartedRuns{0};
    WorkItem notStarted([&] { ++notStartedRuns; });
    std::atomic<bool> running{false}, mayFinish{false}, finished{false};
    WorkItem underWay([&] {
        running = true;
        while (!mayFinish.load())
            QThread::msleep(1);
        finished = true;
    });
    {
        PoolBlocker blocker;
        ASSERT_TRUE(blocker.allStarted());
        Dispatch::global(QualityOfService::userInitiated).async(notStarted);
        Dispatch::global(QualityOfService::background).async(underWay);
        notStarted.cancel();
    }
    ASSERT_TRUE(waitUntil([&] { return running.load(); }, 2000));
    underWay.cancel();
    mayFinish = true;
    EXPECT_TRUE(waitUntil([&] { return finished.load(); }, 2000));
    // The higher-priority cancelled item was dequeued before the one that ran.
    EXPECT_EQ(notStartedRuns, 0);
    // Copies share the cancellation.
    WorkItem copy = notStarted;
    copy.perform();
    EXPECT_EQ(notStartedRuns, 0);
}

TEST(DispatchTest, HigherQualityOfServiceStartsFirstOnAFourThreadPool) {
    EXPECT_GE(Dispatch::workerCount(), 4);
    std::vector<int> order; // written by the one freed worker only
    std::atomic<int> ran{0};
    PoolBlocker blocker;
    ASSERT_TRUE(blocker.allStarted());
    for (auto [qos, tag] : {std::pair{QualityOfService::background, 0},
                            {QualityOfService::utility, 1},
                            {QualityOfService::userInteractive, 4}})
        Dispatch::global(qos).async([&, tag] {
            order.push_back(tag);
            ++ran;
        });
    blocker.releaseOne();
    ASSERT_TRUE(waitUntil([&] { return ran == 3; }, 2000));
    EXPECT_EQ(order, (std::vector<int>{4, 1, 0}));
}

TEST(DispatchTest, GroupNotifiesOnMainOnceAfterLeavesFromSeveralWorkers) {
    DispatchGroup group;
    constexpr int kJobs = 8;
    // Workers leave one at a time, in the order they start, as the test allows them. They share the gate, so
    // a failing test cannot leave them spinning on a dead stack.
    struct Gate {
        std::atomic<int> started{0}, allowed{0}, left{0};
    };
    auto gate = std::make_shared<Gate>();
    int notifies = 0, otherNotifies = 0;
    bool onMain = false;
    for (int i = 0; i < kJobs; ++i) {
        group.enter();
        Dispatch::global(QualityOfService::utility).async([gate, group]() mutable {
            const int ticket = gate->started++;
            while (ticket >= gate->allowed.load())
                QThread::msleep(1);
            ++gate->left;
            group.leave();
        });
    }
    struct Release {
        std::shared_ptr<Gate> gate;
        ~Release() { gate->allowed = 1 << 20; }
    } releaseOnExit{gate};
    group.notify(Dispatch::main(), [&] {
        ++notifies;
        onMain = Dispatch::isMainThread();
    });
    group.notify(Dispatch::main(), [&] { ++otherNotifies; });
    for (int k = 1; k < kJobs; ++k) {
        gate->allowed = k;
        ASSERT_TRUE(waitUntil([&] { return gate->left == k; }, 2000));
        spin(2);
        ASSERT_EQ(notifies, 0) << "notified with " << kJobs - k << " still inside";
    }
    gate->allowed = kJobs;
    ASSERT_TRUE(waitUntil([&] { return notifies > 0 && otherNotifies > 0; }, 2000));
    EXPECT_TRUE(onMain);

    // Reusing the group does not fire the old notifies again.
    group.enter();
    group.leave();
    spin(20);
    EXPECT_EQ(notifies, 1);
    EXPECT_EQ(otherNotifies, 1);

    // Already drained: queued at once, still not run inside the call.
    bool late = false;
    group.notify(Dispatch::main(), [&] { late = true; });
    EXPECT_FALSE(late);
    EXPECT_TRUE(waitUntil([&] { return late; }, 1000));
}

TEST(DispatchTest, GroupWaitTimesOutOrSeesTheDrain) {
    DispatchGroup group;
    group.enter();
    EXPECT_FALSE(group.wait(0.01));
    Dispatch::global().asyncAfter(0.01, [group]() mutable { group.leave(); });
    EXPECT_TRUE(group.wait(2.0));
}

TEST(DispatchDeathTest, LeaveWithoutEnterIsFatal) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(DispatchGroup().leave(), "Unbalanced call to DispatchGroup.leave");
}

TEST(DispatchTest, DelayedBlocksRunInDeadlineOrderAndNotEarly) {
    QElapsedTimer clock;
    clock.start();
    std::vector<int> order;
    std::vector<qint64> early;
    auto schedule = [&](int tag, int delayMs) {
        Dispatch::main().asyncAfter(delayMs / 1000.0, [&, tag, delayMs] {
            order.push_back(tag);
            if (clock.nsecsElapsed() < delayMs * 1'000'000LL)
                early.push_back(tag);
        });
    };
    schedule(60, 60);
    schedule(20, 20);
    schedule(40, 40);
    // Equal delays leave in the order they were asked for.
    for (int tag : {41, 42, 43})
        schedule(tag, 40);

    ASSERT_TRUE(waitUntil([&] { return order.size() == 6; }, 2000));
    EXPECT_EQ(order, (std::vector<int>{20, 40, 41, 42, 43, 60}));
    EXPECT_TRUE(early.empty()) << "ran before its delay: " << early.front();
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

TEST(DispatchTest, MainAsyncFromAWorkerLandsOnMainInOrder) {
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

TEST(DispatchTest, GlobalAsyncAfterRunsOffMainAfterTheDelay) {
    QElapsedTimer clock;
    clock.start();
    std::atomic<qint64> ranAt{-1};
    std::atomic<bool> onMain{true};
    Dispatch::global(QualityOfService::background).asyncAfter(0.02, [&] {
        onMain = Dispatch::isMainThread();
        ranAt = clock.nsecsElapsed();
    });
    // The main thread does not run its event loop meanwhile: the pool must not depend on it.
    while (ranAt.load() < 0 && clock.elapsed() < 2000)
        QThread::msleep(1);
    EXPECT_FALSE(onMain);
    EXPECT_GE(ranAt.load(), 20'000'000LL);
}
