#include "velmora/app/document.hpp"

#include <algorithm>

#include "velmora/utils/unicode.hpp"

namespace velmora::app {

void Document::settle() {
    std::sort(hidden_.begin(), hidden_.end());
    std::vector<std::pair<std::size_t, std::size_t>> apart;
    for (const auto& [from, to] : hidden_) {
        if (!apart.empty() && from <= apart.back().second) {
            apart.back().second = std::max(apart.back().second, to);
        } else {
            apart.emplace_back(from, to);
        }
    }
    hidden_.swap(apart);
    std::sort(doubted_.begin(), doubted_.end());
}

bool Document::is_doubted(std::size_t value) const {
    return std::binary_search(doubted_.begin(), doubted_.end(), value);
}

bool Document::hides(std::size_t offset) const {
    const auto behind = std::partition_point(
        hidden_.begin(), hidden_.end(), [&](const auto& each) { return each.second <= offset; });
    return behind != hidden_.end() && behind->first <= offset;
}

void Document::place(yaml::Span span, Fault& fault) const {
    const auto [line, column] = located_.position(span.offset);
    const std::string_view text = located_.line_at(span.offset);
    fault.line = line;
    fault.column = column;
    const auto start = static_cast<std::size_t>(text.data() - located_.text().data());
    if (hidden_.empty()) {
        fault.excerpt.emplace(text, span.offset - start, span.size);
        return;
    }
    // More than an excerpt shows, and less than a long line.
    constexpr std::size_t enough = 256;
    const std::size_t marked = span.offset - start;
    std::size_t at = marked - std::min(marked, enough);
    const std::size_t end = std::min(text.size(), marked + std::min(span.size, enough) + enough);
    std::string shown;
    std::size_t mark = 0;
    std::size_t open_end = 0;
    for (std::size_t size = 0; at < end; at += size) {
        if (at <= marked) mark = shown.size();
        size = utils::first_character(text.substr(at)).size;
        if (hides(start + at)) {
            shown += ' ';
        } else {
            shown += text.substr(at, size);
            open_end = shown.size();
        }
    }
    if (marked == end) mark = shown.size();
    shown.resize(std::max(mark, open_end));
    fault.excerpt.emplace(shown, mark, hides(span.offset) ? 0 : span.size);
}

}  // namespace velmora::app
