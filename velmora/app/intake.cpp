#include "velmora/app/intake.hpp"

#include <algorithm>
#include <utility>

#include "velmora/config/display.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {

using config::ConfigValue;

Intake::Intake(std::shared_ptr<const Declaration::Data> declaration, bool alone)
    : declaration_(std::move(declaration)),
      values_{.declaration = declaration_, .given = {}, .raws = {}},
      alone_(alone) {
    values_.given.resize(declaration_->keys().size());
    const ConfigValue nothing;
    for (const DeclaredSection& each : declaration_->sections())
        values_.raws.emplace_back(nothing, "", nullptr, each.secret);
    places_.resize(values_.given.size());
    unread_.resize(values_.given.size());
}

Fault& Intake::add_fault(FaultKind kind, std::string key, std::string source, std::string message) {
    const bool error = on_fault_ == OnFault::refuse;
    return values_.faults.emplace_back(
        Fault{.kind = kind,
              .severity = error ? Severity::error : Severity::warning,
              .key = std::move(key),
              .source = std::move(source),
              .message = std::move(message)});
}

std::string Intake::ignoring() const {
    return on_fault_ == OnFault::refuse ? "Refusing " : "Ignoring ";
}

Fault& Intake::add_error(FaultKind kind, std::string key, std::string source, std::string message) {
    Fault& fault = add_fault(kind, std::move(key), std::move(source), std::move(message));
    fault.severity = Severity::error;
    return fault;
}

Fault& Intake::add_old_name(std::size_t key, const std::string& old, const std::string& source,
                            const std::string& shown_source, bool given) {
    const std::string& label = declaration().keys()[key].label();
    const std::string renamed = old + " in " + shown_source + " is called " + label + " now";
    return add_advice(FaultKind::old_name, label, source,
                      renamed + (given ? ", which is given as well: remove it" : ": rename it"));
}

Fault& Intake::add_unread(const std::string& what, const std::string& why) {
    return add_advice(FaultKind::unread_name, "", what,
                      utils::one_line(what) + " is not read" + why);
}

Fault& Intake::add_advice(FaultKind kind, std::string key, std::string source,
                          std::string message) {
    Fault& fault = add_fault(kind, std::move(key), std::move(source), std::move(message));
    fault.severity = Severity::advice;
    return fault;
}

void Intake::add_giver(Giver giver) {
    giver.layer = layers_;
    values_.givers.push_back(std::move(giver));
}

void Intake::add_unreadable(const std::string& source, const std::string& why) {
    add_error(FaultKind::unusable_source, "", source,
              (source.empty() ? "''" : utils::one_line(source)) + ": " + why);
    unread_.assign(unread_.size(), true);
}

void Intake::add_unreadable(std::size_t key, const std::string& source, const std::string& why) {
    add_error(FaultKind::unusable_source, declaration().keys()[key].label(), source,
              utils::one_line(source) + ": " + why);
    unread_[key] = true;
}

void Intake::take_text(std::size_t key, const std::string& text, const SourceName& source,
                       const TextOptions& options) {
    const JudgedKey& judged = declaration().keys()[key];
    Verdict verdict = judged.judge({.value = ConfigValue(text), .privacy = options.privacy});
    if (!verdict.accepted()) {
        refuse_text(key, text, source, verdict.refusal, options.privacy);
        values_.faults.back().note = options.note;
        return;
    }
    values_.given[key].emplace_back(source, yaml::Position(), std::move(verdict.value), "",
                                    judged.traits().secret);
    places_[key] = {};
    const bool quoted = text.size() > 1 && text.front() == text.back() &&
                        (text.front() == '"' || text.front() == '\'');
    if (quoted && options.doubt_quotes)
        add_advice(FaultKind::doubtful_text, judged.label(), *source,
                   judged.label() + " from " + utils::one_line(*source) +
                       ": the quotes around it are part of the value");
}

void Intake::refuse_text(std::size_t key, const std::string& text, const SourceName& source,
                         const std::string& why, Privacy privacy) {
    const JudgedKey& judged = declaration().keys()[key];
    const std::string& label = judged.label();
    values_.given[key].emplace_back(source, yaml::Position(), text, why,
                                    judged.traits().secret || privacy != Privacy::open);
    add_fault(FaultKind::refused_value, label, *source,
              ignoring() + label + " from " + utils::one_line(*source) + ": " + why);
    refused_.emplace_back(values_.faults.size() - 1, key);
}

void Intake::place_at_held(std::size_t key, Fault& fault) const {
    const auto& [document, span] = places_[key];
    if (document == nullptr) return;
    fault.source = document->located().name();
    document->place(span, fault);
}

std::string Intake::shown(std::size_t key, const ConfigValue& value) const {
    const JudgedKey& judged = declaration().keys()[key];
    return alone_ ? judged.shown_in_full(value) : judged.shown(value);
}

std::string Intake::keeping(const Values::Data& data, std::size_t key) const {
    const JudgedKey& judged = declaration().keys()[key];
    if (data.is_pending(key))
        return "; keeping " + shown(key, *data.held[key]) + " until a restart";
    if (const GivenValue* held = held_of(data.given[key]))
        return "; keeping " + shown(key, held->reveal()) + " from " +
               utils::one_line(held->place());
    if (judged.traits().required) return "";
    return "; keeping the default " + shown(key, judged.default_value());
}

Values::Data Intake::finish(bool required) {
    const auto& keys = declaration().keys();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        auto& given = values_.given[i];
        std::reverse(given.begin(), given.end());
        const bool known = held_of(given) != nullptr || unread_[i];
        if (required && keys[i].traits().required && !known) add_missing(i);
    }
    values_.hold();
    for (const auto& [fault, key] : refused_) {
        std::string& note = values_.faults[fault].note;
        if (note.empty()) note = keys[key].note();
    }
    return std::move(values_);
}

void Intake::say_what_holds(Values::Data& data) const {
    for (const auto& [fault, key] : refused_) {
        if (data.faults[fault].severity == Severity::warning)
            data.faults[fault].message += keeping(data, key);
    }
}

void Intake::add_missing(std::size_t key) {
    const JudgedKey& judged = declaration().keys()[key];
    const auto& variable = judged.key().setting().env();
    Fault& fault = add_error(FaultKind::missing_value, judged.label(), "",
                             judged.label() + " must be given a value" +
                                 (variable ? ", in $" + *variable + " for one" : "") + ": " +
                                 judged.key().setting().doc());
    fault.note = where_empty(key);
}

std::string Intake::where_empty(std::size_t key) const {
    const std::string& section = declaration().keys()[key].key().section();
    std::vector<std::string> all;
    for (const Giver& giver : values_.givers) {
        using Kind = Giver::Kind;
        if (giver.state == Giver::State::gives || giver.source == nullptr) continue;
        const std::string source = utils::one_line(*giver.source);
        if (giver.kind == Kind::file) {
            all.push_back(source +
                          (giver.state == Giver::State::empty ? " is empty" : " is missing"));
        } else if (giver.kind == Kind::section) {
            if (declaration().section_name(giver.part) == section)
                all.push_back(
                    std::string("the ").append(section).append(" section of ").append(source) +
                    " is empty");
        } else if (giver.kind != Kind::folder && giver.part == key) {
            all.push_back((giver.kind == Kind::variable ? "the file of " : "") + source +
                          " is empty");
        }
    }
    return utils::joined(all);
}

}  // namespace velmora::app
