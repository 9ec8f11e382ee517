#include "locked_file.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void refuse(const fs::path& path, int error = errno) {
    throw std::system_error(error, std::generic_category(), path.string());
}

fs::path behind_links(fs::path path) {
    const fs::file_status status = fs::status(path);  // Throws for links in a circle.
    if (fs::exists(status) && !fs::is_regular_file(status))
        refuse(path, fs::is_directory(status) ? EISDIR : EINVAL);
    while (fs::is_symlink(path)) path = path.parent_path() / fs::read_symlink(path);
    return path;
}

// Signals wait as long as this lives, so that one that ends the program leaves no file behind.
class SignalsHeld {
public:
    SignalsHeld() noexcept {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_ = {};
};

// A file that takes the place of another one in its folder, or goes. Under the lock one name will
// do for all of them: what a crash leaves behind is replaced by the next.
class Replacement {
public:
    Replacement(const fs::path& path, const Descriptor& folder, mode_t mode)
        : path_(path),
          folder_(folder.get()),
          name_("." + path.filename().string() + ".webd-config"),
          file_(made(mode)) {
        if (!file_.is_open()) refuse(path_);
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement() { remove(); }

    void take_permissions_of(const struct stat& old) {
        // A user may give a file to a group of theirs, root to anyone.
        const bool group_kept = ::fchown(file_.get(), old.st_uid, old.st_gid) == 0 ||
                                ::fchown(file_.get(), static_cast<uid_t>(-1), old.st_gid) == 0;
        const mode_t mode = old.st_mode & (group_kept ? 0777U : 0707U);
        if (::fchmod(file_.get(), mode) == -1) refuse(path_);
    }

    void write(std::string_view content) {
        while (!content.empty()) {
            const ssize_t written = ::write(file_.get(), content.data(), content.size());
            if (written == -1) refuse(path_);
            content.remove_prefix(static_cast<std::size_t>(written));
        }
        if (::fsync(file_.get()) == -1) refuse(path_);
    }

    void take_its_place() {
        if (::renameat(folder_, name_.c_str(), folder_, path_.filename().c_str()) == -1)
            refuse(path_);
        ::fsync(folder_);
    }

private:
    void remove() const noexcept { ::unlinkat(folder_, name_.c_str(), 0); }

    int made(mode_t mode) const noexcept {
        remove();
        return ::openat(folder_, name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    }

    const fs::path& path_;
    int folder_;
    std::string name_;
    Descriptor file_;
};

}  // namespace

// The lock is on the folder: unlike the file it is there from the start and stays the same, and a
// file made for the lock alone would have to go again.
LockedFile::LockedFile(const fs::path& path)
    : path_(behind_links(path)),
      name_(path_.filename().string()),
      folder_(::open((path_.parent_path() / ".").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!folder_.is_open() || ::flock(folder_.get(), LOCK_EX) == -1) refuse(path_);
}

std::string LockedFile::read() const {
    const Descriptor file(::openat(folder_.get(), name_.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.is_open() && errno == ENOENT) return {};
    if (!file.is_open()) refuse(path_);
    std::string content;
    std::array<char, 1U << 16U> part;
    while (const ssize_t size = ::read(file.get(), part.data(), part.size())) {
        if (size == -1) refuse(path_);
        content.append(part.data(), static_cast<std::size_t>(size));
    }
    return content;
}

void LockedFile::replace(std::string_view content) const {
    struct stat old = {};
    const bool exists = ::fstatat(folder_.get(), name_.c_str(), &old, 0) == 0;
    // The folder alone would allow it.
    if (exists && ::faccessat(folder_.get(), name_.c_str(), W_OK, AT_EACCESS) == -1) refuse(path_);
    const SignalsHeld held;
    Replacement file(path_, folder_, exists ? 0600 : 0666);
    if (exists) file.take_permissions_of(old);
    file.write(content);
    file.take_its_place();
}
