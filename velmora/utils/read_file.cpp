#include "velmora/utils/read_file.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::utils {

namespace {

using Kind = FileError::Kind;

[[noreturn]] void refuse_as_no_file() {
    throw FileError(Kind::no_file, "it is a pipe, a socket or a device: write a file in its place");
}

[[noreturn]] void refuse(int error) {
    if (error == ENOMEM) throw std::bad_alloc();
    if (error == ENXIO) refuse_as_no_file();  // So is a socket.
    Kind kind = Kind::other;
    if (error == ENOENT) kind = Kind::missing;
    if (error == EISDIR) kind = Kind::no_file;
    if (error == ENOTDIR) kind = Kind::no_folder;
    throw FileError(kind, std::generic_category().message(error));
}

// What a system call returns, made until no signal interrupts it.
template <class Call>
auto result_of(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    if (result < 0) refuse(errno);
    return result;
}

class OpenFile {
public:
    OpenFile(int folder, const std::string& path, int flags)
        : descriptor_(result_of([&] {
              return ::openat(folder, path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | flags);
          })) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }

    int descriptor() const noexcept { return descriptor_; }
    /// Leaves it to the caller to close it.
    int release() noexcept { return std::exchange(descriptor_, -1); }

    struct stat status() const {
        struct stat status = {};
        result_of([&] { return ::fstat(descriptor_, &status); });
        return status;
    }

    /// Appends some bytes; returns whether there were any.
    bool append_to(std::string& text) const {
        std::array<char, 1U << 16U> part;
        const auto size = result_of([&] { return ::read(descriptor_, part.data(), part.size()); });
        text.append(part.data(), static_cast<std::size_t>(size));
        return size != 0;
    }

private:
    int descriptor_;
};

bool is_null_device(const struct stat& status) {
    struct stat null = {};
    return S_ISCHR(status.st_mode) && ::stat("/dev/null", &null) == 0 &&
           null.st_rdev == status.st_rdev;
}

std::string read_regular(int folder, const std::string& path, std::size_t most) {
    const OpenFile file(folder, path, O_NONBLOCK);
    const struct stat status = file.status();
    if (S_ISDIR(status.st_mode)) refuse(EISDIR);
    if (is_null_device(status)) return "";
    if (!S_ISREG(status.st_mode)) refuse_as_no_file();
    // The size is no more than a hint: files grow, and those of /proc have none.
    std::string text;
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size <= most) {
        text.reserve(size);
        while (text.size() <= most && file.append_to(text)) {
        }
    }
    if (std::max(size, text.size()) > most)
        throw FileError(Kind::other, "it has more than " + std::to_string(most) + " bytes");
    return text;
}

struct CloseStream {
    void operator()(DIR* stream) const noexcept { ::closedir(stream); }
};

}  // namespace

std::string read_file(const std::string& path, std::size_t most) {
    const OpenFile file(AT_FDCWD, path, 0);
    std::string text;
    while (text.size() < most && file.append_to(text)) {
    }
    if (text.size() > most) text.resize(most);
    return text;
}

std::string read_regular_file(const std::string& path, std::size_t most) {
    return read_regular(AT_FDCWD, path, most);
}

std::string path_in(const std::string& folder, const std::string& name) {
    return folder + (folder.ends_with('/') ? "" : "/") + name;
}

OpenFolder::OpenFolder(const std::string& path)
    : descriptor_(OpenFile(AT_FDCWD, path, O_DIRECTORY).release()) {}

OpenFolder::~OpenFolder() {
    ::close(descriptor_);
}

std::vector<std::string> OpenFolder::names() const {
    // Opened once more, as reading moves on in it.
    OpenFile again(descriptor_, ".", O_DIRECTORY);
    const std::unique_ptr<DIR, CloseStream> stream(::fdopendir(again.descriptor()));
    if (stream == nullptr) refuse(errno);
    again.release();
    std::vector<std::string> names;
    for (;;) {
        errno = 0;
        const dirent* const entry = ::readdir(stream.get());
        if (entry != nullptr) {
            if (*entry->d_name != '.') names.emplace_back(entry->d_name);
        } else if (errno == 0) {
            break;
        } else if (errno != EINTR) {
            refuse(errno);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string OpenFolder::read(const std::string& name, std::size_t most) const {
    return read_regular(descriptor_, name, most);
}

}  // namespace velmora::utils
