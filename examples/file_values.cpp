#include "file_values.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include <velmora/config/display.hpp>

using namespace velmora::config;

namespace {

Mapping mapping_in(const ConfigValue& value) {
    const auto* mapping = value.get_if<Mapping>();
    return mapping != nullptr ? *mapping : Mapping();
}

// Everything in the file but these keys, as texts: unlike values, they compare alike where there is
// a NaN.
std::vector<std::string> other_entries(const std::vector<Change>& changes,
                                       const ConfigValue& file) {
    std::set<std::string> sections;
    std::set<std::pair<std::string, std::string>> keys;
    for (const auto& [key, value] : changes) {
        sections.insert(display(key.section()));
        keys.emplace(display(key.section()), display(key.name()));
    }
    std::vector<std::string> entries;
    for (const auto& [name, section] : mapping_in(file)) {
        const std::string shown_name = display(name);
        if (!sections.contains(shown_name)) {
            entries.push_back(shown_name + ": " + display(section));
            continue;
        }
        for (const auto& [key, value] : mapping_in(section)) {
            const std::string shown_key = display(key);
            if (!keys.contains({shown_name, shown_key}))
                entries.push_back(shown_name + '.' + shown_key + ": " + display(value));
        }
    }
    return entries;
}

}  // namespace

ConfigValue section_in(const ConfigValue& file, const std::string& section) {
    const ConfigValue* found = file.find(section);
    return found != nullptr ? *found : ConfigValue();
}

std::optional<ConfigValue> value_in(const ConfigValue& section, const Key& key) {
    const ConfigValue* found = section.find(key.name());
    if (found == nullptr) return std::nullopt;
    try {
        return key.coerce(*found);
    } catch (const ConfigKeyError&) {
        return std::nullopt;
    }
}

bool differ_by(const std::vector<Change>& changes, const ConfigValue& before,
               const ConfigValue& after) {
    const bool all_made = std::all_of(changes.begin(), changes.end(), [&](const Change& change) {
        const ConfigValue section = section_in(after, change.key.section());
        const ConfigValue* const made = section.find(change.key.name());
        return made != nullptr && *made == change.value;
    });
    return all_made && other_entries(changes, before) == other_entries(changes, after);
}
