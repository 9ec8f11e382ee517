// What the fuzzers' bodies have in common.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <velmora/config/spec.hpp>
#include <velmora/utils/unicode.hpp>

inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fputs(what, stderr);
    std::abort();
}

/// As every text is that a user gets to see.
inline void require_utf8(std::string_view text) {
    require(velmora::utils::is_utf8(text), "a text that is no UTF-8");
}

/// A key takes its own values again, as they are and from their texts.
template <class Key>
void require_accepted(const Key& key, const velmora::config::ConfigValue& value) {
    const bool has_text = key.kind() != velmora::config::KeyKind::list;
    require(key.coerce(value) == value &&
                (!has_text || key.coerce(velmora::config::plain_text(value)) == value),
            "a key does not take its own value");
}
