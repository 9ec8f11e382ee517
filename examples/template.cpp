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

namespace app = velmora::app;
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

void print_key(std::ostream& out, const app::Key& key) {
    const std::string indentation = "  ";
    print_comment(out, indentation, key.doc());
    print_comment(out, indentation, "Kind: " + key.accepted());
    if (const std::optional<std::string>& variable = key.env())
        print_comment(out, indentation, "Environment: " + *variable);
    print_comment(out, indentation, "Restart: " + std::string(name_of(key.restart())));
    out << indentation << yaml_text(key.name()) << ": " << yaml_text(key.default_value()) << '\n';
}

}  // namespace

void print_template(std::ostream& out) {
    std::string_view separator;
    for (const app::Section& section : schema().declaration().sections()) {
        out << separator;
        separator = "\n";
        print_comment(out, "", section.doc());
        out << yaml_text(section.name()) << ":\n";
        std::string_view between;
        for (const app::Key& key : section.keys()) {
            out << between;
            between = "\n";
            print_key(out, key);
        }
    }
}
