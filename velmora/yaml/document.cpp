#include "velmora/yaml/document.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "velmora/utils/texts.hpp"

namespace velmora::yaml {

namespace {

std::size_t line_end(std::string_view text, std::size_t offset) {
    return std::min(text.find('\n', offset), text.size());
}

// Whether a line consists of "---" or "...", or goes on behind it with white space.
bool is_marker(std::string_view text, std::size_t line, std::string_view marker) {
    if (text.compare(line, marker.size(), marker) != 0) return false;
    const std::size_t end = line + marker.size();
    return end == text.size() || text[end] == '\n' || is_white(text[end]);
}

// What there is on a line, or the rest of one, beside white space and a comment.
std::string_view content_of(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line.starts_with('#') ? std::string_view() : line;
}

std::vector<std::string_view> words_of(std::string_view line) {
    std::vector<std::string_view> words;
    for (line = content_of(line); !line.empty(); line = content_of(line)) {
        words.push_back(line.substr(0, line.find_first_of(" \t")));
        line.remove_prefix(words.back().size());
    }
    return words;
}

bool is_version(std::string_view word) {
    const std::string_view minor = word.substr(std::min<std::size_t>(2, word.size()));
    return word.starts_with("1.") && !minor.empty() &&
           std::all_of(minor.begin(), minor.end(), utils::is_digit);
}

bool is_tag_handle(std::string_view word) {
    if (!word.starts_with('!') || !word.ends_with('!')) return false;
    return std::all_of(word.begin() + 1, word.end() - (word.size() > 1 ? 1 : 0), [](char c) {
        return utils::is_digit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-';
    });
}

class Finder {
public:
    explicit Finder(const Source& source) : source_(source), text_(source.text) {}

    Document find() {
        bool marked = false;
        while (!marked && pos_ < text_.size()) {
            const std::size_t end = line_end(text_, pos_);
            if (text_[pos_] == '%') {
                read_directive(text_.substr(pos_, end - pos_));
            } else if (is_marker(text_, pos_, "---")) {
                marked = true;
                break;
            } else if (is_marker(text_, pos_, "...") && first_directive_ == none) {
                check_rest_of_line(pos_ + 3);
            } else if (!content_of(text_.substr(pos_, end - pos_)).empty()) {
                break;
            }
            pos_ = std::min(end + 1, text_.size());
        }
        if (first_directive_ != none && !marked)
            source_.refuse(first_directive_,
                           "a line that begins with '%' needs a line '---' behind it: write that, "
                           "or quote the text");
        document_.directives = pos_;
        document_.start = pos_ + (marked ? 3 : 0);
        const std::size_t end = find_end();
        document_.text = text_.substr(0, end);
        check_behind(end);
        return std::move(document_);
    }

private:
    static constexpr std::size_t none = std::string_view::npos;

    void read_directive(std::string_view line) {
        if (first_directive_ == none) first_directive_ = pos_;
        const std::vector<std::string_view> words = words_of(line);
        if (words[0] == "%YAML") {
            if (words.size() != 2 || !is_version(words[1]) || std::exchange(has_version_, true))
                source_.refuse(pos_,
                               "'%YAML' takes one version, as in '%YAML 1.2', and stands once");
        } else if (words[0] == "%TAG") {
            if (words.size() != 3 || !is_tag_handle(words[1]) ||
                !document_.tag_prefixes.emplace(words[1], words[2]).second)
                source_.refuse(pos_,
                               "'%TAG' takes a handle and a prefix, as in '%TAG !e! "
                               "tag:example.com:', once for each handle");
        }
    }

    void check_rest_of_line(std::size_t offset) const {
        const auto rest = content_of(text_.substr(offset, line_end(text_, offset) - offset));
        if (!rest.empty()) {
            source_.refuse(static_cast<std::size_t>(rest.data() - text_.data()),
                           "text behind the end of the document");
        }
    }

    std::size_t find_end() const {
        std::size_t end = document_.start;
        while ((end = text_.find('\n', end)) != none) {
            ++end;
            if (is_marker(text_, end, "---") || is_marker(text_, end, "...")) return end;
        }
        return text_.size();
    }

    void check_behind(std::size_t line) const {
        while (line < text_.size()) {
            if (is_marker(text_, line, "---"))
                source_.refuse(line, "a second document: give it a file of its own");
            check_rest_of_line(line + (is_marker(text_, line, "...") ? 3 : 0));
            line = line_end(text_, line) + 1;
        }
    }

    const Source& source_;
    std::string_view text_;
    std::size_t pos_ = 0;
    std::size_t first_directive_ = none;
    bool has_version_ = false;
    Document document_;
};

}  // namespace

Document find_document(const Source& source) {
    return Finder(source).find();
}

}  // namespace velmora::yaml
