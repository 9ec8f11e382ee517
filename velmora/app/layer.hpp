// Where the values of keys come from, as layers of which each goes over those before it:
//
//     const std::vector<Layer> layers = {file("/etc/webd.yaml"), directory("/etc/webd.d"),
//                                        environment({.prefix = "WEBD_"}), sets(pairs)};
//
// Layers say where to look; files are read by each load anew. For each key the strongest value that
// is accepted holds. One that is refused is a fault, and so is a name that nothing is known by;
// what becomes of faults is said for each layer:
//
//     warn    they are reported, and weaker values hold in their place
//     refuse  they are errors: nothing is loaded
//
// What texts and YAML mean to keys, docs/layers.md tells.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velmora/config/required.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/utils/not_null.hpp"

namespace velmora::app {

enum class OnFault { warn, refuse };

namespace detail {
class Source;
}

/// A source of values, as the functions below make it. Copies are one source.
class Layer {
public:
    explicit Layer(std::shared_ptr<const detail::Source> source) : source_(std::move(source)) {}

    const detail::Source& source() const noexcept { return *source_; }

private:
    utils::NotNull<detail::Source> source_;
};

struct ValuesOptions {
    OnFault on_fault = OnFault::warn;
};

/// The most bytes of a file, where nothing else is said.
inline constexpr std::size_t most_file_bytes = std::size_t{64} << 20U;

struct FileOptions {
    /// Whether the file may be missing, which then is as good as an empty one.
    bool optional = false;
    /// The most bytes that it may have.
    std::size_t most_bytes = most_file_bytes;
    OnFault on_fault = OnFault::warn;
};

struct DirectoryOptions {
    /// Whether the directory may be missing, which then is as good as an empty one.
    bool optional = true;
    /// The most bytes that each of its files may have.
    std::size_t most_bytes = most_file_bytes;
    OnFault on_fault = OnFault::warn;
};

struct EnvironmentOptions {
    /// What the variables of those keys begin with that name none: "WEBD_" makes WEBD_SERVER_PORT
    /// the variable of server.port, and a "-" in a name an "_". None have a variable when it is
    /// empty.
    std::string prefix = {};
    /// Whether an empty variable is an empty text, rather than not given; and so of the files that
    /// variables of secret keys name.
    bool empty_counts = false;
    OnFault on_fault = OnFault::warn;
    /// The variables to use in place of those of the process.
    std::optional<std::map<std::string, std::string>> variables = std::nullopt;
};

struct CredentialsOptions {
    /// The folder; that which $CREDENTIALS_DIRECTORY names when it is empty. No folder, no values.
    std::string directory = {};
    OnFault on_fault = OnFault::warn;
};

struct SetsOptions {
    /// What messages call the source.
    std::string name = "the command line";
    OnFault on_fault = OnFault::refuse;
};

/// A mapping of sections, which messages call `name`. Null is an empty one. Nobody may change it
/// afterwards: what is in effect shares it.
VELMORA_EXPORT Layer values(config::ConfigValue value, std::string name,
                            ValuesOptions options = {});

/// What a YAML text holds, which messages call `name`.
VELMORA_EXPORT Layer text(std::string yaml, std::string name, ValuesOptions options = {});

/// A YAML file. One that cannot be read or is no YAML is an error always, and so is a pipe, a socket
/// or a device, none of which are waited for; /dev/null is an empty file.
VELMORA_EXPORT Layer file(std::string path, FileOptions options = {});

/// The files of a directory whose names end in ".yaml", the later in the order of the bytes of their
/// names over the earlier. Hidden ones are left out, links are followed; a name in ".yml" is advised
/// of.
VELMORA_EXPORT Layer directory(std::string path, DirectoryOptions options = {});

/// Environment variables, as they are when this is called.
VELMORA_EXPORT Layer environment(EnvironmentOptions options = {});

/// Files that are named after keys, "server.token", each with a value as its content, but for one
/// line end at its end; where systemd puts credentials. An empty file is as good as none. Files that
/// are named otherwise are not looked at; a name that is nearly a key's is advised of.
VELMORA_EXPORT Layer credentials(CredentialsOptions options = {});

/// Texts like "server.port=80", as a command line gives them; the later over the earlier.
VELMORA_EXPORT Layer sets(std::vector<std::string> pairs, SetsOptions options = {});

}  // namespace velmora::app
