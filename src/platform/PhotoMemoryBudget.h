#pragma once

#include <cstdint>
#include <memory>
#include <optional>

// Accounts for the bytes of decoded photos held at once, so that a handful of huge files cannot take the
// machine's memory. A decode reserves its bytes before it allocates them and keeps the reservation for as
// long as the picture lives; a reservation that does not fit is refused, and the caller decodes smaller or
// gives up.
//
// Thread-safe: decodes reserve from worker threads while pictures are dropped on the main thread.
// Reservations share the budget's state, so they may outlive the budget object itself.
class PhotoMemoryBudget {
public:
    // Eight 12 MP photos at the editors' display size take about 220 MB, eight of the largest allowed
    // pictures reduced for display about 200 MB; this leaves room beside them for one full-resolution
    // re-read of a 48 MP photo (crop, AI Blend) without letting pictures grow past a sane share of a
    // desktop's memory.
    static constexpr std::int64_t defaultLimit = std::int64_t(768) << 20;

    explicit PhotoMemoryBudget(std::int64_t limitBytes = defaultLimit);

    // The budget every photo decoded for the editors is charged to.
    static PhotoMemoryBudget& shared();

    // A hold on some bytes of the budget, given back when the reservation is destroyed.
    class Reservation {
    public:
        Reservation() = default;
        Reservation(Reservation&& other) noexcept;
        Reservation& operator=(Reservation&& other) noexcept;
        Reservation(const Reservation&) = delete;
        Reservation& operator=(const Reservation&) = delete;
        ~Reservation();

        std::int64_t bytes() const { return bytes_; }
        // Gives back what is above `bytes` (a decode that needed room for a full-size step and keeps
        // only the reduced result). Never grows the hold.
        void shrinkTo(std::int64_t bytes);

    private:
        friend class PhotoMemoryBudget;
        struct State;
        Reservation(std::shared_ptr<State> state, std::int64_t bytes);
        void release();

        std::shared_ptr<State> state_;
        std::int64_t bytes_ = 0;
    };

    // Reserves `bytes` if they fit beside what is held; nothing otherwise. Negative counts as 0.
    std::optional<Reservation> reserve(std::int64_t bytes);

    std::int64_t limit() const;
    std::int64_t used() const;
    // What a reservation could take right now (another thread may take it first).
    std::int64_t available() const;

private:
    std::shared_ptr<Reservation::State> state_;
};
