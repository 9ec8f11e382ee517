// Where entries can be added to a YAML text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <velmora/utils/texts.hpp>

#include "yaml_layout.hpp"
#include "yaml_outline.hpp"
#include "yaml_value.hpp"

/// Entries that are added to a mapping, and what goes around them.
struct Addition {
    /// What they replace: nothing, but for a null.
    Range range = {};
    std::string before = {};
    std::string between = {};
    std::string after = {};
    Quotes quotes = Quotes::where_needed;
    std::vector<std::string> entries = {};

    std::string text() const { return before + velmora::utils::joined(entries, between) + after; }
};

/// Each function tells how entries are added to one mapping, in the style of its neighbours. Throws
/// Refused where there is no room for any.
class YamlPlaces {
public:
    /// Of a text and its root, a mapping or null, which must outlive the object.
    YamlPlaces(const std::string& text, const YamlNode& root)
        : text_(text), root_(root), layout_(text) {}

    /// Of sections.
    Addition in_root() const;
    /// Of keys in the section whose name is the root's child number `name`.
    Addition in_section(std::size_t name) const;
    /// Of keys in a section that is itself added to the root; there is no range to it.
    Addition in_new_section(const std::string& name) const;

    Quotes quotes_in(const YamlNode& mapping) const;

private:
    Addition in_null(const YamlNode& name) const;
    Addition in_brackets(const YamlNode& mapping) const;
    Addition lines_of(const YamlNode& mapping, std::size_t at) const;
    Addition lines_at(std::size_t at, const std::string& indentation) const;

    const std::string& text_;
    const YamlNode& root_;
    YamlLayout layout_;
};
