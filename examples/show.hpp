// The command that shows the configuration in effect.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>

/// Prints every key, where its value comes from and its value: the default, that of the file, or
/// that of the environment variable, which goes over both. What is wrong in the file or the
/// environment is warned of and has no effect. Throws velmora::yaml::Error when the file cannot be
/// read or is no YAML.
void show(std::ostream& out, const std::optional<std::filesystem::path>& file);
