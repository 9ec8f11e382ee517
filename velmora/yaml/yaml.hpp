// YAML files as values.
//
//     ConfigValue config = yaml::load_file("/etc/server.yaml");
//
// Where the parts of a value stand in its text, located.hpp tells.
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
// Whatever is read has the value that YAML 1.2 gives it; all else is refused, with the place and what
// to do. One thing is taken although the standard forbids it, because everybody writes it: the
// bracket that closes a list or a mapping may stand in the column of the key before it.
//
// Refused are, beside what is no YAML:
// - a second document;
// - a key twice in one mapping (1, 1.0 and 0x1 are one key);
// - lists and mappings more than 400 levels deep;
// - control characters below U+0020 other than the tab and line ends; outside of quotes also U+007F
//   to U+009F but for U+0085, U+FEFF, U+FFFE and U+FFFF;
// - escapes for surrogates ("\ud83d"), and an indentation indicator ("|2") at the top level, which
//   readers understand in two ways;
// - aliases that stand for more than a million values in all, those within values and what these
//   grow to where they contain themselves included; 64 bytes of text count as one more;
// - because they would take quadratic time, more than some thousand lists or mappings that contain
//   themselves or are keys alike in size and first items;
// - 2 GiB of text or more;
// - a few rare forms that yaml-cpp, on which this is built, does not understand: a key in braces
//   whose ":" is on another line, an empty key behind an empty value, and in a list a plain text of
//   several lines behind an anchor or a tag.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "velmora/config/value.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::yaml {

/// Says "FILE:LINE:COLUMN: what is wrong there", or "FILE: cannot be read: REASON". Valid UTF-8, if
/// the name of the file is.
class VELMORA_EXPORT Error : public ValueError {
public:
    Error(std::string_view file, std::size_t line, std::size_t column, std::string_view what);
    Error(std::string_view file, std::string_view what);

    /// The name of the file or the text; valid as long as this error or a copy of it.
    std::string_view file() const noexcept {
        return std::string_view(message()).substr(0, file_size_);
    }
    /// What is wrong there, without the place; valid as `file` is.
    std::string_view reason() const noexcept {
        return std::string_view(message()).substr(reason_offset_);
    }
    /// Both are counted from 1, the column in characters; 0 when the file cannot be read.
    std::size_t line() const noexcept { return line_; }
    std::size_t column() const noexcept { return column_; }

private:
    std::size_t file_size_;
    std::size_t reason_offset_;
    std::size_t line_ = 0;
    std::size_t column_ = 0;
};

/// The value of a YAML text, null for an empty one. Throws Error, in which the text goes by `name`.
VELMORA_EXPORT config::ConfigValue load(std::string_view text, std::string_view name = "<text>");

/// The value of a YAML file, likewise.
VELMORA_EXPORT config::ConfigValue load_file(const std::filesystem::path& path);

}  // namespace velmora::yaml
