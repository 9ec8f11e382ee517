// Ownership of what several handles share: lists and mappings.
//
// Objects that reach each other form a group, which is counted and freed as one: handles that a
// member holds of another member do not count. So no circle of counted handles ever arises, and
// counting them frees everything. Freeing takes no recursion, however deep objects are nested.
//
// Counting handles is safe from several threads; changing an object is not, as with any container.
// A change that closes a circle is one of every object on it.
#pragma once

#include <atomic>
#include <cstddef>
#include <utility>
#include <vector>

#include "velmora/utils/export.hpp"

namespace velmora::config::detail {

class Handle;

class VELMORA_EXPORT Shared {
public:
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    void acquire() noexcept { leader_->handles_.fetch_add(1, std::memory_order_relaxed); }
    void release() noexcept {
        // The last one has no others to race with.
        if (leader_->handles_.load(std::memory_order_acquire) == 1 ||
            leader_->handles_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            leader_->free_group();
    }

    /// Whether the object has ever been on a circle: no other is reached from itself.
    bool was_on_circle() const noexcept { return was_on_circle_; }

protected:
    Shared() = default;
    virtual ~Shared() = default;

    /// The first handle that this object holds at `position` or behind it, where `position` moves
    /// on behind it; null when none is left.
    virtual Handle* next_handle(std::size_t& position) noexcept = 0;

private:
    friend class Handle;
    friend class Adding;

    void free_group() noexcept;

    bool was_on_circle_ = false;
    std::atomic<std::size_t> handles_ = 1;  ///< The counted ones of the group, kept by its leader.
    Shared* leader_ = this;
    Shared* next_ = this;  ///< The next member: the last one's is the first. When freed, the next
                           ///< object to be freed.
};

/// Owns an object, together with all copies of the handle; empty once moved from.
class Handle {
public:
    /// The first one of a new object.
    explicit Handle(Shared* object) noexcept : object_(object) {}
    Handle(const Handle& other) noexcept : object_(other.object_) { object_->acquire(); }
    Handle(Handle&& other) noexcept
        : object_(std::exchange(other.object_, nullptr)),
          counted_(std::exchange(other.counted_, false)) {}
    Handle& operator=(Handle other) noexcept {
        std::swap(object_, other.object_);
        std::swap(counted_, other.counted_);
        return *this;
    }
    ~Handle() {
        if (counted_) object_->release();
    }

    Shared* get() const noexcept { return object_; }

private:
    friend class Adding;

    Shared* object_;
    bool counted_ = true;
};

/// The adding of a handle to an object, in two steps: what may fail comes before the object is
/// changed.
class Adding {
public:
    /// Finds the groups on all ways from the child, which null stands for when there is none, back
    /// to `object`. Takes a walk through all that the child reaches when there are handles of the
    /// group of `object` besides the caller's, else constant time.
    Adding(Shared& object, const Handle* child);

    /// Joins those groups with that of `object`, which now holds the handle `added`.
    void finish(Handle* added) noexcept;

private:
    Shared& leader_;
    std::vector<Shared*> groups_;  ///< Their leaders; each group only reaches those before it.
};

}  // namespace velmora::config::detail
