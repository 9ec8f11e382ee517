// The code of the README, compiled and run: its first and its fourth block stand at namespace scope, the others in
// functions, and the output that it shows for its files is compared with what happens.
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include <gmock/gmock.h>

#include "folder.hpp"
#include "readme_1.inc"
#include "readme_4.inc"
#include "velmora/app/live.hpp"

namespace {

// The block of this number, from 1, among those of a language in the README.
std::string block(const std::string& language, int number = 1) {
    std::ifstream file(VELMORA_README);
    std::stringstream readme;
    readme << file.rdbuf();
    const std::string text = readme.str();
    const std::string fence = "\n```" + language + "\n";
    std::size_t start = 0;
    while (number-- > 0) start = text.find(fence, start) + fence.size();
    return text.substr(start, text.find("```\n", start) - start);
}

void listen(const std::string&, std::uint16_t port) {
    EXPECT_EQ(port, 8080);
}

void load(const std::vector<std::string>& pairs) {
#include "readme_2.inc"
}

// An operator edits the file and has it reloaded, then ends the program.
int wait_for_signal() {
    static int signals = 0;
    if (signals++ > 0) return SIGTERM;
    std::ofstream("app.yaml") << block("yaml", 2);
    return SIGHUP;
}
void restart_workers() {}
void announce(const std::string&) {}

void live() {
#include "readme_3.inc"
}

void read() {
#include "readme_5.inc"
}

// What the program writes, warnings first, when this is its file.
template <class Program>
std::string output_for(const std::string& content, Program program) {
    std::ofstream("app.yaml") << content;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    program();
    const std::string warnings = testing::internal::GetCapturedStderr();
    return warnings + testing::internal::GetCapturedStdout();
}

TEST(Readme, ShowsWhatHappens) {
    const velmora::test::Folder folder;
    std::filesystem::current_path(folder.path(""));
    EXPECT_EQ(output_for(block("yaml"), [] { load({}); }), block("text"));
    EXPECT_THROW(load({"server.port=x"}), app::LoadError);
    EXPECT_THAT(output_for(block("yaml"), live), testing::EndsWith("\n" + block("text", 2)));
    EXPECT_EQ(output_for(block("yaml"), read), block("text", 3));
    const std::string defaults = "Server(host='127.0.0.1', port=8080, tags=['a', 'b'])\n";
    for (const char* content : {"", "# server:\n", "- server\n"})
        EXPECT_EQ(output_for(content, read), defaults) << content;
    std::filesystem::current_path("..");
}

}  // namespace
