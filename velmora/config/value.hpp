// A raw value, as a configuration file, a command line or an environment variable yields it.
//
//     ConfigValue value = Mapping{{"port", 8080}, {"tags", List{"a", "b"}}};
//     if (const ConfigValue* port = value.find("port")) listen(port->get<std::uint16_t>());
#pragma once

#include <concepts>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "velmora/config/integer.hpp"
#include "velmora/config/list.hpp"
#include "velmora/config/mapping.hpp"
#include "velmora/config/number.hpp"
#include "velmora/config/shared.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

/// Null, a flag, an integer, a double, a text, a list or a mapping. Once moved from, it is null.
class VELMORA_EXPORT ConfigValue {
public:
    ConfigValue() noexcept = default;
    ConfigValue(std::nullptr_t) noexcept {}
    template <std::same_as<bool> Flag>
    ConfigValue(Flag flag) noexcept : value_(flag) {}
    template <BuiltinInteger I>
    ConfigValue(I integer) : value_(Integer(integer)) {}
    template <BuiltinFloat F>
    ConfigValue(F real) noexcept : value_(double{real}) {}
    ConfigValue(Integer integer) noexcept : value_(std::move(integer)) {}
    ConfigValue(const Number& number);
    ConfigValue(std::string text) noexcept : value_(std::move(text)) {}
    ConfigValue(std::string_view text) : value_(std::string(text)) {}
    /// A null pointer, as std::getenv may return it, makes null.
    ConfigValue(const char* text);
    ConfigValue(char* text) : ConfigValue(static_cast<const char*>(text)) {}
    template <std::same_as<std::filesystem::path> Path>
    ConfigValue(const Path& path) : value_(path.string()) {}
    ConfigValue(List list) noexcept : value_(std::move(list)) {}
    template <detail::MakesValue T>
    ConfigValue(std::vector<T> items) : value_(List(std::move(items))) {}
    ConfigValue(Mapping mapping) noexcept : value_(std::move(mapping)) {}
    /// Null when `value` is empty.
    template <detail::MakesValue T>
    ConfigValue(std::optional<T> value) {
        if (value) *this = *std::move(value);
    }
    template <class T>
    ConfigValue(T*) = delete;

    ConfigValue(const ConfigValue&) = default;
    ConfigValue(ConfigValue&& other) noexcept : value_(std::move(other.value_)) {
        other.value_.emplace<std::monostate>();
    }
    ConfigValue& operator=(const ConfigValue& other) { return *this = ConfigValue(other); }
    ConfigValue& operator=(ConfigValue&& other) noexcept;
    ~ConfigValue() = default;

    bool is_null() const noexcept { return std::holds_alternative<std::monostate>(value_); }

    /// What the value holds when it is an `Alternative`: bool, Integer, double, std::string, List
    /// or Mapping; else null.
    template <class Alternative>
    const Alternative* get_if() const noexcept {
        return std::get_if<Alternative>(&value_);
    }

    /// The value as a `T` when it is one, without any conversion between types of value: bool, a
    /// built-in integer type that the integer fits, Integer, double, Number, std::string,
    /// std::filesystem::path for a text, List, Mapping, ConfigValue, a vector of such types for a
    /// list of them, or an optional of one, which is empty for null.
    template <class T>
    std::optional<T> as() const;

    /// The value as a `T`, like `as`. Throws TypeError when it is none, an integer that does not
    /// fit included.
    template <class T>
    T get() const;

    /// The value under `key` when this is a mapping that has one, else null: what
    /// `Mapping::find` gives.
    template <class Key>
    const ConfigValue* find(const Key& key) const {
        const auto* mapping = get_if<Mapping>();
        return mapping != nullptr ? mapping->find(key) : nullptr;
    }

    /// The type of the value in words: "null", "a flag", "an integer", "a float", "a text",
    /// "a list" or "a mapping".
    std::string_view type_text() const noexcept;

    /// Calls `visitor` with what the value holds: std::monostate for null, bool, Integer, double,
    /// std::string, List or Mapping.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return std::visit(std::forward<Visitor>(visitor), value_);
    }

    /// Agrees with `==`. Lists and mappings are hashed by their size and, near the top, their
    /// items. Differs from process to process.
    std::size_t hash() const;

    /// By value, at any depth: an integer equals a double of the same value, a flag never equals a
    /// number. Mappings are equal whatever the order of their entries, only entries whose keys are
    /// lists or mappings are compared in their order. A list or mapping equals itself, whatever it
    /// contains.
    VELMORA_EXPORT friend bool operator==(const ConfigValue& a, const ConfigValue& b);

private:
    friend class List;
    friend class Mapping;

    /// The handle of the list or the mapping that the value is, else null.
    detail::Handle* handle() noexcept;

    std::variant<std::monostate, bool, Integer, double, std::string, List, Mapping> value_;
};

struct Mapping::Entry {
    Entry(ConfigValue its_key, ConfigValue its_value)
        : key(std::move(its_key)), value(std::move(its_value)) {}

    ConfigValue key;
    ConfigValue value;
};

class List::Data : public detail::Shared {
public:
    std::vector<ConfigValue> items;

private:
    detail::Handle* next_handle(std::size_t& position) noexcept override;
};

List::Data& List::data() const noexcept {
    return static_cast<Data&>(*handle_.get());
}

inline std::size_t List::size() const noexcept {
    return data().items.size();
}
inline const ConfigValue* List::begin() const noexcept {
    return data().items.data();
}
inline const ConfigValue* List::end() const noexcept {
    return begin() + size();
}
inline const ConfigValue& List::operator[](std::size_t index) const noexcept {
    return data().items[index];
}

/// What a mapping holds, beside what finds it.
struct Mapping::Entries : detail::Shared {
    std::vector<Entry> entries;
};

const Mapping::Entries& Mapping::entries() const noexcept {
    return static_cast<const Entries&>(*handle_.get());
}

inline std::size_t Mapping::size() const noexcept {
    return entries().entries.size();
}
inline const Mapping::Entry* Mapping::begin() const noexcept {
    return entries().entries.data();
}
inline const Mapping::Entry* Mapping::end() const noexcept {
    return begin() + size();
}

template <detail::MakesValue T>
List::List(std::vector<T> items) : List() {
    if constexpr (std::same_as<T, ConfigValue>) {
        take(std::move(items));
    } else {
        std::vector<ConfigValue> values;
        values.reserve(items.size());
        for (auto&& item : items) values.push_back(static_cast<T&&>(item));
        take(std::move(values));
    }
}

}  // namespace velmora::config

template <>
struct std::hash<velmora::config::ConfigValue> {
    std::size_t operator()(const velmora::config::ConfigValue& value) const { return value.hash(); }
};

#include "velmora/config/value_as.hpp"  // The members that read a value as a C++ type.
