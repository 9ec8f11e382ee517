#include "file_values.hpp"

#include <algorithm>
#include <map>
#include <set>

#include <velmora/config/display.hpp>

using namespace velmora::config;

namespace {

Mapping mapping_in(const ConfigValue& value) {
    const auto* mapping = value.get_if<Mapping>();
    return mapping != nullptr ? *mapping : Mapping();
}

// A value and the keys that lead to it, as texts: unlike values, they compare alike where there is a
// NaN.
using Entry = std::vector<std::string>;

// Everything in the file but these keys.
std::vector<Entry> other_entries(const std::vector<Change>& changes, const ConfigValue& file) {
    std::map<std::string, std::set<std::string>> changed;
    for (const auto& [key, value] : changes)
        changed[display(key.section())].insert(display(key.name()));
    std::vector<Entry> entries;
    for (const auto& [name, section] : mapping_in(file)) {
        const std::string shown_name = display(name);
        const auto found = changed.find(shown_name);
        if (found == changed.end()) {
            entries.push_back({shown_name, display(section)});
            continue;
        }
        for (const auto& [key, value] : mapping_in(section)) {
            const std::string shown_key = display(key);
            if (!found->second.contains(shown_key))
                entries.push_back({shown_name, shown_key, display(value)});
        }
    }
    return entries;
}

}  // namespace

ConfigValue section_in(const ConfigValue& file, const std::string& section) {
    const ConfigValue* found = file.find(section);
    return found != nullptr ? *found : ConfigValue();
}

std::optional<ConfigValue> value_in(const ConfigValue& section, const velmora::app::Key& key) {
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
