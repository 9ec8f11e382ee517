#include "velmora/app/raw.hpp"

#include "velmora/app/placing.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::app {

Fault Raw::fault_at(yaml::Span span, const std::string& message) const {
    Fault fault{.kind = FaultKind::of_application,
                .severity = Severity::warning,
                .key = {},
                .source = source_,
                .message = utils::one_line(message)};
    if (document_) place_at(span, *document_, secret_ ? Shown::part : Shown::line, fault);
    return fault;
}

Fault Raw::fault(const config::Mapping& in, const config::Mapping::Entry& entry,
                 const std::string& message) const {
    return fault_at(document_ ? document_->value_span(in, entry) : yaml::Span(), message);
}

Fault Raw::fault(const config::List& in, std::size_t index, const std::string& message) const {
    return fault_at(document_ ? document_->item_span(in, index) : yaml::Span(), message);
}

}  // namespace velmora::app
