#include "velmora/app/explain.hpp"

#include <algorithm>
#include <utility>

#include "velmora/app/values_data.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::app {

namespace {

Explanation explain_key(const Values::Data& data, std::size_t position) {
    const JudgedKey& key = data.declaration->keys()[position];
    Explanation all{.label = key.label(),
                    .value = key.shown(*data.held[position]),
                    .doc = key.key().setting().doc(),
                    .accepted = key.accepted_text(),
                    .place = {},
                    .default_value = key.shown(key.default_value()),
                    .restart = key.key().restart()};
    if (data.is_pending(position)) {
        const GivenValue* const held = held_of(data.pending->given[position]);
        all.pending = {key.shown(*data.pending->held[position]),
                       held != nullptr ? utils::one_line(held->place()) : ""};
    }
    for (const GivenValue& given : data.given[position]) {
        const std::string place = utils::one_line(given.place());
        if (!given.accepted()) {
            all.refused.push_back({key.shown(given.value), place, given.refusal});
        } else if (all.place.empty()) {
            all.place = place;
        } else {
            all.hidden.push_back({key.shown(given.value), place});
        }
    }
    return all;
}

std::string capitalised(std::string text) {
    if (text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

std::string restart_text(config::Restart restart) {
    if (restart == config::Restart::none) return "no restart";
    return "a restart of the " + std::string(name_of(restart));
}

}  // namespace

Explanation explain(const Values& values, std::string_view label) {
    const Values::Data& data = Values::Data::of(values);
    return explain_key(data, data.declaration->key_at(label));
}

std::vector<Explanation> explain(const Values& values) {
    const Values::Data& data = Values::Data::of(values);
    std::vector<Explanation> all;
    all.reserve(data.held.size());
    for (std::size_t i = 0; i < data.held.size(); ++i) all.push_back(explain_key(data, i));
    return all;
}

std::string text_of(const Explanation& explanation) {
    std::string text = explanation.label + " = " + explanation.value + "\n";
    const auto add = [&text](std::string_view what, const auto&... how) {
        text.append("  ").append(what).append(9 - what.size(), ' ');
        (text.append(how), ...);
        text += "\n";
    };
    text += "  " + explanation.doc + " " + capitalised(explanation.accepted) + ".\n";
    const auto place_text = [](const std::string& place) {
        return place.empty() ? "the default" : place;
    };
    add("from", place_text(explanation.place));
    if (const auto& pending = explanation.pending)
        add("pending", pending->value, "  ", place_text(pending->place));
    for (const auto& [value, place, refusal] : explanation.hidden) add("hides", value, "  ", place);
    for (const auto& [value, place, refusal] : explanation.refused)
        add("refused", value, "  ", place, ": ", refusal);
    if (!explanation.place.empty()) add("default", explanation.default_value);
    return text + "  a change takes " + restart_text(explanation.restart) + "\n";
}

void Plan::add(Change change) {
    restart = std::max(restart, change.restart);
    changes.push_back(std::move(change));
}

namespace {

Plan plan_between(const Values::Data& old, const Values::Data& now) {
    Plan plan;
    const auto& keys = now.declaration->keys();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (*old.held[i] == *now.held[i]) continue;
        plan.add({keys[i].label(), keys[i].shown(*old.held[i]), keys[i].shown(*now.held[i]),
                  keys[i].key().restart()});
    }
    const bool secrets = now.declaration->has_secrets();
    const auto shown = [secrets](const Raw& raw) {
        return secrets && !raw.value().is_null() ? "(secret)" : _shown(raw.value());
    };
    for (std::size_t i = 0; i < now.raws.size(); ++i) {
        if (old.raws[i].value() == now.raws[i].value()) continue;
        const config::Section& section = now.declaration->sections()[i];
        plan.add(
            {section.name(), shown(old.raws[i]), shown(now.raws[i]), section.setting().restart()});
    }
    return plan;
}

}  // namespace

Plan plan(const Values& before, const Values& after) {
    const Values::Data& old = Values::Data::of(before);
    const Values::Data& now = Values::Data::of(after);
    if (old.declaration != now.declaration)
        throw ValueError("a plan is between two loads of one declaration");
    return plan_between(old, now);
}

Plan pending(const Values& now) {
    const Values::Data& data = Values::Data::of(now);
    return data.pending != nullptr ? plan_between(data, *data.pending) : Plan();
}

std::string text_of(const Plan& plan) {
    if (plan.changes.empty()) return "Nothing changes.\n";
    std::string text;
    for (const Change& change : plan.changes) {
        text += change.label + ": " + change.before + " -> " + change.after + ", takes " +
                restart_text(change.restart) + "\n";
    }
    return text;
}

}  // namespace velmora::app
