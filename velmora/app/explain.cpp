#include "velmora/app/explain.hpp"

#include <algorithm>
#include <utility>

#include "velmora/app/values_data.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::app {

namespace {

std::string place_of(const GivenValue* given) {
    return given != nullptr ? utils::one_line(given->place()) : "";
}

std::string shown_of(const JudgedKey& key, const GivenValue& given) {
    const bool hidden = given.is_secret() && !given.reveal().is_null();
    return hidden ? std::string(hidden_text) : key.shown_in_full(given.reveal());
}

Explanation explain_key(const Values::Data& data, std::size_t position) {
    const JudgedKey& key = data.declaration->keys()[position];
    Explanation all{.label = key.label(),
                    .value = key.shown_in_full(*data.held[position]),
                    .doc = key.key().setting().doc(),
                    .accepted = key.accepted_text(),
                    .place = place_of(held_of(data.given[position])),
                    .default_value = key.shown_in_full(key.default_value()),
                    .restart = key.key().restart()};
    const Values::Data& latest = data.is_pending(position) ? *data.pending : data;
    const auto& given = latest.given[position];
    const GivenValue* const held = held_of(given);
    if (&latest != &data) all.pending = {key.shown_in_full(*latest.held[position]), place_of(held)};
    for (const GivenValue& each : given) {
        if (&each == held) continue;
        (each.accepted() ? all.hidden : all.refused)
            .push_back({shown_of(key, each), place_of(&each), each.refusal()});
    }
    return all;
}

std::string cut(const std::string& form) {
    return utils::cut(form, utils::shown_characters);
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
    std::string text = explanation.label + " = " + cut(explanation.value) + "\n";
    const auto add = [&text](std::string_view what, const auto&... how) {
        text.append("  ").append(what).append(9 - what.size(), ' ');
        (text.append(how), ...);
        text += "\n";
    };
    text += "  " + explanation.doc + " " + capitalised(explanation.accepted) + ".\n";
    const auto place_text = [](const std::string& place) {
        return place.empty() ? "the default" : place;
    };
    const auto& pending = explanation.pending;
    const bool stale = pending && !explanation.place.empty();
    add("from", place_text(explanation.place), stale ? ", as it was read before" : "");
    if (pending) add("pending", cut(pending->value), "  ", place_text(pending->place));
    for (const auto& [value, place, refusal] : explanation.hidden)
        add("hides", cut(value), "  ", place);
    for (const auto& [value, place, refusal] : explanation.refused)
        add("refused", cut(value), "  ", place, ": ", refusal);
    if (!explanation.place.empty()) add("default", cut(explanation.default_value));
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
        plan.add({keys[i].label(), keys[i].shown_in_full(*old.held[i]),
                  keys[i].shown_in_full(*now.held[i]), keys[i].key().restart()});
    }
    for (std::size_t i = 0; i < now.raws.size(); ++i) {
        if (same(old.raws[i], now.raws[i])) continue;
        const config::Section& section = *now.declaration->sections()[i].section;
        plan.add({section.name(), old.raws[i].shown(), now.raws[i].shown(),
                  section.setting().restart()});
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
    for (const auto& [label, before, after, restart] : plan.changes) {
        const std::string from = cut(before);
        const std::string to = cut(after);
        text.append(label).append(": ").append(from).append(" -> ").append(to);
        if (from == to && before != after) text += " (further on)";
        text.append(", takes ").append(restart_text(restart)).append("\n");
    }
    return text;
}

}  // namespace velmora::app
