// The example program as the shell starts it, in a folder of its own.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

inline std::string content_of(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline auto entries_of(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), {});
}

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

class CommandLine : public testing::Test {
protected:
    void SetUp() override {
        std::string name = testing::TempDir() + "webd-XXXXXX";
        folder = ::mkdtemp(name.data());
        fs::create_directory(folder / "work");
        fs::current_path(folder / "work");
        ::setenv("webd", WEBD, 1);
    }
    void TearDown() override { fs::remove_all(folder); }

    static Outcome run(const std::string& command) {
        const int status = std::system(("{ " + command + "; } >../out 2>../err").c_str());
        return {WEXITSTATUS(status), content_of("../out"), content_of("../err")};
    }
    static Outcome set(const std::string& before, const std::string& pairs) {
        write(before);
        return run("$webd set --file f.yaml " + pairs);
    }
    static void write(const std::string& text) { std::ofstream("f.yaml", std::ios::binary) << text; }
    static std::string content() { return content_of("f.yaml"); }

    fs::path folder;
};
