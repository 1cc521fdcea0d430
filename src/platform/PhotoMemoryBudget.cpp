#include "platform/PhotoMemoryBudget.h"

#include <algorithm>
#include <mutex>

struct PhotoMemoryBudget::Reservation::State {
    explicit State(std::int64_t limit) : limit(limit) {}
    std::mutex mutex;
    const std::int64_t limit;
    std::int64_t used = 0;
};

PhotoMemoryBudget::PhotoMemoryBudget(std::int64_t limitBytes)
    : state_(std::make_shared<Reservation::State>(std::max<std::int64_t>(0, limitBytes))) {}

PhotoMemoryBudget& PhotoMemoryBudget::shared() {
    static PhotoMemoryBudget budget;
    return budget;
}

std::optional<PhotoMemoryBudget::Reservation> PhotoMemoryBudget::reserve(std::int64_t bytes) {
    bytes = std::max<std::int64_t>(0, bytes);
    std::lock_guard lock(state_->mutex);
    if (bytes > state_->limit - state_->used)
        return std::nullopt;
    state_->used += bytes;
    return Reservation(state_, bytes);
}

std::int64_t PhotoMemoryBudget::limit() const {
    return state_->limit;
}

std::int64_t PhotoMemoryBudget::used() const {
    std::lock_guard lock(state_->mutex);
    return state_->used;
}

std::int64_t PhotoMemoryBudget::available() const {
    std::lock_guard lock(state_->mutex);
    return std::max<std::int64_t>(0, state_->limit - state_->used);
}

PhotoMemoryBudget::Reservation::Reservation(std::shared_ptr<State> state, std::int64_t bytes)
    : state_(std::move(state)), bytes_(bytes) {}

PhotoMemoryBudget::Reservation::Reservation(Reservation&& other) noexcept
    : state_(std::move(other.state_)), bytes_(other.bytes_) {
    other.bytes_ = 0;
}

PhotoMemoryBudget::Reservation& PhotoMemoryBudget::Reservation::operator=(Reservation&& other) noexcept {
    if (this != &other) {
        release();
        state_ = std::move(other.state_);
        bytes_ = other.bytes_;
        other.bytes_ = 0;
    }
    return *this;
}

PhotoMemoryBudget::Reservation::~Reservation() {
    release();
}

void PhotoMemoryBudget::Reservation::shrinkTo(std::int64_t bytes) {
    bytes = std::max<std::int64_t>(0, bytes);
    if (!state_ || bytes >= bytes_)
        return;
    std::lock_guard lock(state_->mutex);
    state_->used -= bytes_ - bytes;
    bytes_ = bytes;
}

void PhotoMemoryBudget::Reservation::release() {
    if (!state_)
        return;
    {
        std::lock_guard lock(state_->mutex);
        state_->used -= bytes_;
    }
    state_.reset();
    bytes_ = 0;
}
