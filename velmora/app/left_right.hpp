// An object that threads read while one of them replaces it. Private.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>

namespace velmora::app {

/// Left-Right with striped read indicators: Ramalhete and Correia, "Left-Right: A Concurrency
/// Control Technique with Wait-Free Population Oblivious Reads", 2015. A write replaces the whole
/// object here, so one side is enough to write to.
///
/// Readers wait for nobody and allocate nothing. The one writer at a time waits for those who are
/// reading, for as long as they are kept from it, but never for those who come after them.
template <class T>
class LeftRight {
    static constexpr std::size_t stripe_count = 16;

public:
    using Shared = std::shared_ptr<const T>;

    /// One object, shared once for each stripe of the threads by a count of owners that the other
    /// stripes do not write to.
    class Shares {
    public:
        explicit Shares(const Shared& object) {
            for (Shared& each : each_)
                each = {std::make_shared<const Owner>(Owner{object}), object.get()};
        }

    private:
        friend class LeftRight;
        std::array<Shared, stripe_count> each_;
    };

    explicit LeftRight(Shares object) noexcept { put(std::move(object)); }

    Shared get() const noexcept {
        const Stripe& own = stripes_[own_stripe()];
        Readers& readers = own.readers[version_];
        ++readers;
        Shared object = own.sides[side_];
        --readers;
        return object;
    }

    /// Has all threads at once read this one. The one before must have been dropped.
    void put(Shares next) noexcept {
        const std::size_t idle = 1 - side_;
        for (std::size_t i = 0; i < stripe_count; ++i) stripes_[i].sides[idle].swap(next.each_[i]);
        side_ = idle;
    }

    /// Waits until nobody takes the one that the last `put` has replaced, and disowns it.
    void drop_former() noexcept {
        // Readers who come from now on count in the next version, so that those of the old one end.
        const std::size_t old = version_;
        wait_for_readers(1 - old);
        version_ = 1 - old;
        wait_for_readers(old);
        for (Stripe& each : stripes_) each.sides[1 - side_].reset();
    }

private:
    static constexpr std::size_t cache_line = 64;
    using Readers = std::atomic<std::uint32_t>;

    struct alignas(cache_line) Stripe {
        mutable std::array<Readers, 2> readers = {};
        std::array<Shared, 2> sides;
    };
    struct alignas(cache_line) Owner {
        Shared object;
    };

    static std::size_t own_stripe() noexcept {
        static std::atomic<std::size_t> threads = 0;
        thread_local const std::size_t own = threads++ % stripe_count;
        return own;
    }

    // A reader may have been preempted by threads of more weight than its own, for seconds.
    void wait_for_readers(std::size_t version) const noexcept {
        using std::chrono::microseconds;
        constexpr microseconds shortest(16);
        constexpr microseconds longest(5000);
        for (const Stripe& each : stripes_) {
            for (microseconds pause(1); each.readers[version] != 0;
                 pause = std::min(2 * pause, longest)) {
                if (pause < shortest) {
                    std::this_thread::yield();
                } else {
                    std::this_thread::sleep_for(pause);
                }
            }
        }
    }

    std::array<Stripe, stripe_count> stripes_;
    // Written by the writer alone. A reader must read the side after it has been counted.
    std::atomic<std::size_t> side_ = 0;
    std::atomic<std::size_t> version_ = 0;
};

}  // namespace velmora::app
