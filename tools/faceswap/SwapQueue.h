#pragma once

// The swap tasks: a bounded queue in front of a fixed set of worker threads, and the finished results, which
// are kept for a while so the client can fetch them, then forgotten.

#include "FaceSwap.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace lumivex::faceswap {

struct SwapJob {
    std::string source;
    std::string target;
    int faceIndex = 0;
};

struct TaskStatus {
    enum class Kind { Unknown, Pending, Done, Failed };
    Kind kind = Kind::Unknown;
    int status = 0;   // for Failed: the HTTP status of the failure
    std::string body; // Done: the picture; Failed: the reason
    std::string contentType;
};

class SwapQueue {
public:
    struct Options {
        int workers = 2;
        std::size_t capacity = 32; // tasks waiting for a worker
        std::chrono::milliseconds resultLifetime = std::chrono::minutes(10);
        std::string landmarkModel = kDefaultLandmarkModel;
        SwapLimits limits;
    };

    explicit SwapQueue(Options options);
    ~SwapQueue();
    SwapQueue(const SwapQueue&) = delete;
    SwapQueue& operator=(const SwapQueue&) = delete;

    // The new task's id, or nothing when the queue is full.
    std::optional<std::string> submit(SwapJob job);
    TaskStatus status(const std::string& id);

    // Stops taking work, drops what waits and tells running swaps to give up at their next step. True when
    // every worker has ended within `patience`; the destructor always waits for them.
    bool shutdown(std::chrono::milliseconds patience = std::chrono::milliseconds::max());

private:
    struct Task {
        TaskStatus result{TaskStatus::Kind::Pending, 0, {}, {}};
        std::chrono::steady_clock::time_point expires = std::chrono::steady_clock::time_point::max();
    };

    Options options_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::pair<std::string, SwapJob>> waiting_;
    std::unordered_map<std::string, Task> tasks_;
    std::vector<std::thread> workers_;
    std::condition_variable ended_;
    int running_ = 0;
    bool stopping_ = false;
    std::atomic<bool> cancel_{false};

    void work();
    void forgetExpired(std::chrono::steady_clock::time_point now);
};

// 128 random bits as 32 lower-case hex digits: unguessable and safe in a URL path as it is.
std::string newTaskId();

} // namespace lumivex::faceswap
