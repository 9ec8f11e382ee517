// Files that are replaced as a whole.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// The content of a regular file; nothing when there is no file. Throws std::system_error.
std::optional<std::string> read_file(const std::filesystem::path& path);

/// Makes `content` that of the file, which whoever reads it finds either old or new, even after a
/// crash. Links are followed; permissions and, as far as the user may set them, owner and group
/// stay. Throws std::system_error, and then has changed nothing.
void replace_file(std::filesystem::path path, std::string_view content);
