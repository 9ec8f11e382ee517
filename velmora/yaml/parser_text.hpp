// What yaml-cpp is given to read of a document.
#pragma once

#include <cstddef>
#include <string>

#include "velmora/yaml/document.hpp"

namespace velmora::yaml {

/// A text in which yaml-cpp finds the same nodes as in the document, in the same columns. Since
/// only that is wanted of it, words are cut to their first letters and what it would stumble over
/// inside of scalars is replaced, which takes it half the time.
std::string parser_text(const Document& document);

/// Where in the document a place in its parser text is.
std::size_t source_offset(const Document& document, std::size_t parser_offset);

}  // namespace velmora::yaml
