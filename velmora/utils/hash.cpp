#include "velmora/utils/hash.hpp"

#include <chrono>
#include <cstring>
#include <functional>

namespace velmora::utils {

namespace {

// Lets every bit bear on every other, and keeps different numbers different: the last steps of
// splitmix64 (Steele, Lea and Flood, "Fast Splittable Pseudorandom Number Generators", 2014).
constexpr std::uint64_t mixed(std::uint64_t bits) noexcept {
    bits = (bits ^ bits >> 30U) * 0xbf58476d1ce4e5b9U;
    bits = (bits ^ bits >> 27U) * 0x94d049bb133111ebU;
    return bits ^ bits >> 31U;
}

// What the author of a file cannot know: when, and where in memory, this process runs.
std::uint64_t process_seed() noexcept {
    static const std::uint64_t seed = [] {
        const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
        return mixed(static_cast<std::uint64_t>(ticks)) ^ std::hash<const void*>{}(&seed);
    }();
    return seed;
}

}  // namespace

std::size_t hash_integer(std::int64_t value) noexcept {
    return static_cast<std::size_t>(mixed(process_seed() ^ static_cast<std::uint64_t>(value)));
}

std::size_t hash_text(std::string_view text) noexcept {
    std::uint64_t hash = process_seed() + text.size();
    std::uint64_t block = 0;
    if (text.size() < sizeof block) {
        for (const char c : text) block = block << 8U | static_cast<unsigned char>(c);
        return static_cast<std::size_t>(mixed(hash ^ block));
    }
    // The last block may overlap with the one before it.
    const std::size_t last = text.size() - sizeof block;
    for (std::size_t at = 0; at < last; at += sizeof block) {
        std::memcpy(&block, text.data() + at, sizeof block);
        hash = mixed(hash ^ block);
    }
    std::memcpy(&block, text.data() + last, sizeof block);
    return static_cast<std::size_t>(mixed(hash ^ block));
}

std::size_t hash_mix(std::size_t seed, std::size_t next) noexcept {
    return static_cast<std::size_t>(mixed(mixed(seed) ^ next));
}

}  // namespace velmora::utils
