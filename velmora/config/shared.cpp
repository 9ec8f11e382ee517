#include "velmora/config/shared.hpp"

#include <unordered_map>

namespace velmora::config::detail {

Adding::Adding(Shared& object, const Handle* child) : leader_(*object.leader_) {
    // A way back would end in one more handle.
    if (child == nullptr || leader_.handles_ == 1) return;

    // Groups are entered as a whole, from their leader on. They form no circle, so one that was
    // met before was left before.
    struct Group {
        Shared* leader;
        Shared* member;
        std::size_t position = 0;
        bool leads_back = false;
    };
    std::vector<Group> open;
    std::unordered_map<const Shared*, bool> met;  // Whether they lead back.
    const auto leads_back = [&](const Handle& handle) {
        Shared* leader = handle.object_->leader_;
        if (leader == &leader_) return true;
        // One handle alone leads to most groups: they are met once.
        if (leader->handles_ == 1) {
            open.push_back({leader, leader});
            return false;
        }
        const auto [entry, fresh] = met.try_emplace(leader, false);
        if (fresh) open.push_back({leader, leader});
        return entry->second;
    };
    leads_back(*child);
    while (!open.empty()) {
        Group& group = open.back();
        if (const Handle* handle = group.member->next_handle(group.position)) {
            if (handle->counted_ && leads_back(*handle)) group.leads_back = true;
            continue;
        }
        group.member = group.member->next_;
        group.position = 0;
        if (group.member != group.leader) continue;
        const Group left = group;
        open.pop_back();
        if (!left.leads_back) continue;
        groups_.push_back(left.leader);
        met[left.leader] = true;
        if (!open.empty()) open.back().leads_back = true;
    }
}

void Adding::finish(Handle* added) noexcept {
    const auto stop_counting_within = [&](Handle& handle) {
        if (handle.object_->leader_ != &leader_ || !handle.counted_) return;
        handle.counted_ = false;
        handle.object_->was_on_circle_ = true;
        --leader_.handles_;
    };
    for (Shared* group : groups_) {
        if (group->leader_ == &leader_) continue;  // Another one has joined it.
        leader_.handles_ += group->handles_;
        Shared* member = group;
        do {
            member->leader_ = &leader_;
            std::size_t position = 0;
            while (Handle* handle = member->next_handle(position)) stop_counting_within(*handle);
            member = member->next_;
        } while (member != group);
        std::swap(group->next_, leader_.next_);
    }
    if (added != nullptr) stop_counting_within(*added);
}

// Freeing an object may free groups below it: the outermost call frees those too.
void Shared::free_group() noexcept {
    static thread_local Shared* waiting = nullptr;
    static thread_local bool freeing = false;
    Shared* first = std::exchange(next_, waiting);
    waiting = first;
    if (freeing) return;
    freeing = true;
    while (waiting != nullptr) delete std::exchange(waiting, waiting->next_);
    freeing = false;
}

}  // namespace velmora::config::detail
