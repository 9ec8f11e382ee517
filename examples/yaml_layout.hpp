// Where the parts of a YAML text end, and how its lines are laid out.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "yaml_outline.hpp"

/// Bytes of a text, from the first to before the second.
using Range = std::pair<std::size_t, std::size_t>;

/// What the outline of a text does not tell. Where something has no end that can be told, functions
/// throw Refused, which says why.
class YamlLayout {
public:
    /// The text, which must outlive the object, is that of the nodes that it is asked about.
    explicit YamlLayout(const std::string& text) : text_(text) {}

    /// The end of a list or of a scalar that does not stand in lines of its own.
    std::size_t end_of(const YamlNode& node) const;

    /// The null that is the value of `key`, which may stand in brackets; empty where it is written
    /// as nothing.
    Range null_behind(const YamlNode& key, bool flow) const;

    /// Where the last line of a mapping ends that is neither empty nor a comment; `limit` is the
    /// start of the line that follows the mapping.
    std::size_t end_of_content(const YamlNode& mapping, std::size_t limit) const;

    /// Where the document ends: at a line of "...", or with the text.
    std::size_t end_of_document(const YamlNode& root) const;

    /// Whether a text of lines of its own is the last thing in a mapping.
    bool ends_in_block_scalar(const YamlNode& mapping) const;

    /// Whether there is nothing but comments and the marks of a document.
    bool is_empty_until(std::size_t end) const;

    std::size_t line_start(std::size_t at) const;
    /// The start of the line behind that of `at`, or the end of the text.
    std::size_t next_line(std::size_t at) const;
    /// The end of a line: that of the text's first one.
    std::string newline() const;

    /// The white space that puts a line under the node.
    std::string indentation_of(const YamlNode& node) const;
    /// The space that a value at `at` needs in front of it.
    std::string gap_behind_colon(std::size_t at) const;
    /// Whether nothing but white space stands before the node in its line.
    bool begins_line(const YamlNode& node) const;

private:
    std::size_t end_of_scalar(const YamlNode& scalar) const;
    std::size_t end_of_quoted(std::size_t start) const;
    std::size_t end_of_block_scalar(std::size_t start, std::size_t indentation) const;
    std::size_t end_of_list(const YamlNode& list) const;
    std::size_t start_of_last_value(const YamlNode& mapping) const;
    std::size_t end_of_last_value(const YamlNode& mapping) const;
    std::size_t end_of_content(std::size_t limit, std::size_t content) const;

    const std::string& text_;
};
