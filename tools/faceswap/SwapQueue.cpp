#include "SwapQueue.h"

#include <random>

namespace lumivex::faceswap {

std::string newTaskId() {
    static std::mutex mutex;
    static std::mt19937_64 engine{std::random_device{}()};
    static constexpr char digits[] = "0123456789abcdef";
    std::string id(32, '0');
    std::lock_guard lock(mutex);
    for (int half = 0; half < 2; ++half) {
        std::uint64_t bits = engine();
        for (int i = 0; i < 16; ++i, bits >>= 4)
            id[half * 16 + i] = digits[bits & 0xf];
    }
    return id;
}

SwapQueue::SwapQueue(Options options) : options_(std::move(options)) {
    // OpenCV builds its Lab tables on first use without a lock; two workers racing there leak one copy.
    prepareColourTables();
    // The landmark model is read once here, so the service is ready to swap when it starts listening.
    FaceDetector preload(options_.landmarkModel);
    const int count = std::max(1, options_.workers);
    running_ = count;
    for (int i = 0; i < count; ++i)
        workers_.emplace_back([this] {
            work();
            std::lock_guard lock(mutex_);
            --running_;
            ended_.notify_all();
        });
}

SwapQueue::~SwapQueue() {
    shutdown();
    for (std::thread& t : workers_)
        if (t.joinable())
            t.join();
}

bool SwapQueue::shutdown(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex_);
    stopping_ = true;
    cancel_ = true;
    waiting_.clear();
    wake_.notify_all();
    const auto done = [this] { return running_ == 0; };
    if (patience == std::chrono::milliseconds::max())
        ended_.wait(lock, done);
    else
        ended_.wait_for(lock, patience, done);
    return done();
}

std::optional<std::string> SwapQueue::submit(SwapJob job) {
    std::string id = newTaskId();
    {
        std::lock_guard lock(mutex_);
        forgetExpired(std::chrono::steady_clock::now());
        if (stopping_ || waiting_.size() >= options_.capacity)
            return std::nullopt;
        tasks_.emplace(id, Task{});
        waiting_.emplace_back(id, std::move(job));
    }
    wake_.notify_one();
    return id;
}

TaskStatus SwapQueue::status(const std::string& id) {
    std::lock_guard lock(mutex_);
    forgetExpired(std::chrono::steady_clock::now());
    const auto it = tasks_.find(id);
    if (it == tasks_.end())
        return {};
    return it->second.result;
}

void SwapQueue::forgetExpired(std::chrono::steady_clock::time_point now) {
    std::erase_if(tasks_, [now](const auto& entry) { return entry.second.expires <= now; });
}

void SwapQueue::work() {
    // The detector keeps scratch state, so every worker has its own; the landmark model is shared.
    const FaceSwapper swapper(options_.landmarkModel, options_.limits);
    for (;;) {
        std::pair<std::string, SwapJob> next;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return stopping_ || !waiting_.empty(); });
            if (stopping_)
                return;
            next = std::move(waiting_.front());
            waiting_.pop_front();
        }
        SwapOutcome outcome;
        if (!swapper.isReady()) {
            outcome.status = 500;
            outcome.reason = "The face landmark model could not be loaded from " + options_.landmarkModel;
        } else {
            outcome =
                swapper.swapEncoded(next.second.source, next.second.target, next.second.faceIndex, &cancel_);
        }
        TaskStatus done;
        if (outcome.ok()) {
            done.kind = TaskStatus::Kind::Done;
            done.status = 200;
            done.body.assign(outcome.image.begin(), outcome.image.end());
            done.contentType = outcome.contentType;
        } else {
            done.kind = TaskStatus::Kind::Failed;
            done.status = outcome.status;
            done.body = outcome.reason;
        }
        std::lock_guard lock(mutex_);
        const auto it = tasks_.find(next.first);
        if (it != tasks_.end()) {
            it->second.result = std::move(done);
            it->second.expires = std::chrono::steady_clock::now() + options_.resultLifetime;
        }
    }
}

} // namespace lumivex::faceswap
