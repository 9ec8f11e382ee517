#include "velmora/yaml/places.hpp"

#include <algorithm>
#include <functional>
#include <stdexcept>

namespace velmora::yaml {

void Places::add(const Part& part) {
    open_.push_back({.offset = static_cast<std::uint32_t>(part.content.offset),
                     .size = static_cast<std::uint32_t>(part.content.size),
                     .spelling_offset = static_cast<std::uint32_t>(part.spelling.offset),
                     .spelling_size = static_cast<std::uint32_t>(part.spelling.size)});
}

void Places::close(const void* identity, std::size_t size) {
    collections_.push_back(
        {identity, static_cast<std::uint32_t>(parts_.size()), static_cast<std::uint32_t>(size)});
    const auto first = open_.end() - static_cast<std::ptrdiff_t>(size);
    parts_.insert(parts_.end(), first, open_.end());
    open_.erase(first, open_.end());
}

void Places::finish() {
    std::sort(collections_.begin(), collections_.end(),
              [](const Collection& a, const Collection& b) {
                  return std::less<>()(a.identity, b.identity);
              });
}

Part Places::unpacked(const Packed& packed) {
    return {.content = {packed.offset, packed.size},
            .spelling = {packed.spelling_offset, packed.spelling_size}};
}

Part Places::root() const {
    return open_.empty() ? Part{} : unpacked(open_.back());
}

Part Places::part(const void* collection, std::size_t index) const {
    const auto found = std::lower_bound(collections_.begin(), collections_.end(), collection,
                                        [](const Collection& each, const void* identity) {
                                            return std::less<>()(each.identity, identity);
                                        });
    if (found == collections_.end() || found->identity != collection)
        throw std::out_of_range("a list or mapping that is not in the value");
    if (index >= found->size) throw std::out_of_range("no such item or entry");
    return unpacked(parts_[found->first + index]);
}

}  // namespace velmora::yaml
