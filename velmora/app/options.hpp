// What may be said of keys that are members of structs, given by name; which of these depends on the
// type of the member. Included by schema.hpp.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/config/bound.hpp"
#include "velmora/config/declaration.hpp"

namespace velmora::app {

/// What may be said of every key, given by name.
struct KeyOptions {
    /// The environment variable of the key.
    std::optional<std::string_view> env = std::nullopt;
    /// What must restart for a change to apply; empty for what the section says.
    std::optional<config::Restart> restart = std::nullopt;
    /// As `KeyTraits`.
    bool secret = false;
    std::vector<std::string> formerly = {};
};

/// What may be said of numbers and durations.
struct NumberOptions {
    std::optional<std::string_view> env = std::nullopt;
    /// The numbers that are accepted, of a duration its counts. An end that is not given or infinite
    /// is that of the member's type; one beyond it is a mistake in the declaration.
    std::optional<config::Bound> bounds = std::nullopt;
    std::optional<config::Restart> restart = std::nullopt;
    bool secret = false;
    std::vector<std::string> formerly = {};
};

/// What may be said of texts and paths.
struct TextOptions {
    std::optional<std::string_view> env = std::nullopt;
    /// The texts that are accepted; empty for every one.
    std::vector<std::string> choices = {};
    std::optional<config::Restart> restart = std::nullopt;
    bool secret = false;
    std::vector<std::string> formerly = {};
};

}  // namespace velmora::app
