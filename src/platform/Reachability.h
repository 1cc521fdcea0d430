#pragma once

#include <cstdint>
#include <functional>
#include <optional>

// Whether the network can be reached, read from a set of flags so the rule can be tried without a network.
class Reachability {
public:
    static constexpr uint32_t kReachable = 2;
    static constexpr uint32_t kConnectionRequired = 4;

    using FlagReader = std::function<std::optional<uint32_t>()>;

    explicit Reachability(FlagReader reader = systemFlags);

    bool isReachable() const;

    // Reachable means the reachable bit is set and no connection has to be brought up first; flags that
    // could not be read mean unreachable.
    static bool isReachable(std::optional<uint32_t> flags);

    // The machine's state: the system's network information when it knows, else whether any interface
    // other than loopback is up, running and has an address.
    static std::optional<uint32_t> systemFlags();

private:
    FlagReader reader_;
};
