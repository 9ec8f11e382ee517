// Guessing what a misspelt name was meant to be.
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// "; did you mean 'port'?" for the known name that `name` is nearest to, nothing when none is near
/// enough for it to be a slip of the finger.
std::string did_you_mean(std::string_view name, const std::vector<std::string>& known);

/// The names of sections or keys.
template <class Named>
std::vector<std::string> names_of(const std::vector<Named>& all) {
    std::vector<std::string> names;
    names.reserve(all.size());
    for (const Named& each : all) names.push_back(each.name());
    return names;
}
