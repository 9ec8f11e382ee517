// What is wrong with the values that a program was given, and where.
//
//     for (const Fault& fault : now.faults()) std::cerr << fault;
//
//     /etc/webd.yaml:3:9: Ignoring server.port in the config file: Invalid value for server.port:
//     70000. It must be at least 1 and at most 65535; keeping the default 8080
//         3 |   port: 70000
//           |         ^~~~~
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "velmora/utils/export.hpp"

namespace velmora::app {

enum class FaultKind {
    refused_value,       ///< A value that its key does not take.
    section_no_mapping,  ///< A section that is something else than keys and their values.
    unknown_name,        ///< What is no section, no key, or no SECTION.KEY=VALUE at all.
    old_name,            ///< A key that is given by a name that it had before. Advice always.
    unusable_source,     ///< A file that is missing, cannot be read, is no YAML or has no sections,
                         ///< or what a reload finds empty.
    altered_value,       ///< A number that its key takes as another one. Advice always.
    doubtful_text,       ///< A text between quotes that are part of it. Advice always.
    unread_name,  ///< What is not read, though its name is nearly one that is. Advice always.
    ambiguous_variable,  ///< A variable that, by its prefix, would stand for two keys.
    missing_value,       ///< A required key for which there is no value.
    failed_check,        ///< Values that do not go together.
    of_application,      ///< What an application finds in a section that it reads itself.
};

enum class Severity {
    advice,   ///< The value holds, and something about it is worth knowing.
    warning,  ///< The value does not hold; others do in its place.
    error,    ///< Nothing is loaded.
};

/// The part of a line that a fault is about, ready for a terminal: no character in it is a control
/// character, and a long line is cut.
class VELMORA_EXPORT Excerpt {
public:
    /// `offset` and `size` count bytes; a size of 0 marks one place alone.
    Excerpt(std::string_view line, std::size_t offset, std::size_t size);

    const std::string& line() const noexcept { return line_; }
    /// "^~~~~", behind as many spaces as put it under its part of the line.
    const std::string& marker() const noexcept { return marker_; }

private:
    std::string line_;
    std::string marker_;
};

struct Fault {
    FaultKind kind;
    Severity severity;
    /// The label of the key, "server.port", or what is there instead of one: the name of a section,
    /// a name that is unknown. Empty where a source as a whole is meant.
    std::string key;
    /// As messages name it: "/etc/webd.yaml", "$WEBD_PORT". Empty for what no source gives.
    std::string source;
    /// Both count from 1, the column in characters; 0 for what stands in no file.
    std::size_t line = 0;
    std::size_t column = 0;
    /// What is wrong and, for a refused value, what holds instead. One line, as safe for a terminal
    /// as the names in a declaration are.
    std::string message = {};
    /// What else helps, such as the unit of a key; may be empty.
    std::string note = {};
    std::optional<Excerpt> excerpt = std::nullopt;
};

/// The fault on one line: its place if it has one, "error: " or "advice: " if it is one, the message,
/// and the note in parentheses.
VELMORA_EXPORT std::string one_line(const Fault& fault);

/// The fault as compilers print it: its line, the excerpt with a mark under what it is about, and
/// the note. Ends in a line end.
VELMORA_EXPORT std::string text_of(const Fault& fault);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const Fault& fault);

/// Whether the component itself would warn of it.
VELMORA_EXPORT bool is_of_component(const Fault& fault) noexcept;

/// Logs the fault on one line, advice as info, behind its place if that is wanted: what the component
/// itself would warn of to velmora.config.spec, everything else to velmora.app.
VELMORA_EXPORT void log_fault(const Fault& fault, bool with_place = true);

}  // namespace velmora::app
