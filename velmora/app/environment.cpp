// The layer of environment variables.
#include <algorithm>
#include <unordered_map>
#include <utility>

#include <unistd.h>

#include "velmora/app/source.hpp"
#include "velmora/utils/nearest_name.hpp"
#include "velmora/utils/read_file.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {

namespace {

std::map<std::string, std::string> variables_of_process() {
    std::map<std::string, std::string> variables;
    for (char** each = environ; each != nullptr && *each != nullptr; ++each) {
        const std::string_view variable = *each;
        const std::size_t sign = variable.find('=');
        if (sign != std::string_view::npos)
            variables.emplace(variable.substr(0, sign), variable.substr(sign + 1));
    }
    return variables;
}

// The label as a part of the name of a variable.
std::string as_variable(std::string label) {
    std::transform(label.begin(), label.end(), label.begin(), [](char c) {
        if (c == '.' || c == '-') return '_';
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return label;
}

bool is_address(std::string_view text) {
    return text.starts_with("tcp://") || text.starts_with("udp://");
}

class OfEnvironment final : public detail::Source {
public:
    explicit OfEnvironment(EnvironmentOptions options)
        : Source(options.on_fault),
          prefix_(std::move(options.prefix)),
          empty_counts_(options.empty_counts),
          variables_(options.variables ? *std::move(options.variables) : variables_of_process()) {}

    void give(Intake& intake) const override {
        const auto& keys = intake.declaration().keys();
        std::vector<std::vector<std::string>> all_names;
        std::unordered_map<std::string, std::size_t> users;
        all_names.reserve(keys.size());
        for (const JudgedKey& key : keys) all_names.push_back(names_of(key));
        for (std::size_t i = 0; i < keys.size(); ++i) {
            for (const std::string& name : all_names[i]) {
                ++users[name];
                if (keys[i].traits().secret) ++users[name + "_FILE"];
            }
        }
        for (std::size_t i = 0; i < keys.size(); ++i) {
            Turn turn = {.intake = intake, .key = i};
            for (const std::string& name : all_names[i]) {
                const bool old = &name != &all_names[i].front();
                if (users[name] > 1) add_ambiguous(intake, keys[i], name);
                if (const std::string* const text = find(name))
                    take(turn, "$" + name, *text, old, {.doubt_quotes = true});
                if (!keys[i].traits().secret) continue;
                const std::string file = name + "_FILE";
                if (users[file] > 1) add_ambiguous(intake, keys[i], file);
                if (const std::string* const path = find(file))
                    take_file(turn, "$" + file, *path, old);
            }
        }
        for (const auto& [name, text] : variables_) {
            if (!users.contains(name) && find(name) != nullptr)
                look_at_unread(intake, name, text, all_names, users);
        }
    }

private:
    // A key that is given its value.
    struct Turn {
        Intake& intake;
        std::size_t key;
        std::string given_by = {};  // Of its variables the first that is there.

        const JudgedKey& judged() const { return intake.declaration().keys()[key]; }
    };

    // The variables of a key: the one of its name first, then those of its old ones.
    std::vector<std::string> names_of(const JudgedKey& key) const {
        const auto& own = key.key().setting().env();
        if (own) return {*own};
        if (prefix_.empty()) return {};
        std::vector<std::string> names = {prefix_ + as_variable(key.label())};
        for (const std::string& old : key.traits().formerly) {
            const std::string name = prefix_ + as_variable(key.old_label(old));
            if (!utils::is_one_of(name, names)) names.push_back(name);
        }
        return names;
    }

    const std::string* find(const std::string& name) const {
        const auto found = variables_.find(name);
        if (found == variables_.end() || (found->second.empty() && !empty_counts_)) return nullptr;
        return &found->second;
    }

    static void add_ambiguous(Intake& intake, const JudgedKey& key, const std::string& name) {
        intake.add_error(FaultKind::ambiguous_variable, key.label(), "$" + name,
                         "$" + name + " would stand for " + key.label() +
                             " and for another key: name another variable for it");
    }

    static void take(Turn& turn, const std::string& variable, const std::string& text, bool old,
                     Intake::TextOptions options = {}) {
        const bool given = !turn.given_by.empty();
        if (old) turn.intake.add_old_name(turn.key, variable, variable, "the environment", given);
        if (given) return;
        options.note = note_on(turn.judged(), text);
        turn.intake.take_text(turn.key, text, source_named(variable), options);
        turn.given_by = variable;
    }

    // A secret may be in a file that another variable names.
    void take_file(Turn& turn, const std::string& variable, const std::string& path,
                   bool old) const {
        if (!turn.given_by.empty()) {
            turn.intake.refuse_text(turn.key, "", source_named(variable),
                                    turn.given_by + " is given as well");
            return;
        }
        std::string text;
        try {
            text = utils::without_line_end(utils::read_regular_file(path, most_file_bytes));
        } catch (const utils::FileError& error) {
            // The path is not shown: it may be the secret itself.
            return turn.intake.add_unreadable(
                turn.key, variable, std::string("its file cannot be read: ") + error.what());
        }
        const bool given = !text.empty() || empty_counts_;
        turn.intake.add_giver({Giver::Kind::variable,
                               given ? Giver::State::gives : Giver::State::empty,
                               source_named(variable), turn.key});
        if (given) take(turn, variable, text, old);
    }

    // What is not read but may have been meant to be.
    void look_at_unread(Intake& intake, const std::string& name, std::string_view text,
                        const std::vector<std::vector<std::string>>& all_names,
                        const std::unordered_map<std::string, std::size_t>& users) const {
        constexpr std::string_view file = "_FILE";
        const auto& keys = intake.declaration().keys();
        const bool names_file = name.ends_with(file);
        const std::string of_file = name.substr(0, name.size() - (names_file ? file.size() : 0));
        const bool ours = !prefix_.empty() && name.starts_with(prefix_);
        for (std::size_t i = 0; i < keys.size() && (names_file || ours); ++i) {
            if (names_file && utils::is_one_of(of_file, all_names[i])) {
                intake.add_unread("$" + name, ": only that of a secret key names a file, and " +
                                                  keys[i].label() + " is none");
                return;
            }
            const auto& own = keys[i].key().setting().env();
            if (ours && own && name == prefix_ + as_variable(keys[i].label())) {
                intake.add_unread("$" + name,
                                  ": the variable of " + keys[i].label() + " is $" + *own);
                return;
            }
        }
        if (!ours || is_of_platform(name, text) || !intake.may_hint()) return;
        std::vector<std::string_view> known;
        for (const auto& [each, count] : users) {
            if (each.starts_with(prefix_))
                known.push_back(std::string_view(each).substr(prefix_.size()));
        }
        std::sort(known.begin(), known.end());
        const std::string_view near =
            utils::nearest_name(std::string_view(name).substr(prefix_.size()), known);
        if (!near.empty())
            intake.add_unread("$" + name, "; did you mean $" + prefix_ + std::string(near) + "?");
    }

    // What container platforms set for the services that they run.
    static bool is_of_platform(std::string_view name, std::string_view text) {
        return is_address(text) || name.ends_with("_SERVICE_HOST") ||
               name.find("_SERVICE_PORT") != std::string_view::npos ||
               name.find("_PORT_") != std::string_view::npos;
    }

    static std::string note_on(const JudgedKey& key, std::string_view text) {
        if (key.key().kind() != config::KeyKind::int_ || !is_address(text)) return "";
        return "container platforms set such variables for a service of this name: turn that off "
               "(in Kubernetes with enableServiceLinks: false), or rename the service";
    }

    std::string prefix_;
    bool empty_counts_;
    std::map<std::string, std::string> variables_;
};

}  // namespace

Layer environment(EnvironmentOptions options) {
    return Layer(std::make_shared<const OfEnvironment>(std::move(options)));
}

}  // namespace velmora::app
