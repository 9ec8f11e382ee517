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
#include "replace_file.hpp"
#include "settings.hpp"
#include "yaml_edit.hpp"

using namespace velmora::config;
using velmora::utils::did_you_mean;
using velmora::utils::names_of;
using velmora::utils::shown_text;

namespace {

struct Change {
    Key key;
    ConfigValue value;
};

template <class Named>
const Named& named(const std::vector<Named>& all, std::string_view name, std::string_view kind) {
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Named& each) { return each.name() == name; });
    if (found != all.end()) return *found;
    throw Refused("There is no " + std::string(kind) + ' ' + shown_text(name) +
                  did_you_mean(name, names_of(all)));
}

Change change_of(const std::vector<Section>& sections, std::string_view pair) {
    const std::size_t equals = pair.find('=');
    const std::string_view label = pair.substr(0, equals);
    const std::size_t dot = label.find('.');
    if (equals == std::string_view::npos || dot == std::string_view::npos)
        throw Refused("Expected SECTION.KEY=VALUE, got " + shown_text(pair));
    const Section& section = named(sections, label.substr(0, dot), "section");
    const Key& key = named(section.keys(), label.substr(dot + 1), "key of " + section.name());
    return {key, key.coerce(pair.substr(equals + 1))};
}

std::vector<Change> changes_of(const std::vector<std::string>& pairs) {
    const std::vector<Section> sections = sections_of(settings());
    std::vector<Change> changes;
    std::string wrong;
    const auto note = [&](const std::string& message) {
        wrong += (wrong.empty() ? "" : "\n") + message;
    };
    for (const std::string& pair : pairs) {
        try {
            Change change = change_of(sections, pair);
            if (std::any_of(changes.begin(), changes.end(),
                            [&](const Change& other) { return other.key == change.key; })) {
                note(change.key.label() + " is given twice");
            }
            changes.push_back(std::move(change));
        } catch (const ConfigKeyError& error) {
            note(error.what());
        } catch (const Refused& error) {
            note(error.what());
        }
    }
    if (!wrong.empty()) throw Refused(wrong);
    return changes;
}

ConfigValue load(const std::string& text, const std::filesystem::path& file) {
    try {
        return velmora::yaml::load(text, file.string());
    } catch (const velmora::yaml::Error& error) {
        throw Refused(error.what());
    }
}

std::string with_change(const std::string& text, const Change& change,
                        const std::filesystem::path& file) {
    try {
        return with_value(text, change.key, change.value);
    } catch (const velmora::ValueError& error) {
        throw Refused("Cannot write " + change.key.label() + " to " + file.string() + ": " +
                      error.what());
    }
}

}  // namespace

void set(std::ostream& out, const std::vector<std::string>& pairs,
         const std::filesystem::path& file) {
    const std::vector<Change> changes = changes_of(pairs);
    const std::optional<std::string> old = read_file(file);
    std::string text = old.value_or("");
    const ConfigValue data = load(text, file);
    std::optional<Restart> restart;
    for (const Change& change : changes) {
        const auto& [key, value] = change;
        const std::optional<ConfigValue> given = value_in(section_in(data, key.section()), key);
        if (given != value) text = with_change(text, change, file);
        if (given.value_or(key.default_value()) != value)
            restart = std::max(restart.value_or(Restart::none), key.restart());
    }
    if (text != old) replace_file(file, text);
    if (!restart) {
        out << "No value has changed.\n";
    } else if (*restart == Restart::none) {
        out << "The changes apply without a restart.\n";
    } else {
        out << "Restart for the changes to apply: " << *restart << '\n';
    }
}
