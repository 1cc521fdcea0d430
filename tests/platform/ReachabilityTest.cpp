#include "platform/Reachability.h"

#include "platform/Dispatch.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <atomic>

TEST(ReachabilityTest, ReachableNeedsTheReachableBitAndNoConnectionRequired) {
    constexpr uint32_t reachable = Reachability::kReachable;
    EXPECT_TRUE(Reachability::isReachable(reachable | 1u | 8u | (1u << 16)));
    EXPECT_FALSE(Reachability::isReachable(reachable | Reachability::kConnectionRequired));
    EXPECT_FALSE(Reachability::isReachable(~reachable));
    EXPECT_FALSE(Reachability::isReachable(std::nullopt));
}

TEST(ReachabilityTest, AsksTheInjectedReaderEveryTime) {
    std::optional<uint32_t> flags = Reachability::kReachable;
    Reachability reachability([&] { return flags; });
    EXPECT_TRUE(reachability.isReachable());
    flags = std::nullopt;
    EXPECT_FALSE(reachability.isReachable());
}

TEST(ReachabilityTest, SystemFlagsAnswerOnMainAndWorkerThreads) {
    EXPECT_TRUE(Reachability::systemFlags().has_value());
    std::atomic<bool> answered{false};
    Dispatch::global().async([&] { answered = Reachability::systemFlags().has_value(); });
    EXPECT_TRUE(testsupport::waitUntil([&] { return answered.load(); }, 3000));
}
