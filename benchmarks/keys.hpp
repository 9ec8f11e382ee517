// The 20 keys of a section, as facts that every contender declares in its own way.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "value.hpp"
#include "velmora/config/spec.hpp"

namespace bench {

/// What is known of one key.
struct KeyFacts {
    std::string name;
    velmora::config::KeyKind kind;
    /// For a key of lists, a list of texts.
    Value fallback;
    std::string doc;
    std::string env;
    std::optional<std::pair<double, double>> range = std::nullopt;
    Texts choices = {};
};

/// The keys, in the order of the members of `Service`.
const std::vector<KeyFacts>& service_keys();

/// What the library makes of a section of these keys: declared, and resolved as well.
velmora::config::RecordType record_type(const std::string& name, const std::vector<KeyFacts>& keys);
velmora::config::Section resolved_section(const std::vector<KeyFacts>& keys);

}  // namespace bench
