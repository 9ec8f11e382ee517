// What keys the members of plain structs make: by the type of a member, the kind of its key, what
// the key accepts and how its values become the member.
//
//     bool                          a bool
//     an integer type               an int, within the range of the type
//     float, double                 a float, within the range of the type
//     std::string, a path           a str
//     an enum class                 a str, one of the names that `names_of`, a function beside it,
//                                   gives its values
//     std::chrono::duration         a float, or an int if whole counts are all that it holds; below
//                                   zero as well, unless its bounds say no
//     std::vector of these, but     a list, each item as a key of its type would judge it
//       for bool and durations
//     std::optional of all these    the same, or null
//
// Included by schema.hpp.
#pragma once

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "velmora/app/options.hpp"
#include "velmora/config/declaration.hpp"
#include "velmora/config/kind.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::app {

/// The values of an enum and what they are called: what its `names_of` returns.
template <class Enum>
using EnumNames = std::vector<std::pair<Enum, std::string>>;

namespace detail {

template <class T>
concept Text = std::same_as<T, std::string> || std::same_as<T, std::filesystem::path>;

template <class T>
concept NamedEnum = std::is_enum_v<T> && requires(T value) {
    { names_of(value) } -> std::convertible_to<EnumNames<T>>;
};

template <class T>
concept Number = config::BuiltinInteger<T> || config::BuiltinFloat<T>;

/// Told by its members, so that this header need not include <chrono>.
template <class T>
concept Duration = requires(const T& duration) {
    typename T::rep;
    typename T::period;
    { duration.count() } -> std::same_as<typename T::rep>;
}
&&Number<typename T::rep>;

template <class T>
concept Item = Number<T> || Text<T> || NamedEnum<T>;

template <class T>
concept Single = std::same_as<T, bool> || Item<T> || Duration<T>;

template <class T>
inline constexpr bool is_list = false;
template <class T>
inline constexpr bool is_list<std::vector<T>> = Item<T>;

template <class T>
inline constexpr bool is_plain = std::same_as<T, std::remove_cv_t<T>> && (Single<T> || is_list<T>);

template <class T>
inline constexpr bool is_member = is_plain<T>;
template <class T>
inline constexpr bool is_member<std::optional<T>> = is_plain<T>;

/// What a member's type says of its key.
struct MemberType {
    config::KeyKind kind = config::KeyKind::str;
    /// The numbers that the type holds; empty for all that a key may take.
    std::optional<config::Bound> limits = std::nullopt;
    /// Whether it is a float: bounds hold for the float that is nearest to a value.
    bool single = false;
    /// Whether it is an enum, and the names of its values.
    bool named = false;
    std::vector<std::string> choices = {};
    std::string unit = {};
    bool optional = false;
    /// Of a list that is not one of texts.
    std::shared_ptr<const MemberType> items = nullptr;
};

/// "seconds", "units of 1/60 seconds".
VELMORA_EXPORT std::string unit_text(std::intmax_t numerator, std::intmax_t denominator);

/// The double with the shortest text that reads as `value`: 0.1 for 0.1f.
VELMORA_EXPORT double shortest(float value);

/// For an enum whose `names_of` gives other names than when the key was declared.
[[noreturn]] VELMORA_EXPORT void refuse_unnamed();

template <class T>
MemberType describe() {
    using Kind = config::KeyKind;
    if constexpr (std::same_as<T, bool>) {
        return {.kind = Kind::bool_};
    } else if constexpr (config::BuiltinInteger<T>) {
        using Limits = std::numeric_limits<T>;
        return {.kind = Kind::int_, .limits = config::Bound(Limits::min(), Limits::max())};
    } else if constexpr (std::same_as<T, float>) {
        using Limits = std::numeric_limits<T>;
        const double most = shortest(Limits::max());
        return {.kind = Kind::float_, .limits = config::Bound(-most, most), .single = true};
    } else if constexpr (std::same_as<T, double>) {
        return {.kind = Kind::float_};
    } else if constexpr (Text<T>) {
        return {.kind = Kind::str};
    } else if constexpr (NamedEnum<T>) {
        MemberType type{.kind = Kind::str, .named = true};
        for (const auto& [value, name] : names_of(T{})) type.choices.push_back(name);
        return type;
    } else if constexpr (Duration<T>) {
        MemberType type = describe<typename T::rep>();
        type.unit = unit_text(T::period::num, T::period::den);
        return type;
    } else if constexpr (is_list<T>) {
        MemberType type{.kind = Kind::list};
        if constexpr (!std::same_as<T, std::vector<std::string>>)
            type.items = std::make_shared<const MemberType>(describe<typename T::value_type>());
        return type;
    } else if constexpr (is_member<T>) {
        MemberType type = describe<typename T::value_type>();
        type.optional = true;
        return type;
    } else {
        return {};
    }
}

template <class T>
config::ConfigValue value_of(const T& member) {
    if constexpr (std::same_as<T, float>) {
        return shortest(member);
    } else if constexpr (std::same_as<T, std::filesystem::path>) {
        return member.native();
    } else if constexpr (NamedEnum<T>) {
        for (const auto& [value, name] : names_of(member)) {
            if (value == member) return name;
        }
        return static_cast<std::int64_t>(member);  // Which is no name.
    } else if constexpr (Duration<T>) {
        return value_of(member.count());
    } else if constexpr (is_list<T>) {
        std::vector<config::ConfigValue> items;
        items.reserve(member.size());
        for (const auto& item : member) items.push_back(value_of(item));
        return config::List(std::move(items));
    } else if constexpr (Single<T>) {
        return member;
    } else if constexpr (is_member<T>) {
        return member ? value_of(*member) : config::ConfigValue();
    } else {
        return {};
    }
}

/// Of a value that the key has accepted.
template <class T>
T member_of(const config::ConfigValue& value) {
    if constexpr (std::same_as<T, float>) {
        return static_cast<float>(value.get<double>());
    } else if constexpr (NamedEnum<T>) {
        const auto& text = value.get<std::string>();
        for (const auto& [member, name] : names_of(T{})) {
            if (name == text) return member;
        }
        refuse_unnamed();
    } else if constexpr (Duration<T>) {
        return T(member_of<typename T::rep>(value));
    } else if constexpr (is_list<T>) {
        T items;
        for (const config::ConfigValue& item : value.get<config::List>())
            items.push_back(member_of<typename T::value_type>(item));
        return items;
    } else if constexpr (Single<T>) {
        return value.get<T>();
    } else if constexpr (is_member<T>) {
        if (value.is_null()) return std::nullopt;
        return member_of<typename T::value_type>(value);
    } else {
        return {};
    }
}

/// All this of a type, for code that does not know it.
struct MemberOperations {
    MemberType (*describe)();
    config::ConfigValue (*value_of)(const void* member);
    void (*assign)(void* member, const config::ConfigValue& value);
};

template <class T>
struct VELMORA_EXPORT OperationsOn {
    static config::ConfigValue read(const void* member) {
        return value_of(*static_cast<const T*>(member));
    }
    static void assign(void* member, const config::ConfigValue& value) {
        *static_cast<T*>(member) = member_of<T>(value);
    }
    static constexpr MemberOperations all = {&describe<T>, &read, &assign};
};

// The most common ones are compiled once, in the library.
extern template struct OperationsOn<bool>;
extern template struct OperationsOn<int>;
extern template struct OperationsOn<unsigned>;
extern template struct OperationsOn<std::uint16_t>;
extern template struct OperationsOn<std::int64_t>;
extern template struct OperationsOn<std::uint64_t>;
extern template struct OperationsOn<double>;
extern template struct OperationsOn<std::string>;
extern template struct OperationsOn<std::filesystem::path>;
extern template struct OperationsOn<std::vector<std::string>>;

/// The options of a key by the type of its member.
template <class T>
struct OptionsOf {
    static_assert(is_member<T>,
                  "velmora: a key's member is a bool, an integer, a float, a double, a string, a "
                  "path, an enum with names_of, a duration, a vector, or an optional of these");
    using type = KeyOptions;
};
template <class T>
requires is_plain<T> &&(Number<T> || Duration<T>)struct OptionsOf<T> {
    using type = NumberOptions;
};
template <class T>
requires is_plain<T> && Text<T>
struct OptionsOf<T> {
    using type = TextOptions;
};
template <class T>
requires is_plain<std::vector<T>>
struct OptionsOf<std::vector<T>> : OptionsOf<T> {
};
template <class T>
requires is_plain<T>
struct OptionsOf<std::optional<T>> : OptionsOf<T> {
};

}  // namespace detail

}  // namespace velmora::app
