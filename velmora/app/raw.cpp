#include "velmora/app/raw.hpp"

#include "velmora/app/document.hpp"
#include "velmora/app/judged_key.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::app {

const config::ConfigValue& Raw::value() const {
    if (secret_)
        throw config::ConfigKeyError("the section is secret: reveal() gives what it holds");
    return value_;
}

std::string Raw::shown() const {
    return secret_ && !value_.is_null() ? std::string(hidden_text) : display(value_);
}

const yaml::LocatedValue* Raw::document() const noexcept {
    return document_ != nullptr ? &document_->located() : nullptr;
}

Fault Raw::fault_at(yaml::Span span, const std::string& message) const {
    Fault fault{.kind = FaultKind::of_application,
                .severity = Severity::warning,
                .key = {},
                .source = source_,
                .message = utils::one_line(message)};
    if (document_ != nullptr) document_->place(span, fault);
    return fault;
}

Fault Raw::fault(const config::Mapping& in, const config::Mapping::Entry& entry,
                 const std::string& message) const {
    return fault_at(document_ ? document()->value_span(in, entry) : yaml::Span(), message);
}

Fault Raw::fault(const config::List& in, std::size_t index, const std::string& message) const {
    return fault_at(document_ ? document()->item_span(in, index) : yaml::Span(), message);
}

}  // namespace velmora::app
