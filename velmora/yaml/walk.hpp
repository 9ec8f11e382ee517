// The nodes of a document, checked and read where they stand in the source.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/yaml/document.hpp"
#include "velmora/yaml/located.hpp"
#include "velmora/yaml/scalars.hpp"

namespace velmora::yaml {

/// What stands before the content of a node.
struct Properties {
    std::size_t offset = 0;  ///< Of the node.
    Span content = {};       ///< As LocatedValue gives it; of a list or a mapping only its offset.
    std::string_view anchor = {};
    std::string tag = {};  ///< Empty for none, "!", or in full.
};

/// A scalar or an alias.
struct Leaf : Properties {
    std::string_view alias = {};  ///< Empty for a scalar.
    bool plain = true;
    std::string text = {};
};

/// What a parser says of a list or a mapping that begins.
struct Opening {
    std::size_t mark;  ///< Where it is.
    bool block;        ///< Whether it is known by its lines, not by brackets or braces.
    bool bare;         ///< Whether it has neither an anchor nor a tag.
};

/// Walks through a document, led by the events of a parser. Of these it takes only which kind of
/// node comes next and where lists and mappings end. It reads each node itself and throws Error
/// where YAML 1.2 does not allow such a node, so that no misreading of the parser leads to a wrong
/// value.
class Walk {
public:
    /// Both must outlive the walk.
    Walk(const Source& source, const Document& document);

    /// The next node, of which the parser says that it is at `mark`.
    Leaf leaf(std::size_t mark);
    Properties open_list(const Opening& opening);
    Properties open_mapping(const Opening& opening);
    /// Ends the innermost list or mapping, and returns the size of its span.
    std::size_t close();
    /// Ends the document.
    void finish();

private:
    enum class Kind { block_list, block_mapping, flow_list, flow_mapping, pair };

    struct Level {
        Kind kind;
        int column;  // Of a block's entries; what lines inside of brackets are indented beyond.
        std::size_t begin = 0;
        std::size_t mark = 0;
        bool undecided = false;  // Whether it is a pair or a mapping in braces, by its first key.
        bool first = true;
        bool at_value = false;
        bool explicit_key = false;
        std::size_t key = 0;  // Where the key begins.
    };

    // Where the next node may be, and in which forms.
    struct Slot : Place {
        bool compact = false;         // Whether a block may begin on the line of its indicator.
        bool list_outdented = false;  // Whether a list may be in the column of its mapping.
        bool absent = false;          // Whether the ":" before it is missing, which makes it null.
        bool filled = false;          // Whether nothing at all would be a fault.
    };

    bool begins_line_at(int column) const;
    bool at_sign(char sign) const;
    bool at_flow_value() const;
    void skip_space();
    void skip_flow_space(int column);

    [[noreturn]] void refuse_here() const;
    [[noreturn]] void refuse_in_flow() const;

    Slot enter(std::size_t mark);
    void enter_block_entry(Level& level, Slot& slot);
    void enter_block_value(Level& level, Slot& slot);
    void enter_flow_entry(Level& level, Slot& slot);
    void enter_flow_value(Level& level, Slot& slot);
    void check_key(const Level& level) const;

    bool is_empty(const Slot& slot) const;
    std::size_t size_from(std::size_t begin) const;
    void approach(const Slot& slot);
    void pass_quoted(std::size_t start);
    void check_unquoted(std::size_t end) const;
    bool at_property() const;
    std::string_view read_name();
    std::string read_tag();
    void read_property(Properties& properties, bool flow);
    void read_properties(Properties& properties, const Slot& slot);
    void read_properties_above(Properties& properties, const Slot& slot);
    Properties open_block(Kind kind, const Slot& slot);
    Properties open_flow(Kind kind, const Slot& slot);

    Cursor at_;
    const Document& document_;
    std::vector<Level> levels_;
    bool quoted_ = false;          // Whether the last node ends in a quote or a bracket.
    std::size_t quoted_only_ = 0;  // How many of Source::quoted_only are behind the walk.
};

}  // namespace velmora::yaml
