#include "platform/Reachability.h"

#include "platform/Dispatch.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <atomic>

TEST(ReachabilityTest, ReachableNeedsTheReachableBitAndNoConnectionRequired) {
    constexpr uint32_t reachable = Reachability::kReachable;
    constexpr uint32_t required = Reachability::kConnectionRequired;
    EXPECT_TRUE(Reachability::isReachable(reachable));
    EXPECT_TRUE(Reachability::isReachable(reachable | 1u | 8u | (1u << 16)));
    EXPECT_FALSE(Reachability::isReachable(reachable | required));
    EXPECT_FALSE(Reachability::isReachable(required));
    EXPECT_FALSE(Reachability::isReachable(0u));
    EXPECT_FALSE(Reachability::isReachable(~reachable));
    EXPECT_FALSE(Reachability::isReachable(std::nullopt));
}

TEST(ReachabilityTest, UsesTheInjectedReaderOnEveryQuestion) {
    std::optional<uint32_t> flags = Reachability::kReachable;
    int reads = 0;
    Reachability reachability([&] {
        ++reads;
        return flags;
    });
    EXPECT_TRUE(reachability.isReachable());
    flags = std::nullopt;
    EXPECT_FALSE(reachability.isReachable());
    flags = Reachability::kReachable | Reachability::kConnectionRequired;
    EXPECT_FALSE(reachability.isReachable());
    EXPECT_EQ(reads, 3);
}

TEST(ReachabilityTest, SystemFlagsAnswerOnMainAndWorkerThreads) {
    // The machine's real state is unknown here; both paths must simply give an answer.
    EXPECT_TRUE(Reachability::systemFlags().has_value());
    std::atomic<bool> answered{false};
    Dispatch::global().async([&] { answered = Reachability::systemFlags().has_value(); });
    EXPECT_TRUE(testsupport::waitUntil([&] { return answered.load(); }, 3000));
}
