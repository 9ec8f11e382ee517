// webd, a small web daemon: runs it, and shows, checks and changes its configuration.
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <velmora/app/layer.hpp>
#include <velmora/app/live.hpp>
#include <velmora/utils/errors.hpp>

#include "refuse.hpp"
#include "server.hpp"
#include "set.hpp"
#include "settings.hpp"
#include "show.hpp"
#include "template.hpp"

namespace app = velmora::app;

namespace {

constexpr int failed = 1;
constexpr int refused = 2;

void print(const app::Fault& fault) {
    std::cerr << fault;
}

// Where the values of a command come from, besides the environment.
struct Sources {
    std::optional<std::string> file;
    std::vector<std::string> sets;
};

std::vector<app::Layer> layers_of(const Sources& sources) {
    std::vector<app::Layer> layers;
    if (sources.file) {
        layers = {app::file(*sources.file)};
    } else {
        layers = {app::file("/etc/webd.yaml", {.optional = true}), app::directory("/etc/webd.d")};
    }
    layers.push_back(app::environment({.prefix = "WEBD_"}));
    layers.push_back(app::credentials());
    layers.push_back(app::sets(sources.sets));
    return layers;
}

// A command that does something with what is loaded.
CLI::App& add_command(CLI::App& program, const char* name, const char* doc, Sources& sources,
                      const std::function<void(app::Live<Config>&)>& act) {
    CLI::App* const command = program.add_subcommand(name, doc);
    command->add_option("--file", sources.file,
                        "YAML file to read instead of /etc/webd.yaml and /etc/webd.d/*.yaml.");
    command->add_option("--set", sources.sets, "SECTION.KEY=VALUE, over all other values.")
        ->allow_extra_args(false);
    command->callback([&sources, act] {
        app::Live<Config> live(schema(), layers_of(sources), {.report = print});
        act(live);
    });
    return *command;
}

int run(int argc, char** argv) {
    CLI::App program("A small web daemon.", "webd");
    program.require_subcommand(1);
    int status = 0;

    Sources sources;
    add_command(program, "run", "Answer requests until SIGTERM or SIGINT; reload on SIGHUP.",
                sources, serve);
    add_command(program, "show", "Print every key, its value and where that comes from.", sources,
                [](const app::Live<Config>& live) { show(std::cout, live.now()); });
    std::vector<std::string> labels;
    add_command(program, "explain", "Print what holds for keys, and why.", sources,
                [&](const app::Live<Config>& live) { explain(std::cout, live.now(), labels); })
        .add_option("keys", labels, "SECTION.KEY..., or all of them.");
    add_command(program, "check", "Say what is wrong; fail if anything is.", sources,
                [&status](const app::Live<Config>& live) {
                    const app::Snapshot<Config> now = live.now();
                    for (const app::Fault& fault : now.faults()) {
                        if (fault.severity != app::Severity::advice) status = failed;
                    }
                });

    std::vector<std::string> pairs;
    std::filesystem::path changed_file;
    CLI::App* const set_command =
        program.add_subcommand("set", "Change keys in a file and say what must restart.");
    set_command->add_option("pairs", pairs, "SECTION.KEY=VALUE...")->required();
    set_command->add_option("--file", changed_file, "YAML file to change.")->required();
    set_command->callback([&] { set(std::cout, pairs, changed_file); });
    program.add_subcommand("template", "Print a file of all keys at their defaults.")->callback([] {
        print_template(std::cout);
    });

    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (program.exit(error) != 0) return refused;
    }
    if (!std::cout.flush()) throw std::runtime_error("standard output cannot be written to");
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const app::LoadError& error) {
        for (const app::Fault& fault : error.faults()) print(fault);
        return failed;
    } catch (const Refused& error) {
        std::cerr << error.message() << '\n';
        return refused;
    } catch (const std::exception& error) {
        std::cerr << velmora::message_of(error) << '\n';
        return failed;
    }
}
