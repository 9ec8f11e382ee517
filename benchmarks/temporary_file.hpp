#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace bench {

/// A file that is there as long as the program runs.
class TemporaryFile {
public:
    TemporaryFile(const std::string& name, const std::string& content)
        : path_(std::filesystem::temp_directory_path() /
                (name + "-" + std::to_string(std::random_device()()) + ".yaml")) {
        std::ofstream(path_, std::ios::binary) << content;
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { std::filesystem::remove(path_); }

    const std::string& path() const { return path_.native(); }

private:
    std::filesystem::path path_;
};

}  // namespace bench
