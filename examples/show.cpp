#include "show.hpp"

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <velmora/config/spec.hpp>
#include <velmora/utils/logging.hpp>
#include <velmora/utils/nearest_name.hpp>
#include <velmora/utils/texts.hpp>
#include <velmora/yaml/yaml.hpp>

#include "file_values.hpp"
#include "settings.hpp"

using namespace velmora::config;
using velmora::utils::did_you_mean;
using velmora::utils::is_one_of;
using velmora::utils::names_of;

namespace {

velmora::utils::Logger& log() {
    return velmora::utils::logger("webd");
}

void warn_of_unknown_keys(const Section& section, const Mapping& data) {
    const std::vector<std::string_view> known = names_of(section.keys());
    for (const auto& [key, value] : data) {
        const std::string name = plain_text(key);
        if (is_one_of(name, known)) continue;
        log().warning("Ignoring %s.%s in the config file: there is no such key%s", section.name(),
                      name, did_you_mean(name, known));
    }
}

void warn_of_unknown_names(const std::vector<Section>& sections, const ConfigValue& file) {
    const auto* mapping = file.get_if<Mapping>();
    if (mapping == nullptr) {
        if (!file.is_null()) log().warning("Ignoring the config file: it is not a mapping");
        return;
    }
    const std::vector<std::string_view> known = names_of(sections);
    for (const auto& [key, value] : *mapping) {
        const std::string name = plain_text(key);
        const auto found = std::find(known.begin(), known.end(), name);
        if (found == known.end()) {
            log().warning("Ignoring %s in the config file: there is no such section%s", name,
                          did_you_mean(name, known));
        } else if (const auto* data = value.get_if<Mapping>()) {
            warn_of_unknown_keys(sections[static_cast<std::size_t>(found - known.begin())], *data);
        }
    }
}

struct Effective {
    ConfigValue value;
    std::string_view origin;
};

Effective effective(const Key& key, const Effective& below) {
    const std::optional<std::string>& variable = key.setting().env();
    const char* const text = variable ? std::getenv(variable->c_str()) : nullptr;
    if (text == nullptr) return below;
    try {
        return {key.coerce(text), "environment"};
    } catch (const ConfigKeyError& error) {
        log().warning("Ignoring the environment variable %s for %s: %s; keeping %r", *variable,
                      key.label(), error, below.value);
        return below;
    }
}

}  // namespace

void show(std::ostream& out, const std::optional<std::filesystem::path>& file) {
    const std::vector<Section> sections = sections_of(settings());
    const ConfigValue data = file ? velmora::yaml::load_file(*file) : ConfigValue();
    warn_of_unknown_names(sections, data);
    std::size_t width = 0;
    for (const Section& section : sections) {
        for (const Key& key : section.keys()) width = std::max(width, key.label().size());
    }
    for (const Section& section : sections) {
        const ConfigValue in_file = section_in(data, section.name());
        const Record record = section.read(in_file);
        for (const Key& key : section.keys()) {
            const bool given = value_in(in_file, key).has_value();
            const auto [value, origin] =
                effective(key, {record.get<ConfigValue>(key.name()), given ? "file" : "default"});
            out << std::left << std::setw(static_cast<int>(width)) << key.label() << "  "
                << std::setw(11) << origin << "  " << value << '\n';
        }
    }
}
