#include "set.hpp"

#include <algorithm>
#include <optional>
#include <ostream>
#include <string_view>

#include <velmora/config/spec.hpp>
#include <velmora/utils/quoting.hpp>
#include <velmora/yaml/yaml.hpp>

#include "file_values.hpp"
#include "locked_file.hpp"
#include "refuse.hpp"
#include "settings.hpp"
#include "yaml_edit.hpp"

using namespace velmora::config;
using velmora::utils::shown_text;
namespace app = velmora::app;

namespace {

Change change_of(std::string_view pair) {
    const std::size_t equals = pair.find('=');
    if (equals == std::string_view::npos)
        refuse("write " + shown_text(pair) + " as SECTION.KEY=VALUE");
    const app::Key key = schema().declaration().key(pair.substr(0, equals));
    return {key, key.coerce(pair.substr(equals + 1))};
}

std::vector<Change> changes_of(const std::vector<std::string>& pairs) {
    std::vector<Change> changes;
    refuse_together(pairs, [&](const std::string& pair) {
        const Change& change = changes.emplace_back(change_of(pair));
        const auto is_other = [&](const Change& other) {
            return other.key.label() != change.key.label();
        };
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
    const auto given = [&](const app::Key& key) {
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
