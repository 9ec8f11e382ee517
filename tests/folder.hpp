// A folder of its own for a test.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::test {

class Folder {
public:
    Folder() : path_(std::filesystem::path(testing::TempDir()) / ("app" + std::to_string(getpid()))) {
        std::filesystem::create_directories(path_);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(path_); }

    void write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name) << content;
    }
    void remove(const std::string& name) const { std::filesystem::remove_all(path_ / name); }
    std::string path(const std::string& name) const { return path_ / name; }

    /// A text without the path of the folder.
    std::string local(std::string text) const {
        for (std::size_t at = 0; (at = text.find(path(""))) != std::string::npos;) text.erase(at, path("").size());
        return text;
    }

private:
    std::filesystem::path path_;
};

}  // namespace velmora::test
