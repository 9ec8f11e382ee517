#include "velmora/config/shared.hpp"

#include <mutex>
#include <new>
#include <unordered_map>
#include <unordered_set>

namespace velmora::config {

namespace {

// Held while handles of objects in cycles go: only then do two threads never both find the last
// one.
std::mutex& cycle_mutex() {
    static std::mutex mutex;
    return mutex;
}

}  // namespace

// The objects that can be reached from one, and how many handles of each are held within the graph.
class Shared::Graph {
public:
    template <class Follow>
    Graph(Shared& root, Follow follow) {
        handles_.emplace(&root, 0);
        walk({&root}, [&](Shared* child) {
            if (!follow(*child)) return false;
            const auto [entry, fresh] = handles_.try_emplace(child, 0);
            ++entry->second;
            return fresh;
        });
    }

    bool contains(Shared& object) const { return handles_.contains(&object); }

    void mark_in_cycle() const {
        for (const auto& [object, handles] : handles_) object->in_cycle_ = true;
    }

    // The objects that no handle from outside keeps alive, directly or through others.
    std::vector<Shared*> unreachable() const {
        std::unordered_set<Shared*> alive;
        for (const auto& [object, handles] : handles_) {
            if (object->handles_ > handles) alive.insert(object);
        }
        walk({alive.begin(), alive.end()},
             [&](Shared* child) { return handles_.contains(child) && alive.insert(child).second; });
        std::vector<Shared*> dead;
        for (const auto& [object, handles] : handles_) {
            if (!alive.contains(object)) dead.push_back(object);
        }
        return dead;
    }

private:
    // Calls `enter` for every child of the `open` objects and, where it says so, goes on below.
    template <class Enter>
    static void walk(std::vector<Shared*> open, Enter enter) {
        std::vector<Shared*> children;
        while (!open.empty()) {
            children.clear();
            const Shared* object = open.back();
            open.pop_back();
            object->append_children(children);
            for (Shared* child : children) {
                if (enter(child)) open.push_back(child);
            }
        }
    }

    std::unordered_map<Shared*, std::size_t> handles_;
};

void Shared::before_adding(Shared& child) {
    // A way from `child` back to this object would end in one more handle of it.
    if (handles_ == 1) return;
    const Graph below(child, [](const Shared&) { return true; });
    if (below.contains(*this)) below.mark_in_cycle();
}

void Shared::release() noexcept {
    if (in_cycle_.load(std::memory_order_relaxed)) {
        release_in_cycle();
    } else if (handles_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        dispose();
    }
}

// Synchronous trial deletion after Bacon and Rajan, "Concurrent Cycle Collection in Reference
// Counted Systems" (2001).
void Shared::release_in_cycle() noexcept {
    std::unique_lock lock(cycle_mutex());
    if (handles_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        lock.unlock();
        dispose();
        return;
    }
    std::vector<Shared*> dead;
    try {
        dead =
            Graph(*this, [](const Shared& child) { return child.in_cycle_.load(); }).unreachable();
    } catch (const std::bad_alloc&) {
        return;  // Short of memory, the cycle stays.
    }
    for (Shared* object : dead) {
        object->in_cycle_ = false;
        object->acquire();
    }
    lock.unlock();
    for (Shared* object : dead) object->clear();
    for (Shared* object : dead) object->release();
}

// Disposing of an object releases its children: the outermost call disposes of those too.
void Shared::dispose() noexcept {
    static thread_local Shared* waiting = nullptr;
    static thread_local bool disposing = false;
    next_disposed_ = std::exchange(waiting, this);
    if (disposing) return;
    disposing = true;
    while (waiting != nullptr) {
        const Shared* object = std::exchange(waiting, waiting->next_disposed_);
        delete object;
    }
    disposing = false;
}

}  // namespace velmora::config
