// Gives a key of the example's configuration a value in a YAML text. The first line of the input
// is SECTION.KEY=VALUE, the rest is the text.
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <velmora/yaml/yaml.hpp>

#include "require.hpp"
#include "settings.hpp"
#include "yaml_edit.hpp"

using namespace velmora::config;

namespace {

void check_edit(const Key& key, const std::string& raw, const std::string& text) {
    try {
        const std::vector<Change> changes = {{key, key.coerce(raw)}};
        const ConfigValue old = velmora::yaml::load(text);
        const std::string edited = with_changes(text, old, changes);
        require(differ_by(changes, old, velmora::yaml::load(edited)), "something else has changed");
    } catch (const velmora::ValueError& error) {
        require_utf8(error.message());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<Section> sections = sections_of(settings());
    std::istringstream input(std::string(reinterpret_cast<const char*>(data), size));
    std::string label;
    std::string value;
    std::getline(std::getline(input, label, '='), value);
    const std::string text{std::istreambuf_iterator<char>(input), {}};
    for (const Section& section : sections) {
        for (const Key& key : section.keys()) {
            if (key.label() == label) check_edit(key, value, text);
        }
    }
    return 0;
}
