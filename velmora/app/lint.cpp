#include "velmora/app/lint.hpp"

#include <algorithm>
#include <array>
#include <exception>
#include <map>
#include <set>
#include <string_view>

#include "velmora/app/declaration_data.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/texts.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::app {

namespace {

using config::Bound;
using config::KeyKind;

constexpr bool is_letter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// Whether letters, digits and `others` make up the name, a letter at the beginning.
bool is_word(std::string_view name, std::string_view others) {
    return !name.empty() && is_letter(name.front()) &&
           std::all_of(name.begin(), name.end(), [others](char c) {
               return is_letter(c) || utils::is_digit(c) ||
                      others.find(c) != std::string_view::npos;
           });
}

bool is_name(std::string_view name) {
    constexpr std::array<std::string_view, 3> words = {"null", "true", "false"};
    return is_word(name, "-") && std::none_of(words.begin(), words.end(), [name](auto word) {
               return utils::equal_ignoring_case(name, word);
           });
}

bool admits_nothing(const Bound& bound) {
    const auto& high = bound.high();
    const auto order = bound.low() <=> (high ? *high : config::Number(bound.low()));
    return !(order < 0 || (order == 0 && !(high && bound.low_open())));
}

class Linter {
public:
    explicit Linter(const Declaration::Data& declaration) : declaration_(declaration) {}

    std::vector<std::string> mistakes() && {
        const auto& sections = declaration_.sections();
        for (std::size_t i = 0; i < sections.size(); ++i) {
            at_ = declaration_.section_name(i);
            look_at_section(sections[i]);
            for (const JudgedKey& key : sections[i].keys) {
                at_ = key.label();
                look_at_key(key);
            }
        }
        return std::move(mistakes_);
    }

private:
    void add(const std::string& what) { mistakes_.push_back(at_ + ": " + what); }

    void look_at_section(const DeclaredSection& declared) {
        const config::Section& section = *declared.section;
        if (!is_name(section.name())) add("this is no name for a section in files and variables");
        if (section.name().starts_with("x-")) add("names that begin with x- are left to anchors");
        look_at_doc(section.setting().doc());
        if (declared.mistyped)
            add("its field is declared with another type than its section is made of");
    }

    void look_at_key(const JudgedKey& key) {
        const config::Setting& setting = key.key().setting();
        if (!is_name(key.key().name())) add("this is no name for a key in files and variables");
        look_at_doc(setting.doc());
        look_at_variable(key);
        look_at_bounds(setting, key.key().kind());
        look_at_choices(setting, key.key().kind());
        if (key.traits().items != nullptr) {
            look_at_bounds(key.traits().items->setting, key.traits().items->kind);
            look_at_choices(key.traits().items->setting, key.traits().items->kind);
        }
        for (const std::string& mistake : key.traits().mistakes) add(mistake);
        look_at_old_names(key);
        look_at_default(key);
    }

    void look_at_doc(const std::string& doc) {
        if (utils::trimmed(doc).empty()) add("it has no doc");
        if (utils::one_line(doc) != doc) add("its doc is no single line");
    }

    void look_at_old_names(const JudgedKey& key) {
        for (const std::string& old : key.traits().formerly) {
            const std::string label = key.old_label(old);
            if (!is_name(old))
                add("its old name " + utils::shown_text(old) + " can have been none");
            if (declaration_.find_key(label) != Declaration::Data::none)
                add("its old name " + old + " is the name of a key");
            else if (!old_labels_.insert(label).second)
                add("its old name " + old + " is there twice in its section");
        }
    }

    void look_at_variable(const JudgedKey& key) {
        const auto& variable = key.key().setting().env();
        if (!variable) return;
        if (!is_word(*variable, "")) {
            add("no shell can set a variable named " + utils::shown_text(*variable));
            return;
        }
        look_at_variable(*variable);
        if (key.traits().secret) look_at_variable(*variable + "_FILE");
    }

    void look_at_variable(const std::string& variable) {
        const auto [first, fresh] = variables_.try_emplace(variable, at_);
        if (!fresh) add("its variable " + variable + " is that of " + first->second + " as well");
    }

    void look_at_bounds(const config::Setting& setting, KeyKind kind) {
        if (!setting.bounds()) return;
        if (kind != KeyKind::int_ && kind != KeyKind::float_)
            add("it has bounds, but is no number");
        else if (admits_nothing(*setting.bounds()))
            add("its bounds admit nothing: " + config::display(*setting.bounds()));
    }

    void look_at_choices(const config::Setting& setting, KeyKind kind) {
        if (!setting.choices().empty() && kind != KeyKind::str)
            add("it has choices, but is no text");
        std::set<std::string_view> seen;
        for (const std::string& choice : setting.choices()) {
            if (!seen.insert(choice).second)
                add("its choice " + utils::shown_text(choice) + " is there twice");
        }
    }

    void look_at_default(const JudgedKey& key) {
        const config::ConfigValue& value = key.default_value();
        if (value.is_null() && key.traits().required) return;
        try {
            const Verdict judged = key.judge({value});
            if (!judged.accepted())
                add("it refuses its own default: " + judged.refusal);
            else if (judged.value != value)
                add("its default " + key.shown(value) + " would become " + key.shown(judged.value));
        } catch (const std::exception& error) {
            add("it refuses its own default: " + message_of(error));
        }
    }

    const Declaration::Data& declaration_;
    std::string at_;
    std::map<std::string, std::string> variables_;
    std::set<std::string> old_labels_;
    std::vector<std::string> mistakes_;
};

}  // namespace

std::vector<std::string> mistakes_in(const Declaration::Data& declaration) {
    return Linter(declaration).mistakes();
}

std::vector<std::string> lint(const config::RecordType& config_type) {
    return mistakes_in(Declaration::Data(config_type));
}

}  // namespace velmora::app
