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

bool is_refused(const std::vector<Fault>& faults, bool strict) {
    return strict ? !faults.empty() : std::any_of(faults.begin(), faults.end(), is_error);
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
             .note = "to do without its values, leave a comment in it, or restart"});
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
    return finish(take_layers(false), false);
}

Values Loading::reload(const Values& now, const ReloadOptions& how) {
    const bool strict = !how.despite_faults;
    const auto fresh = std::make_shared<Values::Data>(take_layers(strict));
    const Values::Data& old = *now.data_;
    if (!how.despite_missing_files) add_missing_files(old.files, *fresh);
    if (is_refused(fresh->faults, strict)) throw LoadError(std::move(fresh->faults));

    Values::Data mixed = *fresh;
    const auto waits = [&](const auto& before, const auto& after, config::Restart restart) {
        const bool does = restart > how.granted && !(before == after);
        if (does) mixed.pending = fresh;
        return does;
    };
    const auto& keys = declaration_.data_->keys();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (!waits(*old.held[i], *fresh->held[i], keys[i].key().restart())) continue;
        mixed.given[i] = old.given[i];
        intake_.forget_place(i);
    }
    const auto& sections = declaration_.sections();
    for (std::size_t i = 0; i < sections.size(); ++i) {
        if (waits(old.raws[i].value(), fresh->raws[i].value(), sections[i].setting().restart()))
            mixed.raws[i] = old.raws[i];
    }
    mixed.hold();
    return finish(std::move(mixed), strict);
}

Values Loading::finish(Values::Data data, bool strict) {
    const auto shared = std::make_shared<Values::Data>(std::move(data));
    Values now(shared);
    std::vector<Fault>& faults = shared->faults;
    if (!is_refused(faults, strict)) {
        if (declaration_.uses_->bind) shared->bound = declaration_.uses_->bind(*shared);
        make_checks(now, faults);
    }
    if (is_refused(faults, strict)) throw LoadError(faults);
    for (const Fault& fault : faults) {
        // A file alone is warned of in the component's own words.
        options_.report ? options_.report(fault)
                        : log_fault(fault, !(alone_ && is_of_component(fault)));
    }
    return now;
}

void Loading::make_checks(const Values& now, std::vector<Fault>& faults) const {
    for (const auto& [labels, check] : declaration_.uses_->checks) {
        const std::string wrong = check(now);
        if (wrong.empty()) continue;
        Fault fault{.kind = FaultKind::failed_check,
                    .severity = Severity::error,
                    .key = labels.front(),
                    .source = {},
                    .message = utils::joined(labels) + ": " + utils::one_line(wrong)};
        std::vector<std::string> origins;
        for (const std::string& label : labels) {
            const std::size_t key = declaration_.data_->key_at(label);
            origins.push_back(origin_of(*now.data_, key));
            if (fault.line == 0) intake_.place_at_held(key, fault);
        }
        fault.note = utils::joined(origins);
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
