// Whole files as texts, and folders. Calls that a signal interrupts are made again.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "velmora/utils/export.hpp"

namespace velmora::utils {

/// Why a file or a folder is not read: "Permission denied", or what else makes it unfit.
class VELMORA_EXPORT FileError : public std::runtime_error {
public:
    enum class Kind {
        missing,    ///< There is nothing of this name.
        no_file,    ///< A folder, a pipe, a socket or a device where a file is to be read.
        no_folder,  ///< Something else where a folder is to be read.
        other,
    };

    FileError(Kind kind, const std::string& why) : std::runtime_error(why), kind_(kind) {}

    Kind kind() const noexcept { return kind_; }

private:
    Kind kind_;
};

/// The content of a file of any kind, or its first `most` bytes when it has more; that of a pipe is
/// waited for. Throws FileError.
VELMORA_EXPORT std::string read_file(const std::string& path, std::size_t most = std::string::npos);

/// The content of a regular file; nothing is waited for, and /dev/null is an empty file. Throws
/// FileError, also for a file of more than `most` bytes, of which hardly more are read.
VELMORA_EXPORT std::string read_regular_file(const std::string& path, std::size_t most);

/// The path of what has this name in a folder.
VELMORA_EXPORT std::string path_in(const std::string& folder, const std::string& name);

/// A folder that is open: whatever comes to stand in its place, this one is read.
class VELMORA_EXPORT OpenFolder {
public:
    /// Throws FileError.
    explicit OpenFolder(const std::string& path);
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;
    ~OpenFolder();

    /// What is in it and is not hidden, in the order of the bytes. Throws FileError.
    std::vector<std::string> names() const;
    /// As `read_regular_file`.
    std::string read(const std::string& name, std::size_t most) const;

private:
    int descriptor_;
};

}  // namespace velmora::utils
