// Hashes of records: one hash out of the hashes of the fields.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace velmora::utils {

/// Mixes `next` into `seed`, the order of the calls included (Boost's hash_combine).
constexpr std::size_t hash_mix(std::size_t seed, std::size_t next) noexcept {
    return seed ^ (next + 0x9e3779b97f4a7c15U + (seed << 6U) + (seed >> 2U));
}

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
