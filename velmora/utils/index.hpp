// A hash table of positions, for whoever keeps the objects themselves in a vector.
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

namespace velmora::utils {

/// Positions by hashes: each in the first free slot from that one on to which its hash points.
class Index {
public:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    /// Has no room at all until it is assigned to.
    Index() = default;
    explicit Index(std::size_t power_of_two) : slots_(power_of_two) {}

    /// Searching stays short as long as half of the slots are free.
    bool has_room_for(std::size_t positions) const noexcept {
        return positions <= slots_.size() / 2;
    }

    void insert(std::size_t hash, std::size_t position) noexcept {
        std::size_t at = hash & last_slot();
        while (slots_[at].position != none) at = (at + 1) & last_slot();
        slots_[at] = {hash, position};
    }

    /// The position of this hash that `matches`; `none` when there is none.
    template <class Matches>
    std::size_t find(std::size_t hash, Matches matches) const {
        for (std::size_t at = hash & last_slot();; at = (at + 1) & last_slot()) {
            const Slot& slot = slots_[at];
            if (slot.position == none || (slot.hash == hash && matches(slot.position)))
                return slot.position;
        }
    }

private:
    struct Slot {
        std::size_t hash = 0;
        std::size_t position = none;
    };

    std::size_t last_slot() const noexcept { return slots_.size() - 1; }

    std::vector<Slot> slots_;
};

}  // namespace velmora::utils
