#include "replace_file.hpp"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const fs::path& path, int error = errno) {
    throw std::system_error(error, std::generic_category(), path.string());
}

class Descriptor {
public:
    Descriptor(int descriptor, const fs::path& path) : descriptor_(descriptor) {
        if (descriptor == -1) fail(path);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { ::close(descriptor_); }

    int get() const noexcept { return descriptor_; }

private:
    int descriptor_;
};

// A file beside `path`, which it may take the place of.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& path)
        : name_(path.string() + ".XXXXXX"), file_(::mkstemp(name_.data()), name_) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!name_.empty()) ::unlink(name_.c_str());
    }

    void write(std::string_view content) {
        while (!content.empty()) {
            const ssize_t written = ::write(file_.get(), content.data(), content.size());
            if (written == -1 && errno != EINTR) fail(name_);
            if (written > 0) content.remove_prefix(static_cast<std::size_t>(written));
        }
        if (::fsync(file_.get()) == -1) fail(name_);
    }

    void take_permissions_of(const fs::path& path) {
        struct stat old = {};
        mode_t mode = 0;
        if (::stat(path.c_str(), &old) == 0) {
            mode = old.st_mode & 0777U;
            // A user may give a file to a group of theirs, root to anyone.
            const bool group_kept = ::fchown(file_.get(), old.st_uid, old.st_gid) == 0 ||
                                    ::fchown(file_.get(), static_cast<uid_t>(-1), old.st_gid) == 0;
            if (!group_kept) mode &= ~static_cast<mode_t>(S_IRWXG);
        } else {
            const mode_t mask = ::umask(0);
            ::umask(mask);
            mode = 0666U & ~mask;
        }
        if (::fchmod(file_.get(), mode) == -1) fail(name_);
    }

    void rename_to(const fs::path& path) {
        if (::rename(name_.c_str(), path.c_str()) == -1) fail(path);
        name_.clear();
    }

private:
    std::string name_;
    Descriptor file_;
};

}  // namespace

std::optional<std::string> read_file(const fs::path& path) {
    const fs::file_status status = fs::status(path);
    if (!fs::exists(status)) return std::nullopt;
    if (!fs::is_regular_file(status)) fail(path, is_directory(status) ? EISDIR : EINVAL);
    std::ifstream file(path, std::ios::binary);
    if (!file) fail(path);
    std::string content(std::istreambuf_iterator<char>(file), {});
    if (file.bad()) fail(path);
    return content;
}

void replace_file(fs::path path, std::string_view content) {
    while (fs::is_symlink(path)) path = path.parent_path() / fs::read_symlink(path);
    const fs::path directory = path.has_parent_path() ? path.parent_path() : ".";
    TemporaryFile file(path);
    file.take_permissions_of(path);
    file.write(content);
    const Descriptor folder(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC),
                            directory);
    file.rename_to(path);
    ::fsync(folder.get());
}
