#include "velmora/app/fault.hpp"

#include <algorithm>
#include <ostream>
#include <utility>

#include "velmora/utils/logging.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::app {

namespace {

constexpr std::string_view ellipsis = "...";

std::size_t characters_in(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) text.remove_prefix(utils::first_character(text).size);
    return count;
}

// The last characters of `text`, `most` of them at most.
std::string_view last_characters(std::string_view text, std::size_t most) {
    constexpr std::size_t most_bytes_each = 4;
    if (text.size() > most * most_bytes_each)
        text.remove_prefix(text.size() - most * most_bytes_each);
    const std::size_t count = characters_in(text);
    if (count > most) text.remove_prefix(utils::prefix_size(text, count - most));
    return text;
}

// The first characters of `text`, `most` of them at most, fit for a terminal.
std::string beginning(std::string_view text, std::size_t most) {
    const std::size_t size = utils::prefix_size(text, most);
    return utils::one_line(text.substr(0, size)).append(size < text.size() ? ellipsis : "");
}

std::string_view weight_of(Severity severity) {
    switch (severity) {
        case Severity::advice:
            return "advice: ";
        case Severity::error:
            return "error: ";
        default:
            return "";
    }
}

utils::Level level_of(Severity severity) {
    switch (severity) {
        case Severity::advice:
            return utils::Level::info;
        case Severity::error:
            return utils::Level::error;
        default:
            return utils::Level::warning;
    }
}

std::string with_place(const Fault& fault) {
    std::string place;
    if (fault.line != 0)
        place = utils::one_line(fault.source) + ":" + std::to_string(fault.line) + ":" +
                std::to_string(fault.column) + ": ";
    return place + std::string(weight_of(fault.severity)) + fault.message;
}

}  // namespace

Excerpt::Excerpt(std::string_view line, std::size_t offset, std::size_t size) {
    constexpr std::size_t most_before = 60;
    constexpr std::size_t most_after = 40;
    offset = std::min(offset, line.size());
    const std::string_view before = line.substr(0, offset);
    const std::string_view kept = last_characters(before, most_before);
    if (kept.size() < before.size()) line_ = ellipsis;
    line_ += utils::one_line(kept);
    marker_.assign(characters_in(line_), ' ');
    const std::string marked = beginning(line.substr(offset, size), most_before);
    line_ += marked;
    line_ += beginning(line.substr(std::min(offset + size, line.size())), most_after);
    marker_ += "^";
    marker_.append(std::max<std::size_t>(characters_in(marked), 1) - 1, '~');
}

std::string one_line(const Fault& fault) {
    return with_place(fault) + (fault.note.empty() ? "" : " (" + fault.note + ")");
}

std::string text_of(const Fault& fault) {
    constexpr std::size_t number_width = 5;
    std::string text = with_place(fault) + "\n";
    const std::string number = std::to_string(fault.line);
    const std::string margin(std::max(number_width, number.size()), ' ');
    if (fault.excerpt) {
        text += margin.substr(number.size()) + number + " | " + fault.excerpt->line() + "\n";
        text += margin + " | " + fault.excerpt->marker() + "\n";
    }
    if (!fault.note.empty()) text += margin + " = " + fault.note + "\n";
    return text;
}

std::ostream& operator<<(std::ostream& out, const Fault& fault) {
    return out << text_of(fault);
}

bool is_of_component(const Fault& fault) noexcept {
    return fault.kind == FaultKind::refused_value || fault.kind == FaultKind::section_no_mapping;
}

void log_fault(const Fault& fault, bool with_place) {
    static utils::Logger& component = utils::logger("velmora.config.spec");
    static utils::Logger& own = utils::logger("velmora.app");
    (is_of_component(fault) ? component : own)
        .log(level_of(fault.severity), "%s", with_place ? one_line(fault) : fault.message);
}

}  // namespace velmora::app
