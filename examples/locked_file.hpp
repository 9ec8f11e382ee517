// A file that is changed by one program at a time, and as a whole.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "descriptor.hpp"

/// A regular file, which need not exist yet. As long as an object of it lives, other programs wait
/// for theirs of the same folder.
class LockedFile {
public:
    /// Follows links. Throws std::system_error.
    explicit LockedFile(const std::filesystem::path& path);

    /// The content, empty when there is no file. Throws std::system_error.
    std::string read() const;

    /// Makes `content` that of the file, which whoever reads it finds either old or new, even after
    /// a crash. Permissions and, as far as the user may set them, owner and group stay. Throws
    /// std::system_error, for a file that the user may not write as well, and then has changed
    /// nothing.
    void replace(std::string_view content) const;

private:
    std::filesystem::path path_;
    std::string name_;
    Descriptor folder_;
};
