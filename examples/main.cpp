// Shows and changes the configuration of a small web daemon.
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <velmora/utils/errors.hpp>

#include "refuse.hpp"
#include "set.hpp"
#include "show.hpp"
#include "template.hpp"

namespace {

constexpr int failed = 1;
constexpr int refused = 2;

int run(int argc, char** argv) {
    CLI::App app("Shows and changes the configuration of webd.", "webd-config");
    app.require_subcommand(1);

    std::optional<std::filesystem::path> shown_file;
    CLI::App* const show_command =
        app.add_subcommand("show", "Print every key, where its value comes from and its value.");
    show_command->add_option("--file", shown_file, "YAML file to read.");

    std::vector<std::string> pairs;
    std::filesystem::path changed_file;
    CLI::App* const set_command =
        app.add_subcommand("set", "Change keys in a file and say what must restart.");
    set_command->add_option("pairs", pairs, "SECTION.KEY=VALUE...")->required();
    set_command->add_option("--file", changed_file, "YAML file to change.")->required();

    CLI::App* const template_command =
        app.add_subcommand("template", "Print a file of all keys at their defaults.");

    try {
        app.parse(argc, argv);
        if (*show_command) show(std::cout, shown_file);
        if (*set_command) set(std::cout, pairs, changed_file);
        if (*template_command) print_template(std::cout);
    } catch (const CLI::ParseError& error) {
        if (app.exit(error) != 0) return refused;
    }
    if (!std::cout.flush()) throw std::runtime_error("standard output cannot be written to");
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const Refused& error) {
        std::cerr << error.message() << '\n';
        return refused;
    } catch (const std::exception& error) {
        std::cerr << velmora::message_of(error) << '\n';
        return failed;
    }
}
