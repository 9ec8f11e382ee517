// A raw value, as a configuration file, a command line or an environment variable yields it.
//
//     ConfigValue value = Mapping{{"port", 8080}, {"tags", List{"a", "b"}}};
//     if (const ConfigValue* port = value.find("port")) listen(port->get<std::uint16_t>());
#pragma once

#include <concepts>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
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
    ConfigValue(Flag flag) noexcept {
        hold<bool>(flag);
    }
    template <BuiltinInteger I>
    ConfigValue(I integer) {
        hold<Integer>(integer);
    }
    template <BuiltinFloat F>
    ConfigValue(F real) noexcept {
        hold<double>(real);
    }
    ConfigValue(Integer integer) noexcept { hold<Integer>(std::move(integer)); }
    ConfigValue(const Number& number);
    ConfigValue(std::string text) noexcept { hold<std::string>(std::move(text)); }
    ConfigValue(std::string_view text) { hold<std::string>(text); }
    /// A null pointer, as std::getenv may return it, makes null.
    ConfigValue(const char* text);
    ConfigValue(char* text) : ConfigValue(static_cast<const char*>(text)) {}
    template <std::same_as<std::filesystem::path> Path>
    ConfigValue(const Path& path) {
        hold<std::string>(path.string());
    }
    ConfigValue(List list) noexcept { hold<List>(std::move(list)); }
    template <detail::MakesValue T>
    ConfigValue(std::vector<T> items) {
        hold<List>(std::move(items));
    }
    ConfigValue(Mapping mapping) noexcept { hold<Mapping>(std::move(mapping)); }
    /// Null when `value` is empty.
    template <detail::MakesValue T>
    ConfigValue(std::optional<T> value) {
        if (value) *this = *std::move(value);
    }
    template <class T>
    ConfigValue(T*) = delete;

    ConfigValue(const ConfigValue& other) { hold_that_of(other); }
    ConfigValue(ConfigValue&& other) noexcept {
        hold_that_of(std::move(other));
        other.become_null();  // NOLINT(bugprone-use-after-move): of what is left.
    }
    ConfigValue& operator=(const ConfigValue& other) { return *this = ConfigValue(other); }
    ConfigValue& operator=(ConfigValue&& other) noexcept;
    ~ConfigValue() { become_null(); }

    bool is_null() const noexcept { return type_ == Type::null; }

    /// What the value holds when it is an `Alternative`: bool, Integer, double, std::string, List
    /// or Mapping; else null.
    template <class Alternative>
    const Alternative* get_if() const noexcept {
        static_assert(type_of<Alternative> != Type::null, "no value holds this type");
        return type_ == type_of<Alternative>
                   ? static_cast<const Alternative*>(static_cast<const void*>(&held_))
                   : nullptr;
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
        switch (type_) {
            case Type::flag:
                return std::forward<Visitor>(visitor)(held_.flag);
            case Type::integer:
                return std::forward<Visitor>(visitor)(held_.integer);
            case Type::real:
                return std::forward<Visitor>(visitor)(held_.real);
            case Type::text:
                return std::forward<Visitor>(visitor)(held_.text);
            case Type::list:
                return std::forward<Visitor>(visitor)(held_.list);
            case Type::mapping:
                return std::forward<Visitor>(visitor)(held_.mapping);
            case Type::null:
                break;
        }
        static constexpr std::monostate null;
        return std::forward<Visitor>(visitor)(null);
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

    enum class Type : unsigned char { null, flag, integer, real, text, list, mapping };

    // What a std::variant would hold, but scalars are copied and destroyed without a call.
    union Held {
        Held() noexcept : null() {}
        // NOLINTNEXTLINE(modernize-use-equals-default): that would be a deleted one.
        ~Held() {}

        std::monostate null;
        bool flag;
        Integer integer;
        double real;
        std::string text;
        List list;
        Mapping mapping;
    };

    template <class T>
    static constexpr Type type_of = std::same_as<T, bool>          ? Type::flag
                                    : std::same_as<T, Integer>     ? Type::integer
                                    : std::same_as<T, double>      ? Type::real
                                    : std::same_as<T, std::string> ? Type::text
                                    : std::same_as<T, List>        ? Type::list
                                    : std::same_as<T, Mapping>     ? Type::mapping
                                                                   : Type::null;

    /// Of a value that is null, as those below.
    template <class T, class... Arguments>
    void hold(Arguments&&... arguments) {
        std::construct_at(static_cast<T*>(static_cast<void*>(&held_)),
                          std::forward<Arguments>(arguments)...);
        type_ = type_of<T>;
    }

    template <class Other>
    void hold_that_of(Other&& other) {
        if (other.type_ == Type::integer) {
            hold<Integer>(std::forward<Other>(other).held_.integer);
        } else if (other.type_ == Type::real) {
            hold<double>(other.held_.real);
        } else if (other.type_ == Type::flag) {
            hold<bool>(other.held_.flag);
        } else if (other.type_ != Type::null) {
            hold_owned(std::forward<Other>(other));
        }
    }
    void hold_owned(const ConfigValue& other);
    void hold_owned(ConfigValue&& other) noexcept;

    void become_null() noexcept {
        if (type_ == Type::integer) {
            std::destroy_at(&held_.integer);
        } else if (type_ >= Type::text) {
            destroy_owned();
        }
        type_ = Type::null;
    }
    void destroy_owned() noexcept;

    /// The handle of the list or the mapping that the value is, else null.
    detail::Handle* handle() noexcept;

    Type type_ = Type::null;
    Held held_;
};

}  // namespace velmora::config

template <>
struct std::hash<velmora::config::ConfigValue> {
    std::size_t operator()(const velmora::config::ConfigValue& value) const { return value.hash(); }
};

#include "velmora/config/items.hpp"     // What lists and mappings hold.
#include "velmora/config/value_as.hpp"  // The members that read a value as a C++ type.
