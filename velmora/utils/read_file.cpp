#include "velmora/utils/read_file.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace velmora::utils {

namespace {

[[noreturn]] void refuse() {
    throw std::system_error(errno, std::generic_category());
}

}  // namespace

std::string read_file(const std::string& path, std::size_t most) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               &std::fclose);
    if (!file) refuse();
    std::string text;
    std::array<char, 1U << 14U> part;
    while (const std::size_t size =
               std::fread(part.data(), 1, std::min(part.size(), most - text.size()), file.get())) {
        text.append(part.data(), size);
    }
    if (std::ferror(file.get()) != 0) refuse();
    return text;
}

}  // namespace velmora::utils
