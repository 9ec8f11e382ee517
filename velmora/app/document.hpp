// A YAML text that was read, and what of it nobody must see. Private.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/app/fault.hpp"
#include "velmora/yaml/located.hpp"

namespace velmora::app {

class Document {
public:
    explicit Document(yaml::LocatedValue located) : located_(std::move(located)) {}

    const yaml::LocatedValue& located() const noexcept { return located_; }

    /// Hides the bytes from one place up to another.
    void hide(std::size_t from, std::size_t to) { hidden_.emplace_back(from, to); }
    /// Says that there may be a secret in the value that begins here.
    void doubt(std::size_t value) { doubted_.push_back(value); }
    /// Ends all that, and comes before all questions.
    void settle();
    bool is_doubted(std::size_t value) const;

    /// Says that the fault is here, and shows the line but for what is hidden.
    void place(yaml::Span span, Fault& fault) const;

    bool is_alias(yaml::Span span) const {
        return located_.text().substr(span.offset).starts_with('*');
    }

private:
    bool hides(std::size_t offset) const;

    yaml::LocatedValue located_;
    std::vector<std::pair<std::size_t, std::size_t>> hidden_;  // Apart, in order.
    std::vector<std::size_t> doubted_;                         // In order.
};

}  // namespace velmora::app
