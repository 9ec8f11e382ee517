#include "velmora/yaml/yaml.hpp"

#include <array>
#include <sstream>
#include <system_error>
#include <utility>

#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

#include "velmora/utils/read_file.hpp"
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

config::ConfigValue parse(const Source& source) {
    const Document document = find_document(source);
    Walk walk(source, document);
    Builder builder(source, walk);
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

}  // namespace

Error::Error(std::string_view file, std::size_t line, std::size_t column, std::string_view what)
    : ValueError(std::string(file)
                     .append(":" + std::to_string(line) + ":" + std::to_string(column) + ": ")
                     .append(what)),
      file_size_(file.size()),
      line_(line),
      column_(column) {}

Error::Error(std::string_view file, std::string_view what)
    : ValueError(std::string(file).append(": ").append(what)), file_size_(file.size()) {}

config::ConfigValue load(std::string_view text, std::string_view name) {
    return parse(source_of(text, name));
}

config::ConfigValue load_file(const std::filesystem::path& path) {
    // What is one byte too long, behind a byte order mark, is refused whatever follows.
    constexpr std::size_t enough = most_bytes + 4;
    const std::string name = path.string();
    std::string text;
    try {
        text = utils::read_file(name, enough);
    } catch (const std::system_error& error) {
        throw Error(name, "cannot be read: " + error.code().message());
    }
    return load(text, name);
}

}  // namespace velmora::yaml
