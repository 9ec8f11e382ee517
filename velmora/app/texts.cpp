// Layers that are texts, one for a key: credentials and sets.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "velmora/app/source.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::app {

namespace {

class OfCredentials final : public detail::Source {
public:
    explicit OfCredentials(CredentialsOptions options)
        : Source(options.on_fault), directory_(std::move(options.directory)) {
        const char* const given = std::getenv("CREDENTIALS_DIRECTORY");
        if (directory_.empty() && given != nullptr) directory_ = given;
    }

    void give(Intake& intake) const override {
        if (directory_.empty()) return;
        std::error_code error;
        if (std::filesystem::exists(directory_, error) &&
            !std::filesystem::is_directory(directory_, error)) {
            intake.add_error(FaultKind::unusable_source, "", directory_,
                             utils::one_line(directory_) + ": is no directory of credentials");
            return;
        }
        const auto& keys = intake.declaration().keys();
        for (std::size_t i = 0; i < keys.size(); ++i) {
            bool given = take(intake, i, keys[i].label(), true, false);
            for (const std::string& old : keys[i].traits().formerly)
                given =
                    take(intake, i, intake.declaration().old_label(i, old), false, given) || given;
        }
    }

private:
    // Whether there is a value in the file named `label`.
    bool take(Intake& intake, std::size_t key, const std::string& label, bool current,
              bool given) const {
        const std::string path = directory_ + "/" + label;
        if (std::error_code error; !std::filesystem::exists(path, error) && !error) return false;
        const auto text = intake.read_text(label, path);
        if (!text || text->empty()) return false;
        if (!current) intake.add_old_name(key, path, path, directory_, given);
        if (!given) intake.take_text(key, *text, source_named(path), {.secret = true});
        return true;
    }

    std::string directory_;
};

class OfSets final : public detail::Source {
public:
    OfSets(std::vector<std::string> pairs, SetsOptions options)
        : Source(options.on_fault),
          pairs_(std::move(pairs)),
          name_(source_named(std::move(options.name))) {}

    void give(Intake& intake) const override {
        std::vector<Pair> known;
        std::vector<Pair> unknown;
        for (const std::string& pair : pairs_) {
            const std::size_t sign = pair.find('=');
            const bool whole = sign != std::string::npos;
            Pair parts{pair.substr(0, sign), whole ? pair.substr(sign + 1) : ""};
            parts.key = intake.declaration().find_key(parts.label);
            parts.old = parts.key == Declaration::Data::none;
            if (parts.old) parts.key = intake.declaration().find_old_key(parts.label);
            const bool is_known = whole && parts.key != Declaration::Data::none;
            parts.whole = whole;
            (is_known ? known : unknown).push_back(std::move(parts));
        }
        std::stable_sort(known.begin(), known.end(),
                         [](const Pair& a, const Pair& b) { return a.key < b.key; });
        for (auto each = known.begin(); each != known.end(); ++each) take(intake, known, *each);
        for (const Pair& each : unknown) add_unknown(intake, each);
    }

private:
    struct Pair {
        std::string label;
        std::string text;
        std::size_t key = Declaration::Data::none;
        bool old = false;    // Whether the label is one that the key had before.
        bool whole = false;  // Whether there is a "=".
    };

    void take(Intake& intake, const std::vector<Pair>& known, const Pair& pair) const {
        const bool given =
            pair.old && std::any_of(known.begin(), known.end(), [&](const Pair& each) {
                return each.key == pair.key && !each.old;
            });
        if (pair.old) intake.add_old_name(pair.key, pair.label, *name_, *name_, given);
        if (given) return;
        if (intake.declaration().keys()[pair.key].traits().secret) {
            intake.refuse_text(pair.key, "", name_,
                               "it is secret, and this can be seen by everyone: give it in a file, "
                               "a variable or a credential");
        } else {
            intake.take_text(pair.key, pair.text, name_, {});
        }
    }

    void add_unknown(Intake& intake, const Pair& pair) const {
        std::string why = "write it as SECTION.KEY=VALUE";
        if (pair.whole) why = "there is no such key";
        if (pair.whole && intake.may_hint()) {
            try {
                intake.declaration().key_at(pair.label);
            } catch (const config::ConfigKeyError& error) {
                why = error.message();
            }
        }
        intake.add_fault(FaultKind::unknown_name, pair.label, *name_,
                         intake.ignoring() + utils::shown_text(pair.label) + " from " +
                             utils::one_line(*name_) + ": " + why);
    }

    std::vector<std::string> pairs_;
    SourceName name_;
};

}  // namespace

Layer credentials(CredentialsOptions options) {
    return Layer(std::make_shared<const OfCredentials>(std::move(options)));
}

Layer sets(std::vector<std::string> pairs, SetsOptions options) {
    return Layer(std::make_shared<const OfSets>(std::move(pairs), std::move(options)));
}

}  // namespace velmora::app
