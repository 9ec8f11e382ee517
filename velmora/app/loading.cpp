#include "velmora/app/loading.hpp"

#include <algorithm>
#include <utility>

#include "velmora/app/source.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {

namespace {

bool is_error(const Fault& fault) {
    return fault.severity == Severity::error;
}

bool has_error(const std::vector<Fault>& faults) {
    return std::any_of(faults.begin(), faults.end(), is_error);
}

// Adds the files that had something in them at an earlier load and are gone now, or empty as those are
// that are being written; unless an error about them, or the folder that they were in, says why.
void add_missing_files(const std::vector<std::string>& before, Values::Data& data) {
    for (const std::string& path : before) {
        const bool explained =
            std::any_of(data.faults.begin(), data.faults.end(), [&path](const Fault& fault) {
                return is_error(fault) && fault.kind == FaultKind::unusable_source &&
                       path.starts_with(fault.source);
            });
        if (explained || utils::is_one_of(path, data.files)) continue;
        data.faults.push_back(
            {.kind = FaultKind::unusable_source,
             .severity = Severity::error,
             .key = {},
             .source = path,
             .message = utils::one_line(path) + ": is gone or empty, which it was not before",
             .note = "to do without its values, restart"});
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

Values::Data Loading::take_layers(bool strict) {
    for (const Layer& layer : layers_) {
        intake_.begin_layer(strict ? OnFault::refuse : layer.source().on_fault());
        layer.source().give(intake_);
    }
    return intake_.finish();
}

Values Loading::load() {
    return finish(take_layers(false));
}

Values Loading::reload(const Values& now, const ReloadOptions& how) {
    const bool strict = !how.despite_faults;
    const auto fresh = std::make_shared<Values::Data>(take_layers(strict));
    const Values::Data& old = *now.data_;
    if (!how.despite_missing_files) add_missing_files(old.files, *fresh);
    if (strict) {
        for (Fault& fault : fresh->faults) {
            if (fault.severity == Severity::warning) fault.severity = Severity::error;
        }
    }
    if (has_error(fresh->faults)) throw LoadError(std::move(fresh->faults));

    Values::Data mixed = *fresh;
    const auto& keys = declaration_.data_->keys();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (keys[i].key().restart() <= how.granted || *old.held[i] == *fresh->held[i]) continue;
        mixed.given[i] = old.given[i];
        mixed.pending = fresh;
    }
    const auto& sections = declaration_.sections();
    for (std::size_t i = 0; i < sections.size(); ++i) {
        if (sections[i].setting().restart() <= how.granted || same(old.raws[i], fresh->raws[i]))
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
    if (has_error(faults)) throw LoadError(faults);
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
