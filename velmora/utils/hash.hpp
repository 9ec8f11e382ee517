// Hashes that tell nobody beforehand which values collide: they differ from process to process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "velmora/utils/export.hpp"

namespace velmora::utils {

VELMORA_EXPORT std::size_t hash_integer(std::int64_t value) noexcept;
VELMORA_EXPORT std::size_t hash_text(std::string_view text) noexcept;

/// Mixes `next` into `seed`, the order of the calls included.
VELMORA_EXPORT std::size_t hash_mix(std::size_t seed, std::size_t next) noexcept;

template <class T>
std::size_t hash_of(const T& value) {
    return std::hash<T>{}(value);
}

template <class T>
std::size_t hash_of(const std::vector<T>& values) {
    std::size_t seed = values.size();
    for (const T& value : values) seed = hash_mix(seed, hash_of(value));
    return seed;
}

/// The hash of a record that has these fields, in this order.
template <class... Fields>
std::size_t hash_fields(const Fields&... fields) {
    std::size_t seed = sizeof...(fields);
    ((seed = hash_mix(seed, hash_of(fields))), ...);
    return seed;
}

}  // namespace velmora::utils
