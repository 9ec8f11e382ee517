// Prints every key that the configuration declares.
#include <iostream>

#include "settings.hpp"

using namespace velmora::config;

int main() {
    for (const Section& section : sections_of(settings())) {
        std::cout << section.name() << ": " << section.setting().doc() << '\n';
        for (const Key& key : section.keys()) {
            std::cout << "  " << key.label() << " (" << key.kind() << ", default "
                      << key.default_value() << ", restarts " << key.restart()
                      << "): " << key.setting().doc() << '\n';
        }
    }
}
