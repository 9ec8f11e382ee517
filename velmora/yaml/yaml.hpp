// YAML files as values.
//
//     ConfigValue config = yaml::load_file("/etc/server.yaml");
//
// A file is UTF-8, with or without a byte order mark, and holds at most one document. Scalars are
// read by the core schema of YAML 1.2:
//
//     null     null Null NULL ~ and nothing at all
//     flags    true True TRUE false False FALSE
//     integers 42 -7 +7 007 (seven), 0o17, 0xff, of any size; those in base 8 or 16 have at most
//              4,096 digits
//     floats   1.5 .5 5. -1e-3, .inf -.Inf +.INF, .nan .NaN .NAN; beyond the range of a double they
//              are infinite or zero
//     texts    every other plain scalar ("yes", "1_000", "<<"), and every quoted one
//
// The tags !!null, !!bool, !!int, !!float, !!str, !!seq and !!map are obeyed, on quoted scalars
// too; any other tag is refused, because nothing here knows what it does to a value. An alias
// shares the list or mapping of its anchor, which may contain itself that way, but not within a
// key.
//
// Refused with an error are, beside what is no YAML: a key twice in one mapping (1, 1.0 and 0x1 are
// one key), lists and mappings more than 400 levels deep, control characters, 2 GiB of text or
// more, and, because they would take quadratic time, more than some thousand lists or mappings that
// contain themselves or are keys alike in size and first items.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "velmora/config/value.hpp"
#include "velmora/utils/errors.hpp"

namespace velmora::yaml {

/// Says "FILE:LINE:COLUMN: what is wrong there", both counted from 1 and the column in characters,
/// or "FILE: cannot be read: REASON".
class Error : public ValueError {
public:
    using ValueError::ValueError;
};

/// The value of a YAML text, null for an empty one. Throws Error, in which the text goes by `name`.
config::ConfigValue load(std::string_view text, std::string_view name = "<text>");

/// The value of a YAML file, likewise.
config::ConfigValue load_file(const std::filesystem::path& path);

}  // namespace velmora::yaml
