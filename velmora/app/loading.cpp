#include "velmora/app/loading.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "velmora/app/source.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {

namespace {

using State = Giver::State;

bool is_error(const Fault& fault) {
    return fault.severity == Severity::error;
}

bool has_error(const std::vector<Fault>& faults) {
    return std::any_of(faults.begin(), faults.end(), is_error);
}

// An order in which those are equal that are one in two loads.
bool is_before(const Giver& a, const Giver& b) {
    if (a.layer != b.layer) return a.layer < b.layer;
    if (a.kind != b.kind) return a.kind < b.kind;
    if (a.part != b.part) return a.part < b.part;
    return a.kind != Giver::Kind::credential && *a.source < *b.source;
}

// The fault of a reload that finds nothing where there was something.
Fault fault_of_gone(const Giver& before, const Giver& now, const Declaration::Data& declaration) {
    const bool missing = now.state == State::missing;
    Fault fault{.kind = FaultKind::unusable_source,
                .severity = Severity::error,
                .key = {},
                .source = missing ? *before.source : *now.source,
                .note = "to do without its values, restart"};
    std::string what = missing ? "is gone" : "has nothing in it any more";
    if (now.kind == Giver::Kind::section) {
        fault.key = declaration.section_name(now.part);
        what = "its section " + fault.key + " is empty, which it was not before";
    } else if (now.kind == Giver::Kind::credential || now.kind == Giver::Kind::variable) {
        fault.key = declaration.keys()[now.part].label();
        if (now.kind == Giver::Kind::variable) what.insert(0, "its file ");
    }
    fault.message = utils::one_line(fault.source) + ": " + what;
    return fault;
}

// Adds errors for all that gave something at an earlier load and gives nothing now, though it was not
// taken out: files are empty for a moment while they are written. Where an error says already what is
// wrong with it, there is no second one.
void add_gone(const std::vector<Giver>& before, Values::Data& data) {
    std::set<Giver, bool (*)(const Giver&, const Giver&)> empty(&is_before);
    for (const Giver& giver : data.givers) {
        if (giver.state != State::gives) empty.insert(giver);
    }
    for (const Giver& giver : before) {
        const auto found = empty.find(giver);
        if (giver.state != State::gives || found == empty.end()) continue;
        Fault gone = fault_of_gone(giver, *found, *data.declaration);
        const auto says_it = [&gone](const Fault& fault) {
            return is_error(fault) && fault.kind == gone.kind && fault.source == gone.source &&
                   fault.key == gone.key;
        };
        if (std::none_of(data.faults.begin(), data.faults.end(), says_it))
            data.faults.push_back(std::move(gone));
    }
}

}  // namespace

Loading::Loading(const Declaration& declaration, const std::vector<Layer>& layers,
                 const LoadOptions& options)
    : declaration_(declaration),
      layers_(layers),
      options_(options),
      alone_(layers.size() == 1 && layers.front().source().is_document()),
      intake_(declaration.data_.share(), alone_) {}

Values::Data Loading::take_layers(bool strict, bool whole) {
    for (const Layer& layer : layers_) {
        intake_.begin_layer(strict ? OnFault::refuse : layer.source().on_fault());
        layer.source().give(intake_);
    }
    return intake_.finish(whole);
}

std::vector<Fault> Loading::faults() {
    Values::Data data = take_layers(false, false);
    intake_.say_what_holds(data);
    return std::move(data.faults);
}

Values Loading::load() {
    return finish(take_layers(false));
}

Values Loading::reload(const Values& now, const ReloadOptions& how) {
    const bool strict = !how.despite_faults;
    const auto fresh = std::make_shared<Values::Data>(take_layers(strict));
    const Values::Data& old = *now.data_;
    if (!how.despite_missing_files) add_gone(old.givers, *fresh);
    if (strict) {
        for (Fault& fault : fresh->faults) {
            if (fault.severity == Severity::warning) fault.severity = Severity::error;
        }
    }
    if (has_error(fresh->faults)) throw LoadError(Values(fresh));

    Values::Data mixed = *fresh;
    const auto& keys = declaration_.data_->keys();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (keys[i].key().restart() <= how.granted || *old.held[i] == *fresh->held[i]) continue;
        mixed.given[i] = old.given[i];
        mixed.pending = fresh;
    }
    const auto& sections = declaration_.data_->sections();
    for (std::size_t i = 0; i < sections.size(); ++i) {
        if (sections[i].section->setting().restart() <= how.granted ||
            same(old.raws[i], fresh->raws[i]))
            continue;
        mixed.raws[i] = old.raws[i];
        mixed.pending = fresh;
    }
    mixed.hold();
    if (mixed.pending != nullptr) bind(*fresh);
    return finish(std::move(mixed));
}

void Loading::bind(Values::Data& data) const {
    if (declaration_.uses_->bind) data.bound = declaration_.uses_->bind(data);
}

Values Loading::finish(Values::Data data) {
    const auto shared = std::make_shared<Values::Data>(std::move(data));
    Values now(shared);
    std::vector<Fault>& faults = shared->faults;
    intake_.say_what_holds(*shared);
    if (!has_error(faults)) {
        bind(*shared);
        make_checks(now, Severity::error, faults);
    }
    if (has_error(faults)) throw LoadError(std::move(now));
    if (shared->pending != nullptr) make_checks(Values(shared->pending), Severity::warning, faults);
    for (const Fault& fault : faults) {
        // A file alone is warned of in the component's own words.
        options_.report ? options_.report(fault)
                        : log_fault(fault, !(alone_ && is_of_component(fault)));
    }
    return now;
}

void Loading::make_checks(const Values& values, Severity severity,
                          std::vector<Fault>& faults) const {
    const Values::Data& data = *values.data_;
    for (const auto& [labels, check] : declaration_.uses_->checks) {
        const std::string wrong = check(values);
        if (wrong.empty()) continue;
        Fault fault{.kind = FaultKind::failed_check,
                    .severity = severity,
                    .key = labels.front(),
                    .source = {},
                    .message = severity == Severity::error ? "" : "A restart would fail: "};
        fault.message += utils::joined(labels) + ": " + utils::one_line(wrong);
        std::vector<std::string> origins;
        bool waits = false;
        for (const std::string& label : labels) {
            const std::size_t key = declaration_.data_->key_at(label);
            origins.push_back(origin_of(data, key));
            if (data.is_pending(key)) {
                waits = true;
            } else if (fault.line == 0) {
                intake_.place_at_held(key, fault);
            }
        }
        fault.note = utils::joined(origins);
        if (data.pending != nullptr && !waits) fault.note += "; others wait for a restart";
        faults.push_back(std::move(fault));
    }
}

std::string Loading::origin_of(const Values::Data& data, std::size_t key) const {
    const JudgedKey& judged = declaration_.data_->keys()[key];
    const std::string value = judged.label() + " is " + judged.shown(*data.held[key]);
    if (data.is_pending(key)) return value + " until a restart";
    const GivenValue* held = held_of(data.given[key]);
    return value + (held != nullptr ? " from " + utils::one_line(held->place()) : " by default");
}

}  // namespace velmora::app
