// Guessing what a misspelt name was meant to be.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velmora/utils/export.hpp"

namespace velmora::utils {

/// The known name that `name` is nearest to (optimal string alignment, in bytes), empty when none is
/// near enough for it to be a slip of the finger. A view of what `known` views.
VELMORA_EXPORT std::string_view nearest_name(std::string_view name,
                                             const std::vector<std::string_view>& known);

/// "; did you mean 'port'?" for the nearest name, nothing when there is none.
VELMORA_EXPORT std::string did_you_mean(std::string_view name,
                                        const std::vector<std::string_view>& known);

/// The names of a range of things that have one: sections, keys or fields.
template <class Named>
std::vector<std::string_view> names_of(const Named& all) {
    std::vector<std::string_view> names;
    names.reserve(all.size());
    for (const auto& each : all) names.push_back(each.name());
    return names;
}

}  // namespace velmora::utils
