// Ownership of what several handles share: lists and mappings.
//
// A shared object is freed with its last handle. It may be nested as deep as memory allows: freeing
// takes no recursion. It may contain itself: a group of objects that only their own handles keep
// alive is found and freed when the last handle from outside goes.
//
// Counting handles is safe from several threads; changing an object is not, as with any container.
#pragma once

#include <atomic>
#include <cstddef>
#include <utility>
#include <vector>

namespace velmora::config {

class Shared {
public:
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    void acquire() noexcept { handles_.fetch_add(1, std::memory_order_relaxed); }
    void release() noexcept;

    /// To be called before this object gets a handle of `child`: notes the cycle that this closes,
    /// if it does. Costs a walk below `child` when handles of this object exist besides the
    /// caller's, else nothing.
    void before_adding(Shared& child);

    /// For a copy of `original` that holds handles of copies where that one holds handles: notes
    /// the cycles that run through it.
    void share_cycles_of(const Shared& original) noexcept { in_cycle_ = original.in_cycle_.load(); }

protected:
    Shared() = default;
    virtual ~Shared() = default;

    /// Appends the objects of which this one holds handles, each as often as it does.
    virtual void append_children(std::vector<Shared*>& children) const = 0;

    /// Lets go of all handles that this object holds.
    virtual void clear() noexcept = 0;

private:
    class Graph;

    void release_in_cycle() noexcept;
    void dispose() noexcept;

    std::atomic<std::size_t> handles_ = 0;
    /// Set on every object below one that a cycle runs through: a cycle has no member without it.
    std::atomic<bool> in_cycle_ = false;
    Shared* next_disposed_ = nullptr;
};

/// Owns an object, together with all copies of the handle; empty once moved from.
class Handle {
public:
    explicit Handle(Shared* object) noexcept : object_(object) { object_->acquire(); }
    Handle(const Handle& other) noexcept : object_(other.object_) {
        if (object_ != nullptr) object_->acquire();
    }
    Handle(Handle&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Handle& operator=(Handle other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Handle() {
        if (object_ != nullptr) object_->release();
    }

    Shared* get() const noexcept { return object_; }

private:
    Shared* object_;
};

}  // namespace velmora::config
