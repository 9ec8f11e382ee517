// The layer of texts that a command line gives.
#include <algorithm>
#include <utility>

#include "velmora/app/hiding.hpp"
#include "velmora/app/source.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::app {

namespace {

class OfSets final : public detail::Source {
public:
    OfSets(std::vector<std::string> pairs, SetsOptions options)
        : Source(options.on_fault),
          pairs_(std::move(pairs)),
          name_(source_named(std::move(options.name))) {}

    void give(Intake& intake) const override {
        std::vector<Pair> known;
        std::vector<const std::string*> unknown;
        for (const std::string& pair : pairs_) {
            const std::size_t sign = pair.find('=');
            const std::string label = pair.substr(0, sign);
            const std::size_t key = intake.declaration().find_key(label);
            const bool old = key == Declaration::Data::none;
            const std::size_t found = old ? intake.declaration().find_old_key(label) : key;
            if (sign == std::string::npos || found == Declaration::Data::none) {
                unknown.push_back(&pair);
            } else {
                known.push_back({found, old, label, pair.substr(sign + 1)});
            }
        }
        // By old names last, which do not count beside the one of today.
        std::stable_sort(known.begin(), known.end(), [](const Pair& a, const Pair& b) {
            return std::pair(a.key, a.old) < std::pair(b.key, b.old);
        });
        std::size_t given = Declaration::Data::none;
        for (const Pair& pair : known) {
            if (!pair.old) given = pair.key;
            take(intake, pair, pair.old && given == pair.key);
        }
        for (const std::string* pair : unknown) add_unknown(intake, *pair);
    }

private:
    struct Pair {
        std::size_t key;
        bool old;  // Whether the label is one that the key had before.
        std::string label;
        std::string text;
    };

    void take(Intake& intake, const Pair& pair, bool given) const {
        if (pair.old) intake.add_old_name(pair.key, pair.label, *name_, *name_, given);
        if (given) return;
        if (intake.declaration().keys()[pair.key].traits().secret) {
            intake.refuse_text(pair.key, "", name_,
                               "it is secret, and this can be seen by everyone: give it in a file, "
                               "a variable or a credential");
        } else {
            intake.take_text(pair.key, pair.text, name_, {.doubt_quotes = true});
        }
    }

    void add_unknown(Intake& intake, const std::string& pair) const {
        const Declaration::Data& declaration = intake.declaration();
        const std::size_t sign = pair.find('=');
        const std::string written = pair.substr(0, sign);
        const std::size_t meant = key_meant(declaration, written);
        const std::string label = open_label(declaration, written, sign != std::string::npos);
        std::string why = "there is no such key";
        if (meant != Declaration::Data::none) {
            why = "write it as " + declaration.keys()[meant].label() + "=VALUE";
        } else if (sign == std::string::npos) {
            why = "write it as SECTION.KEY=VALUE";
        } else if (intake.may_hint()) {
            why = declaration.no_key_text(label);
        }
        intake.add_fault(FaultKind::unknown_name, label, *name_,
                         intake.ignoring() + utils::shown_text(label) + " from " +
                             utils::one_line(*name_) + ": " + why);
    }

    // The key of a label that has spaces around it, another sign than "=" behind it, or in place of
    // its ".".
    static std::size_t key_meant(const Declaration::Data& declaration, std::string_view written) {
        written = utils::trimmed(written);
        const std::string_view name = name_in(written);
        const std::size_t whole = declaration.find_key(name);
        if (whole != Declaration::Data::none || name.size() == written.size()) return whole;
        const std::string_view rest = written.substr(name.size() + 1);
        return declaration.find_key(std::string(name) + "." + std::string(name_in(rest)));
    }

    // As much of what was written as can be no secret: a name, which ends where it is that of a
    // secret key; without a "=" only one that is known.
    static std::string open_label(const Declaration::Data& declaration, const std::string& written,
                                  bool has_sign) {
        if (!declaration.has_secrets()) return written;
        const std::string_view name = name_in(written);
        std::string_view known;
        for (const JudgedKey& key : declaration.keys()) {
            std::vector<std::string> labels = {key.label()};
            for (const std::string& old : key.traits().formerly)
                labels.push_back(key.old_label(old));
            for (const std::string& label : labels) {
                const bool fits = key.traits().secret ? name.starts_with(label) : name == label;
                if (fits && label.size() > known.size()) known = name.substr(0, label.size());
            }
        }
        return std::string(has_sign && known.empty() ? name : known);
    }

    std::vector<std::string> pairs_;
    SourceName name_;
};

}  // namespace

Layer sets(std::vector<std::string> pairs, SetsOptions options) {
    return Layer(std::make_shared<const OfSets>(std::move(pairs), std::move(options)));
}

}  // namespace velmora::app
