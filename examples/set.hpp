// The command that changes keys in the configuration file.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

/// Gives keys of the file, which need not exist, the values of "SECTION.KEY=VALUE" pairs, keeps
/// everything else in it, and prints what must restart. All or nothing: throws Refused, with a line
/// for everything that is wrong, when a pair is wrong, two are for one key, or the file does not
/// allow a change; std::system_error when it cannot be read or written.
void set(std::ostream& out, const std::vector<std::string>& pairs,
         const std::filesystem::path& path);
