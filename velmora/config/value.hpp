// A raw value, as a configuration file, a command line or an environment variable yields it.
//
//     ConfigValue value = Mapping{{"port", 8080}, {"tags", List{"a", "b"}}};
//     if (const auto* mapping = value.get_if<Mapping>()) {
//         if (const ConfigValue* port = mapping->find("port")) listen(port->get<std::uint16_t>());
//     }
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "velmora/config/number.hpp"
#include "velmora/config/shared.hpp"

namespace velmora::config {

class ConfigValue;
class List;

/// What a mapping may hold under, but for texts; nullptr stands for null.
template <class Key>
concept KeyBesidesText = std::convertible_to<const Key&, ConfigValue> &&
    (std::is_null_pointer_v<Key> || !std::convertible_to<const Key&, std::string_view>);

/// What a list may be made of: anything but one list, which is itself.
template <class... Items>
concept ListItems = !(sizeof...(Items) == 1 &&
                      (std::same_as<std::remove_cvref_t<Items>, List> && ...)) &&
                    sizeof...(Items) > 0 && (std::convertible_to<Items, ConfigValue> && ...);

/// A list of values. A handle: copies share one list, which `copy` does not. Once moved from, it
/// may only be assigned to or destroyed.
///
/// A list may contain itself, directly or through others. To free such lists when their last handle
/// from outside goes, letting go of any handle of them takes a walk through all that the handle
/// reaches; to threads, they are one object, of which dropping a handle is a use like reading.
class List {
public:
    List();
    /// A list of these items. One list in braces is itself, as with every type: a list of one list
    /// is List{ConfigValue(list)}.
    template <class... Items>
    requires ListItems<Items...>
    explicit List(Items&&... items) : List() { (push_back(std::forward<Items>(items)), ...); }
    template <std::same_as<std::vector<ConfigValue>> Items>
    explicit List(Items items) : List(FromItems{}, std::move(items)) {}

    std::size_t size() const noexcept;
    bool empty() const noexcept { return size() == 0; }
    const ConfigValue* begin() const noexcept;
    const ConfigValue* end() const noexcept;
    const ConfigValue& operator[](std::size_t index) const noexcept;

    void push_back(ConfigValue item);
    /// Replaces the item at `index`, which must exist.
    void set(std::size_t index, ConfigValue item);

    /// A new list of the same items; lists and mappings among them are shared.
    List copy() const;

    /// Whether both are handles of one list, so that a change to the one shows in the other.
    bool same_as(const List& other) const noexcept { return identity() == other.identity(); }
    /// An address that all handles of one list, and no others, have in common.
    const void* identity() const noexcept { return handle_.get(); }

    friend bool operator==(const List& a, const List& b);

private:
    friend class ConfigValue;
    class Data;
    struct FromItems {};

    List(FromItems tag, std::vector<ConfigValue> items);

    Data& data() const noexcept;

    Handle handle_;
};

/// A mapping from values, texts as a rule, to values, in the order in which its keys were first
/// set. A handle like `List`. A list or a mapping that serves as a key must not be changed as long
/// as it does.
class Mapping {
public:
    struct Entry;

    Mapping();
    /// Of entries with equal keys, the last one gives the value.
    Mapping(std::initializer_list<Entry> entries);

    std::size_t size() const noexcept;
    bool empty() const noexcept { return size() == 0; }
    const Entry* begin() const noexcept;
    const Entry* end() const noexcept;

    /// The value under `key`, null when there is none; valid until the mapping is changed. Takes
    /// constant expected time.
    const ConfigValue* find(std::string_view key) const;
    template <KeyBesidesText Key>
    const ConfigValue* find(const Key& key) const {
        return find_value(key);
    }
    /// The entry under `key`, like `find`, for a caller who guesses its position: the entry at
    /// `expected` is looked at before any search.
    const Entry* find_entry(std::string_view key, std::size_t expected = 0) const;

    /// Puts `value` under `key`: in place of the value that is there, else in a new entry at the
    /// end.
    void set(ConfigValue key, ConfigValue value);

    /// A new mapping of the same entries; lists and mappings among them are shared.
    Mapping copy() const;

    /// Whether both are handles of one mapping.
    bool same_as(const Mapping& other) const noexcept { return identity() == other.identity(); }
    /// An address that all handles of one mapping, and no others, have in common.
    const void* identity() const noexcept { return handle_.get(); }

    friend bool operator==(const Mapping& a, const Mapping& b);

private:
    friend class ConfigValue;
    class Data;

    Data& data() const noexcept;
    const ConfigValue* find_value(const ConfigValue& key) const;

    Handle handle_;
};

/// Null, a flag, an integer, a double, a text, a list or a mapping. Once moved from, it is null.
class ConfigValue {
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
    ConfigValue(List list) noexcept : value_(std::move(list)) {}
    ConfigValue(Mapping mapping) noexcept : value_(std::move(mapping)) {}
    template <class T>
    ConfigValue(T*) = delete;

    ConfigValue(const ConfigValue&) = default;
    ConfigValue(ConfigValue&& other) noexcept;
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

    /// The value as a `T` when it is one, without any conversion between kinds: bool, a built-in
    /// integer type that the integer fits, Integer, double, Number, std::string, List, Mapping,
    /// ConfigValue, a vector of such types for a list of them, or an optional of one, which is
    /// empty for null.
    template <class T>
    std::optional<T> as() const;

    /// The value as a `T`, like `as`. Throws TypeError when it is none, an integer that does not
    /// fit included.
    template <class T>
    T get() const;

    /// The value under `key` when this is a mapping that has one, else null; valid as
    /// `Mapping::find` says.
    const ConfigValue* find(std::string_view key) const {
        const auto* mapping = get_if<Mapping>();
        return mapping != nullptr ? mapping->find(key) : nullptr;
    }

    /// What kind of value this is, in words: "null", "a flag", "an integer", "a float", "a text",
    /// "a list" or "a mapping".
    std::string_view kind_text() const noexcept;

    /// Calls `visitor` with what the value holds: std::monostate for null, bool, Integer, double,
    /// std::string, List or Mapping.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return std::visit(std::forward<Visitor>(visitor), value_);
    }

    /// A copy that shares no list or mapping with this value. What is shared, or contains itself,
    /// within this value does so within the copy.
    ConfigValue deep_copy() const;

    /// Agrees with `==`. Lists and mappings are hashed by their size and, near the top, their
    /// items.
    std::size_t hash() const;

    /// By value, at any depth: an integer equals a double of the same value, a flag never equals a
    /// number. Mappings are equal whatever the order of their entries, only entries whose keys are
    /// lists or mappings are compared in their order. A list or mapping equals itself, whatever it
    /// contains.
    friend bool operator==(const ConfigValue& a, const ConfigValue& b);

private:
    class Comparison;

    Shared* shared() const noexcept;
    friend class List;
    friend class Mapping;

    std::variant<std::monostate, bool, Integer, double, std::string, List, Mapping> value_;
};

struct Mapping::Entry {
    Entry(ConfigValue its_key, ConfigValue its_value)
        : key(std::move(its_key)), value(std::move(its_value)) {}

    ConfigValue key;
    ConfigValue value;
};

// --- Reading a value as a C++ type ---

namespace detail {

template <class T>
inline constexpr bool is_optional = false;
template <class T>
inline constexpr bool is_optional<std::optional<T>> = true;

template <class T>
inline constexpr bool is_vector = false;
template <class T>
inline constexpr bool is_vector<std::vector<T>> = true;

template <class T>
inline constexpr bool is_alternative =
    std::same_as<T, bool> || std::same_as<T, Integer> || std::same_as<T, double> ||
    std::same_as<T, std::string> || std::same_as<T, List> || std::same_as<T, Mapping>;

/// What `ConfigValue::as<T>` accepts, in words.
template <class T>
std::string wanted_text() {
    if constexpr (std::same_as<T, bool>) {
        return "a flag";
    } else if constexpr (std::same_as<T, Integer>) {
        return "an integer";
    } else if constexpr (BuiltinInteger<T>) {
        return "an integer from " + std::to_string(std::numeric_limits<T>::min()) + " to " +
               std::to_string(std::numeric_limits<T>::max());
    } else if constexpr (std::same_as<T, double>) {
        return "a float";
    } else if constexpr (std::same_as<T, Number>) {
        return "a number";
    } else if constexpr (std::same_as<T, std::string>) {
        return "a text";
    } else if constexpr (std::same_as<T, List>) {
        return "a list";
    } else if constexpr (std::same_as<T, Mapping>) {
        return "a mapping";
    } else if constexpr (is_vector<T>) {
        return "a list, each item " + wanted_text<typename T::value_type>();
    } else if constexpr (is_optional<T>) {
        return "null or " + wanted_text<typename T::value_type>();
    } else {
        return "a value";
    }
}

[[noreturn]] void throw_unwanted(std::string_view wanted, const ConfigValue& got);

}  // namespace detail

template <class T>
std::optional<T> ConfigValue::as() const {
    if constexpr (std::same_as<T, ConfigValue>) {
        return *this;
    } else if constexpr (detail::is_alternative<T>) {
        const auto* held = get_if<T>();
        return held != nullptr ? std::optional<T>(*held) : std::nullopt;
    } else if constexpr (BuiltinInteger<T>) {
        const auto* held = get_if<Integer>();
        return held != nullptr ? held->as<T>() : std::nullopt;
    } else if constexpr (std::same_as<T, Number>) {
        if (const auto* held = get_if<Integer>()) return *held;
        const auto* held = get_if<double>();
        return held != nullptr ? std::optional<T>(*held) : std::nullopt;
    } else if constexpr (detail::is_vector<T>) {
        const auto* held = get_if<List>();
        if (held == nullptr) return std::nullopt;
        T items;
        items.reserve(held->size());
        for (const ConfigValue& item : *held) {
            std::optional<typename T::value_type> read = item.as<typename T::value_type>();
            if (!read) return std::nullopt;
            items.push_back(*std::move(read));
        }
        return items;
    } else {
        static_assert(detail::is_optional<T>, "no value reads as this type");
        if (is_null()) return T();
        std::optional<typename T::value_type> read = as<typename T::value_type>();
        return read ? std::optional<T>(std::move(read)) : std::nullopt;
    }
}

template <class T>
T ConfigValue::get() const {
    std::optional<T> read = as<T>();
    if (!read) detail::throw_unwanted(detail::wanted_text<T>(), *this);
    return *std::move(read);
}

}  // namespace velmora::config

template <>
struct std::hash<velmora::config::ConfigValue> {
    std::size_t operator()(const velmora::config::ConfigValue& value) const { return value.hash(); }
};
