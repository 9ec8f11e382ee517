#include <iostream>

#include <velmora/config/spec.hpp>

using namespace velmora::config;

int main() {
    const RecordType server("Server", {{"port", int_type, setting(8080, "Port to listen on.")}});
    const RecordType config("Config",
                            {{"server", server, section(server, "The server.", {.restart = Restart::worker})}});
    for (const Section& section : sections_of(config)) std::cout << section.keys().front().label() << '\n';
}
