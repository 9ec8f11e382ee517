#include "velmora/yaml/parse.hpp"

#include <array>
#include <sstream>
#include <utility>

#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

#include "velmora/yaml/advice.hpp"
#include "velmora/yaml/builder.hpp"
#include "velmora/yaml/parser_text.hpp"

namespace velmora::yaml {

namespace {

// What to do about an error of yaml-cpp.
std::string_view advice_on(std::string_view message) {
    namespace Their = YAML::ErrorMsg;
    using Advice = std::pair<std::string_view, std::string_view>;
    const std::array<Advice, 19> all = {{
        {Their::END_OF_MAP,
         "this is no 'key: value' of the mapping above: mend it, its indentation, or the quotes "
         "before it"},
        {Their::END_OF_SEQ,
         "this is no '- item' of the list above: mend it, its indentation, or the quotes before "
         "it"},
        {Their::END_OF_MAP_FLOW, advice::flow_end},
        {Their::END_OF_SEQ_FLOW, advice::flow_end},
        {Their::FLOW_END, "this bracket closes none: remove it, or quote the text"},
        {Their::BLOCK_ENTRY, advice::item},
        {Their::MAP_KEY, advice::key},
        {Their::MAP_VALUE, advice::value},
        {Their::TAB_IN_INDENTATION, advice::tab},
        {Their::EOF_IN_SCALAR, advice::quote},
        {Their::CHAR_IN_BLOCK, advice::block_header},
        {Their::ZERO_INDENT_IN_BLOCK, advice::block_header},
        {Their::MULTIPLE_ANCHORS, advice::two_properties},
        {Their::MULTIPLE_TAGS, advice::two_properties},
        {Their::UNKNOWN_ANCHOR, advice::unknown_anchor},
        {Their::ANCHOR_NOT_FOUND, advice::name},
        {Their::ALIAS_NOT_FOUND, advice::name},
        {Their::TAG_WITH_NO_SUFFIX, advice::name},
        {Their::CHAR_IN_TAG_HANDLE, advice::name},
    }};
    for (const auto& [theirs, ours] : all) {
        if (message == theirs) return ours;
    }
    return advice::unclear;
}

}  // namespace

config::ConfigValue parse(const Source& source, Places* places) {
    const Document document = find_document(source);
    Walk walk(source, document);
    Builder builder(source, walk, places);
    try {
        std::istringstream in(parser_text(document));
        YAML::Parser(in).HandleNextDocument(builder);
    } catch (const YAML::Exception& error) {
        const auto offset = static_cast<std::size_t>(error.mark.pos);
        source.refuse(source_offset(document, offset), advice_on(error.msg));
    }
    walk.finish();
    return builder.take_value();
}

}  // namespace velmora::yaml
