// What holds for a key and why, and what a change from one load to another takes.
//
//     std::cout << text_of(explain(now, "server.port"));
//
//     server.port = 9090
//       Port that the server listens on. An int, at least 1 and at most 65535.
//       from     $WEBD_PORT
//       hides    8080  /etc/webd.yaml:3:9
//       default  8000
//       a change takes a restart of the daemon
//
// Values are in their display form, which texts cut where it is long; secret ones are not shown.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/app/values.hpp"
#include "velmora/config/declaration.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::app {

/// A value that is not in effect, and where it stands, which for a default is nowhere.
struct OtherValue {
    std::string value;
    std::string place;
    /// Why it is refused; empty for one that is hidden.
    std::string refusal = {};
};

struct Explanation {
    std::string label;
    std::string value;
    std::string doc;
    /// What the key takes: "an int, at least 1 and at most 65535".
    std::string accepted;
    /// Where the value in effect stood when it was read; empty for the default.
    std::string place;
    /// What a reload has found and a restart puts into effect.
    std::optional<OtherValue> pending = std::nullopt;
    /// The strongest first; where something is pending, those beside it.
    std::vector<OtherValue> hidden = {};
    std::vector<OtherValue> refused = {};
    std::string default_value;
    config::Restart restart = config::Restart::none;
};

/// Throws ConfigKeyError when there is no key with this label.
VELMORA_EXPORT Explanation explain(const Values& values, std::string_view label);
/// Of all keys, in the order of declaration.
VELMORA_EXPORT std::vector<Explanation> explain(const Values& values);

/// Several lines, for a person at a terminal.
VELMORA_EXPORT std::string text_of(const Explanation& explanation);

/// A key, or a raw section, whose value differs.
struct Change {
    std::string label;
    std::string before;
    std::string after;
    config::Restart restart = config::Restart::none;
};

struct Plan {
    /// In the order of declaration, raw sections last.
    std::vector<Change> changes = {};
    /// The most that any of them takes.
    config::Restart restart = config::Restart::none;

    VELMORA_EXPORT void add(Change change);
};

/// What it takes to go from one load to another. Both must be of one declaration; throws ValueError
/// when they are not.
VELMORA_EXPORT Plan plan(const Values& before, const Values& after);

/// What waits for a restart since the last reload.
VELMORA_EXPORT Plan pending(const Values& now);

/// A line for each change; "Nothing changes." for none.
VELMORA_EXPORT std::string text_of(const Plan& plan);

}  // namespace velmora::app
