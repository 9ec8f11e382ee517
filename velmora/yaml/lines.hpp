// The lines of a text, found without reading all of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "velmora/yaml/located.hpp"

namespace velmora::yaml {

class Lines {
public:
    /// Of a text in UTF-8 below 2 GiB, which must outlive this.
    explicit Lines(std::string_view text);

    /// Both throw std::out_of_range beyond the end of the text.
    Position position(std::size_t offset) const;
    std::string_view line_at(std::size_t offset) const;

private:
    // What lies before a place: whole lines, and characters on the line that it is on.
    struct Mark {
        std::uint32_t lines = 0;
        std::uint32_t line_start = 0;
        std::uint32_t characters = 0;
    };

    void advance(Mark& mark, std::size_t from, std::size_t to) const;
    Mark mark_at(std::size_t offset) const;

    std::string_view text_;
    std::vector<Mark> marks_;  // At the start of each block of the text.
};

}  // namespace velmora::yaml
