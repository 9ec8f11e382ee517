// Turning a raw value into a value of one kind, or refusing it with a message that speaks of the
// value alone.
#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "velmora/config/kind.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

/// A flag. Numbers are false at zero and true otherwise, NaN included; texts are read by
/// `utils::parse_bool`, whose errors pass. Throws ValueError for everything else.
VELMORA_EXPORT ConfigValue _coerce_bool(const ConfigValue& value);

/// A finite number of `kind`, which is int (an integer of any size below 2^1024 - 2^970 in
/// magnitude) or float (a double). Doubles are cut toward zero for int, integers rounded to the
/// nearest double for float.
///
/// Texts hold ASCII digits in base ten, single underscores between two digits allowed, with a sign
/// before and white space (Unicode White_Space) around: for int nothing else, for float also a
/// point, an exponent, or one of inf, infinity and nan, which are then refused. They are read in
/// linear time.
///
/// Throws ValueError for a flag, a text that does not read so and a number that is not finite,
/// TypeError for null, a list or a mapping, and OverflowError for an integer of 2^1024 - 2^970 or
/// more.
VELMORA_EXPORT ConfigValue _coerce_number(const ConfigValue& value, KeyKind kind);

/// A text: the plain text form of every value but null, for which it throws ValueError.
VELMORA_EXPORT ConfigValue _coerce_text(const ConfigValue& value);

/// A new list of texts: the plain text forms of a list's items, or what `utils::split_csv` makes of
/// a text. Throws ValueError for everything else.
VELMORA_EXPORT ConfigValue _coerce_list(const ConfigValue& value);

using Coercer = ConfigValue (*)(const ConfigValue& value);

/// The coercer of each kind, in the order of the kinds.
inline constexpr std::array<std::pair<KeyKind, Coercer>, 5> _COERCERS = {{
    {KeyKind::bool_, _coerce_bool},
    {KeyKind::int_, [](const ConfigValue& value) { return _coerce_number(value, KeyKind::int_); }},
    {KeyKind::float_,
     [](const ConfigValue& value) { return _coerce_number(value, KeyKind::float_); }},
    {KeyKind::str, _coerce_text},
    {KeyKind::list, _coerce_list},
}};

/// The entry of `_COERCERS` for `kind`. Throws std::out_of_range when there is none.
inline Coercer coercer_of(KeyKind kind) {
    const auto place = static_cast<std::size_t>(kind);
    if (place >= _COERCERS.size()) throw std::out_of_range("a key of a kind that has no coercer");
    return _COERCERS[place].second;
}

}  // namespace velmora::config
