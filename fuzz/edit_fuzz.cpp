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

// A copy of a mapping, for which null stands if it is empty, with one entry more or changed.
Mapping with_entry(const ConfigValue& mapping, const std::string& key, const ConfigValue& value) {
    Mapping changed = mapping.is_null() ? Mapping() : mapping.get<Mapping>().copy();
    changed.set(key, value);
    return changed;
}

void check_edit(const velmora::app::Key& key, const std::string& raw, const std::string& text) {
    ConfigValue value;
    ConfigValue old;
    std::string edited;
    try {
        value = key.coerce(raw);
        old = velmora::yaml::load(text);
        edited = with_changes(text, old, {{key, value}});
    } catch (const velmora::ValueError& error) {
        return require_utf8(error.message());
    }
    const Mapping section = with_entry(section_in(old, key.section()), key.name(), value);
    const ConfigValue expected = with_entry(old, key.section(), section);
    // A NaN differs from itself.
    require(velmora::yaml::load(edited) == expected ||
                display(expected).find("nan") != std::string::npos,
            "another value than the key's has changed");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream input(std::string(reinterpret_cast<const char*>(data), size));
    std::string label;
    std::string value;
    std::getline(std::getline(input, label, '='), value);
    const std::string text{std::istreambuf_iterator<char>(input), {}};
    for (const velmora::app::Section& section : schema().declaration().sections()) {
        for (const velmora::app::Key& key : section.keys()) {
            if (key.label() == label) check_edit(key, value, text);
        }
    }
    return 0;
}
