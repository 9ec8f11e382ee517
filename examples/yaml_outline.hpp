// Where the parts of a YAML text stand in it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct YamlNode {
    enum class Kind { null, scalar, alias, list, mapping };

    Kind kind = Kind::null;
    /// The offset of its first byte, or of its anchor or tag; of no meaning for a null.
    std::size_t start = 0;
    /// Of a list or a mapping: whether it stands in brackets.
    bool flow = false;
    /// Of a scalar: its content, free of quotes and escapes.
    std::string text = {};
    /// Of a list: its items. Of a mapping: keys and values in turns.
    std::vector<YamlNode> children = {};
};

/// The root of the text's document, null when there is none. The text is one that
/// `velmora::yaml::load` accepts, without a byte order mark. Throws ValueError where yaml-cpp does
/// not accept it: a carriage return alone ends no line there.
YamlNode outline_of(const std::string& text);
