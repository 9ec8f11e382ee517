#include "set.hpp"

#include <algorithm>
#include <optional>
#include <ostream>
#include <string_view>

#include <velmora/config/spec.hpp>
#include <velmora/utils/nearest_name.hpp>
#include <velmora/utils/quoting.hpp>
#include <velmora/yaml/yaml.hpp>

#include "file_values.hpp"
#include "locked_file.hpp"
#include "refuse.hpp"
#include "settings.hpp"
#include "yaml_edit.hpp"

using namespace velmora::config;
using velmora::utils::did_you_mean;
using velmora::utils::names_of;
using velmora::utils::shown_text;

namespace {

template <class Named>
const Named& named(const std::vector<Named>& all, std::string_view name, std::string_view kind) {
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Named& each) { return each.name() == name; });
    if (found != all.end()) return *found;
    refuse("There is no " + std::string(kind) + ' ' + shown_text(name) +
           did_you_mean(name, names_of(all)));
}

Change change_of(const std::vector<Section>& sections, std::string_view pair) {
    const std::size_t equals = pair.find('=');
    const std::string_view label = pair.substr(0, equals);
    const std::size_t dot = label.find('.');
    if (equals == std::string_view::npos || dot == std::string_view::npos)
        refuse("Expected SECTION.KEY=VALUE, got " + shown_text(pair));
    const Section& section = named(sections, label.substr(0, dot), "section");
    const Key& key = named(section.keys(), label.substr(dot + 1), "key of " + section.name());
    return {key, key.coerce(pair.substr(equals + 1))};
}

std::vector<Change> changes_of(const std::vector<std::string>& pairs) {
    const std::vector<Section>& sections = schema().declaration().sections();
    std::vector<Change> changes;
    refuse_together(pairs, [&](const std::string& pair) {
        const Change& change = changes.emplace_back(change_of(sections, pair));
        const auto is_other = [&](const Change& other) { return other.key != change.key; };
        if (!std::all_of(changes.begin(), changes.end() - 1, is_other))
            refuse(change.key.label() + " is given twice");
    });
    return changes;
}

ConfigValue load(const std::string& text, const std::filesystem::path& path) {
    try {
        return velmora::yaml::load(text, path.string());
    } catch (const velmora::yaml::Error& error) {
        refuse(error.message());
    }
}

}  // namespace

void set(std::ostream& out, const std::vector<std::string>& pairs,
         const std::filesystem::path& path) {
    std::vector<Change> changes = changes_of(pairs);
    const LockedFile file(path);
    const std::string text = file.read();
    const ConfigValue data = load(text, path);
    const auto given = [&](const Key& key) {
        return value_in(section_in(data, key.section()), key);
    };
    std::optional<Restart> restart;
    for (const auto& [key, value] : changes) {
        if (given(key).value_or(key.default_value()) != value)
            restart = std::max(restart.value_or(Restart::none), key.restart());
    }
    std::erase_if(changes, [&](const Change& each) { return given(each.key) == each.value; });
    if (!changes.empty()) file.replace(with_changes(text, data, changes));
    if (!restart) {
        out << "No value has changed.\n";
    } else if (*restart == Restart::none) {
        out << "The changes apply without a restart.\n";
    } else {
        out << "Restart for the changes to apply: " << *restart << '\n';
    }
}
