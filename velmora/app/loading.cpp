#include "velmora/app/loading.hpp"

#include <algorithm>
#include <utility>

#include "velmora/app/source.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {

namespace {

bool has_error(const std::vector<Fault>& faults) {
    return std::any_of(faults.begin(), faults.end(),
                       [](const Fault& fault) { return fault.severity == Severity::error; });
}

}  // namespace

Values Loading::load(const std::vector<Layer>& layers, const LoadOptions& options) const {
    const bool alone = layers.size() == 1 && layers.front().source().is_document();
    Intake intake(declaration_.data_.share(), alone);
    for (const Layer& layer : layers) {
        intake.begin_layer(layer.source().on_fault());
        layer.source().give(intake);
    }
    const auto data = std::make_shared<Values::Data>(intake.finish());
    Values now(data);
    if (!has_error(data->faults)) {
        if (declaration_.uses_->bind) data->bound = declaration_.uses_->bind(*data);
        make_checks(now, intake, data->faults);
    }
    if (has_error(data->faults)) throw LoadError(data->faults);
    for (const Fault& fault : data->faults) {
        // A file alone is warned of in the component's own words.
        options.report ? options.report(fault)
                       : log_fault(fault, !(alone && is_of_component(fault)));
    }
    return now;
}

void Loading::make_checks(const Values& now, const Intake& intake,
                          std::vector<Fault>& faults) const {
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
            if (fault.line == 0) intake.place_at_held(key, fault);
        }
        fault.note = utils::joined(origins);
        faults.push_back(std::move(fault));
    }
}

std::string Loading::origin_of(const Values::Data& data, std::size_t key) const {
    const JudgedKey& judged = declaration_.data_->keys()[key];
    const GivenValue* held = held_of(data.given[key]);
    return judged.label() + " is " + judged.shown(*data.held[key]) +
           (held != nullptr ? " from " + utils::one_line(held->place()) : " by default");
}

}  // namespace velmora::app
