// The one document of a YAML text: where it begins and ends, and what its directives say.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "velmora/yaml/source.hpp"

namespace velmora::yaml {

struct Document {
    std::string_view text;       ///< The source up to the end of the document.
    std::size_t directives = 0;  ///< How much of it is directives and what stands between them.
    std::size_t start = 0;       ///< Where its nodes may begin, behind "---" if that is there.
    std::map<std::string_view, std::string_view> tag_prefixes = {};  ///< By "!", "!!" or "!name!".
};

/// Throws Error when there is more than one document, or something is wrong with a directive.
Document find_document(const Source& source);

}  // namespace velmora::yaml
