#include "template.hpp"

#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <velmora/config/spec.hpp>
#include <velmora/utils/quoting.hpp>
#include <velmora/utils/texts.hpp>

#include "settings.hpp"
#include "yaml_value.hpp"

using namespace velmora::config;

namespace {

constexpr std::size_t width = 80;

void print_comment(std::ostream& out, const std::string& indentation, const std::string& text) {
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;) {
        if (!line.empty() && line.size() + 1 + word.size() > width) {
            out << line << '\n';
            line.clear();
        }
        line += (line.empty() ? indentation + "# " : " ") + velmora::utils::one_line(word);
    }
    if (!line.empty()) out << line << '\n';
}

std::string accepted_text(const Key& key) {
    std::ostringstream out;
    out << key.kind();
    const std::vector<std::string>& choices = key.setting().choices();
    if (!choices.empty()) out << ", one of: " << velmora::utils::joined(choices);
    if (const std::optional<Bound>& bounds = key.setting().bounds()) out << ", " << bounds->text();
    return out.str();
}

void print_key(std::ostream& out, const Key& key) {
    const std::string indentation = "  ";
    print_comment(out, indentation, key.setting().doc());
    print_comment(out, indentation, "Kind: " + accepted_text(key));
    if (const std::optional<std::string>& variable = key.setting().env())
        print_comment(out, indentation, "Environment: " + *variable);
    print_comment(out, indentation, "Restart: " + std::string(name_of(key.restart())));
    out << indentation << yaml_text(key.name()) << ": " << yaml_text(key.default_value()) << '\n';
}

}  // namespace

void print_template(std::ostream& out) {
    std::string_view separator;
    for (const Section& section : schema().declaration().sections()) {
        out << separator;
        separator = "\n";
        print_comment(out, "", section.setting().doc());
        out << yaml_text(section.name()) << ":\n";
        for (const Key& key : section.keys()) {
            if (&key != &section.keys().front()) out << '\n';
            print_key(out, key);
        }
    }
}
