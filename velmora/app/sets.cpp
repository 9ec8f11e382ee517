// The layer of texts that a command line gives.
#include <algorithm>
#include <utility>

#include "velmora/app/source.hpp"
#include "velmora/utils/quoting.hpp"

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
            intake.take_text(pair.key, pair.text, name_, {});
        }
    }

    void add_unknown(Intake& intake, const std::string& pair) const {
        const std::size_t sign = pair.find('=');
        // Behind what no label has in it there may be a secret.
        const std::size_t end =
            intake.declaration().has_secrets() ? pair.find_first_not_of(label_characters) : sign;
        const std::string label = pair.substr(0, end);
        std::string why = "write it as SECTION.KEY=VALUE";
        if (sign != std::string::npos)
            why = intake.may_hint() ? intake.declaration().no_key_text(label)
                                    : "there is no such key";
        intake.add_fault(FaultKind::unknown_name, label, *name_,
                         intake.ignoring() + utils::shown_text(label) + " from " +
                             utils::one_line(*name_) + ": " + why);
    }

    static constexpr const char* label_characters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.-";

    std::vector<std::string> pairs_;
    SourceName name_;
};

}  // namespace

Layer sets(std::vector<std::string> pairs, SetsOptions options) {
    return Layer(std::make_shared<const OfSets>(std::move(pairs), std::move(options)));
}

}  // namespace velmora::app
