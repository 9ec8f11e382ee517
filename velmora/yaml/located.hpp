// YAML texts as values that know where their parts stand, for messages about what is in them.
//
//     const yaml::LocatedValue file = yaml::load_located(text, "app.yaml");
//     const Mapping server = file.value().get<Mapping>();
//     const Mapping::Entry& port = *server.find_entry("port");
//     const auto [line, column] = file.position(file.value_span(server, port).offset);
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::yaml {

/// A part of a text, in bytes. `size` is 0 where the part is not known to end on the line that it
/// begins on.
struct Span {
    std::size_t offset = 0;
    std::size_t size = 0;
};

/// A place as messages give it: both are counted from 1, the column in characters.
struct Position {
    std::size_t line = 0;
    std::size_t column = 0;
};

/// The value of a YAML text, and where its parts stand in it. Copies share all of it; once moved
/// from, it may only be assigned to or destroyed. Any number of threads may ask it.
///
/// Offsets are into the text as it is read: without a byte order mark, each line ending in "\n".
///
/// A span is of what is written for a part, without its anchor and its tag:
/// - a scalar with its quotes; one of several lines, of which block scalars begin at their "|" or
///   ">", has size 0;
/// - an alias with its star, wherever the value is that it stands for;
/// - a list in brackets or a mapping in braces with these, with size 0 if it takes several lines;
/// - any other list from its first "-" on, any other mapping from its first key or "?" on, what
///   stands before that key included; with size 0;
/// - null that is not written where it would be: right behind its ":" or "-", or what else is
///   before it; with size 0.
///
/// Lists and mappings are known by their identity, so places are given only for those in the value
/// itself, not for copies, and only as long as nobody changes them. Asking about another one, an
/// entry that is not in its mapping, or an item or an offset beyond the end throws
/// std::out_of_range.
class VELMORA_EXPORT LocatedValue {
public:
    const config::ConfigValue& value() const noexcept;
    /// Of the file or the text.
    const std::string& name() const noexcept;

    /// The text as it is read, in which offsets count. Valid as long as this or a copy.
    std::string_view text() const noexcept;

    /// The whole value; {} for an empty document.
    Span root() const;
    /// `entry` is one of `in`, a mapping in the value.
    Span key_span(const config::Mapping& in, const config::Mapping::Entry& entry) const;
    Span value_span(const config::Mapping& in, const config::Mapping::Entry& entry) const;
    Span item_span(const config::List& in, std::size_t index) const;

    /// A flag or a number as it is written ("1.20", "0640"), by an alias too, if that is without
    /// quotes and tag; empty for everything else. Valid as long as this or a copy.
    std::string_view spelling(const config::Mapping& in, const config::Mapping::Entry& entry) const;
    std::string_view spelling(const config::List& in, std::size_t index) const;

    /// Takes constant time, whatever the text and its lines are.
    Position position(std::size_t offset) const;
    /// The line that this place is on, without its end. Valid as long as this or a copy.
    std::string_view line_at(std::size_t offset) const;

private:
    friend VELMORA_EXPORT LocatedValue load_located(std::string_view text, std::string_view name);
    struct Data;

    explicit LocatedValue(std::shared_ptr<const Data> data) noexcept;

    std::shared_ptr<const Data> data_;
};

/// What `load` gives, for a few percent more time. Throws Error as that does.
VELMORA_EXPORT LocatedValue load_located(std::string_view text, std::string_view name = "<text>");

}  // namespace velmora::yaml
