// A mapping from values to values. Include value.hpp, which says what a value is.
#pragma once

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <type_traits>

#include "velmora/config/shared.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

class ConfigValue;

namespace detail {

/// What makes a value, and is not looked up as a text without making one.
template <class Key>
concept KeyBesidesText = std::convertible_to<const Key&, ConfigValue> &&
    (std::is_null_pointer_v<Key> || !std::convertible_to<const Key&, std::string_view>);

}  // namespace detail

/// A mapping from values, texts as a rule, to values, in the order in which its keys were first
/// set. A handle like `List`, which may contain itself as lists do. A list or a mapping that serves
/// as a key must not be changed as long as it does.
class VELMORA_EXPORT Mapping {
public:
    struct Entry;

    Mapping();
    /// Of entries with equal keys, the first one gives the key and the last one the value.
    Mapping(std::initializer_list<Entry> entries);

    std::size_t size() const noexcept;
    bool empty() const noexcept { return size() == 0; }
    const Entry* begin() const noexcept;
    const Entry* end() const noexcept;

    /// The entry under `key`, null when there is none; valid until the mapping is changed. Takes
    /// constant expected time, whoever chose the keys. A null pointer is the key null.
    const Entry* find_entry(std::string_view key) const;
    const Entry* find_entry(const char* key) const;
    template <detail::KeyBesidesText Key>
    const Entry* find_entry(const Key& key) const {
        return find_any(key);
    }

    /// The value under `key`, like `find_entry`.
    template <class Key>
    const ConfigValue* find(const Key& key) const {
        const auto* entry = find_entry(key);
        return entry != nullptr ? &entry->value : nullptr;
    }

    /// Puts `value` under `key`: in place of the value that is there, else in a new entry at the
    /// end.
    void set(ConfigValue key, ConfigValue value);

    /// A new mapping of the same entries; lists and mappings among them are shared.
    Mapping copy() const;

    /// Whether both are handles of one mapping.
    bool same_as(const Mapping& other) const noexcept { return identity() == other.identity(); }
    /// An address that all handles of one mapping, and no others, have in common.
    const void* identity() const noexcept { return handle_.get(); }

    /// Whether the mapping may contain itself, directly or through others; false for most.
    bool may_contain_itself() const noexcept { return handle_.get()->was_on_circle(); }

    /// As ConfigValue's.
    VELMORA_EXPORT friend bool operator==(const Mapping& a, const Mapping& b);

private:
    friend class ConfigValue;
    struct Entries;
    class Data;

    Data& data() const noexcept;
    inline const Entries& entries() const noexcept;
    const Entry* find_any(const ConfigValue& key) const;

    detail::Handle handle_;
};

}  // namespace velmora::config
