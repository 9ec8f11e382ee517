#include "velmora/app/placing.hpp"

namespace velmora::app {

void place_at(yaml::Span span, const yaml::LocatedValue& document, Shown shown, Fault& fault) {
    const auto [line, column] = document.position(span.offset);
    const std::string_view text = document.line_at(span.offset);
    fault.line = line;
    fault.column = column;
    const auto line_start = static_cast<std::size_t>(text.data() - document.text().data());
    if (shown == Shown::line || (shown == Shown::part && span.size != 0))
        fault.excerpt.emplace(text, span.offset - line_start, span.size, shown == Shown::part);
}

}  // namespace velmora::app
