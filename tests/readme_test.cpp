// The code of the README, compiled and run: its first block stands at namespace scope, its second
// in a function, and the file and the output that it shows are compared with what happens.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include <gtest/gtest.h>

#include "readme_1.inc"
#include "velmora/utils/logging.hpp"
#include "velmora/yaml/yaml.hpp"

namespace {

// The first block of this language in the README.
std::string block(const std::string& language) {
    std::ifstream file(VELMORA_README);
    std::stringstream readme;
    readme << file.rdbuf();
    const std::string text = readme.str();
    const std::string fence = "\n```" + language + "\n";
    const std::size_t start = text.find(fence) + fence.size();
    return text.substr(start, text.find("```\n", start) - start);
}

void listen(const std::string&, std::uint16_t port) {
    EXPECT_EQ(port, 8080);
}

// What the program writes, warnings first, when this is its file.
std::string output_for(const std::string& content) {
    std::ofstream("app.yaml") << content;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
#include "readme_2.inc"
    const std::string warnings = testing::internal::GetCapturedStderr();
    return warnings + testing::internal::GetCapturedStdout();
}

TEST(Readme, ShowsWhatHappens) {
    std::filesystem::current_path(testing::TempDir());
    EXPECT_EQ(output_for(block("yaml")), block("text"));
    const std::string defaults = "Server(host='127.0.0.1', port=8080, tags=['a', 'b'])\n";
    for (const char* content : {"", "# server:\n", "- server\n"}) EXPECT_EQ(output_for(content), defaults) << content;
}

}  // namespace
