// What is asked of every character, for loops that cannot afford a call for each: the functions are
// static because compilers then put the only use in a file in its place.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "velmora/utils/unicode.hpp"

namespace velmora::utils::detail {

#include "velmora/utils/unicode_table.inc"

static inline Character first_character(std::string_view text) noexcept {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const char32_t lead = byte(0);
    if (lead < 0x80) return {lead, 1};

    const Character stray{0xdc00 + lead, 1};
    // The bits that a byte behind the first one adds, beyond 0x3f when it is none.
    const auto added = [byte](std::size_t i) { return char32_t{byte(i)} ^ 0x80U; };
    if (lead < 0xe0) {
        if (lead < 0xc2 || text.size() < 2 || added(1) > 0x3f) return stray;
        return {(lead & 0x1fU) << 6U | added(1), 2};
    }
    if (lead < 0xf0) {
        if (text.size() < 3 || (added(1) | added(2)) > 0x3f) return stray;
        const char32_t code = (lead & 0x0fU) << 12U | added(1) << 6U | added(2);
        const bool surrogate = code >= 0xd800 && code <= 0xdfff;
        return code < 0x800 || surrogate ? stray : Character{code, 3};
    }
    if (text.size() < 4 || (added(1) | added(2) | added(3)) > 0x3f) return stray;
    const char32_t code = (lead & 0x0fU) << 18U | added(1) << 12U | added(2) << 6U | added(3);
    return code < 0x10000 || code > 0x10ffff ? stray : Character{code, 4};
}

static inline bool is_printable(char32_t code) noexcept {
    if (code < 0x80) return code >= 0x20 && code != 0x7f;
    if (code > 0x10ffff) return false;
    const std::size_t bit = std::size_t{block_of[code >> 8U]} * 256 + (code & 0xffU);
    return (printable_bits[bit / 64] >> bit % 64 & 1U) != 0;
}

}  // namespace velmora::utils::detail
