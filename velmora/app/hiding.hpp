// What of a source may be a secret, although it stands where none belongs. Private.
#pragma once

#include <cstddef>
#include <string_view>

#include "velmora/app/declaration_data.hpp"
#include "velmora/app/document.hpp"
#include "velmora/config/value.hpp"

namespace velmora::app {

/// The beginning of `text` that can be a name or a label.
std::string_view name_in(std::string_view text);

/// Hides the values of secret keys with the rest of their lines, and what a slip of the finger may
/// have made of them: values of unknown names, lists and mappings where keys take none.
void hide_secrets(const Declaration::Data& declaration, Document& document);

/// How many bytes may be shown of what stands for an unknown name in a section, or at the top: of a
/// text as many as are a name, if there is a ":" behind it or a known name in it.
std::size_t open_part(const Declaration::Data& declaration, const yaml::LocatedValue& document,
                      std::size_t section, yaml::Span name, const config::ConfigValue& value);

/// Whether a secret may be in what is given for a key that is none itself.
bool may_hold_secret(const config::ConfigValue& value);

/// Whether a line, counted from 1, of a text that cannot be read may be shown: whether it is in a
/// section without secrets.
bool may_show_line(const Declaration::Data& declaration, std::string_view text, std::size_t number);

}  // namespace velmora::app
