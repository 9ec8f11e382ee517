#include <iostream>

#include <velmora/config/display.hpp>
#include <velmora/yaml/yaml.hpp>

int main() {
    std::cout << velmora::yaml::load("server: {port: 0x1F90}") << '\n';
}
