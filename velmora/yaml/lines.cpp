#include "velmora/yaml/lines.hpp"

#include <algorithm>
#include <stdexcept>

namespace velmora::yaml {

namespace {

constexpr std::size_t block = 256;

constexpr bool begins_character(char c) noexcept {
    return (static_cast<unsigned char>(c) & 0xc0U) != 0x80U;
}

}  // namespace

Lines::Lines(std::string_view text) : text_(text) {
    marks_.reserve(text.size() / block + 1);
    marks_.push_back({});
    for (std::size_t end = block; end <= text.size(); end += block) {
        Mark mark = marks_.back();
        advance(mark, end - block, end);
        marks_.push_back(mark);
    }
}

void Lines::advance(Mark& mark, std::size_t from, std::size_t to) const {
    std::string_view part = text_.substr(from, to - from);
    if (const std::size_t last = part.rfind('\n'); last != std::string_view::npos) {
        mark.lines += static_cast<std::uint32_t>(std::count(part.begin(), part.end(), '\n'));
        mark.line_start = static_cast<std::uint32_t>(from + last + 1);
        mark.characters = 0;
        part.remove_prefix(last + 1);
    }
    mark.characters +=
        static_cast<std::uint32_t>(std::count_if(part.begin(), part.end(), begins_character));
}

Lines::Mark Lines::mark_at(std::size_t offset) const {
    if (offset > text_.size()) throw std::out_of_range("beyond the end of the text");
    Mark mark = marks_[offset / block];
    advance(mark, offset / block * block, offset);
    return mark;
}

Position Lines::position(std::size_t offset) const {
    const Mark mark = mark_at(offset);
    return {.line = std::size_t{mark.lines} + 1, .column = std::size_t{mark.characters} + 1};
}

std::string_view Lines::line_at(std::size_t offset) const {
    const Mark mark = mark_at(offset);
    // The line ends before the first block that begins on another line, in the block before that.
    const auto behind =
        std::upper_bound(marks_.begin(), marks_.end(), mark.lines,
                         [](std::uint32_t lines, const Mark& each) { return lines < each.lines; });
    const auto last = static_cast<std::size_t>(behind - marks_.begin() - 1) * block;
    const std::size_t end = text_.find('\n', std::max(offset, last));
    return text_.substr(mark.line_start, end - mark.line_start);
}

}  // namespace velmora::yaml
