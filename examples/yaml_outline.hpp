// Where the parts of a YAML text stand in it.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

struct YamlNode {
    enum class Kind { null, scalar, alias, list, mapping };

    Kind kind = Kind::null;
    /// The offset of its first byte, or of its anchor or tag; of no meaning for a null.
    std::size_t start = 0;
    /// A number for its anchor, or, of an alias, for the anchor that it repeats; else 0.
    std::size_t anchor = 0;
    /// Of a list or a mapping: whether it stands in brackets.
    bool flow = false;
    /// Of a scalar: its content, free of quotes and escapes.
    std::string text = {};
    /// Of a list: its items. Of a mapping: keys and values in turns.
    std::vector<YamlNode> children = {};
};

struct YamlOutline {
    /// Null when there is no document.
    YamlNode root = {};
    /// The anchors that aliases repeat.
    std::unordered_set<std::size_t> repeated = {};
    /// The content of the scalars that have anchors.
    std::unordered_map<std::size_t, std::string> anchored = {};
};

/// The outline of a text that `velmora::yaml::load` accepts, without a byte order mark. Throws
/// Refused where yaml-cpp does not accept it, or takes it otherwise.
YamlOutline outline_of(const std::string& text);
