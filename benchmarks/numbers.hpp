// Numbers and the texts that spell them: twenty of each, read or shown in turn.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "value.hpp"

namespace bench {

using Integers = std::vector<std::int64_t>;
using Reals = std::vector<double>;

/// Of 1 to 18 digits, and their texts, a tenth of which have blanks around or underscores within.
const Integers& integers();
const Texts& integer_texts();
/// The same texts without blanks and underscores, for those who read nothing else.
const Texts& bare_integer_texts();

/// Of 2 to 17 digits, few as a rule, none of them whole nor so large or small as to be written with
/// an exponent.
const Reals& reals();
const Texts& real_texts();

/// Integers from 1 to 65535.
const Integers& ports();

/// One of four names each.
const Texts& level_names();

/// The number that `parse(text, number)` reads.
template <class Number, class Parse>
Number parse_with(Parse parse, const std::string& text) {
    Number number{};
    if (!parse(text, number)) throw std::invalid_argument(text);
    return number;
}

}  // namespace bench
