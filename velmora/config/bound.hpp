// The numbers that a key accepts.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <utility>

#include "velmora/config/number.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

/// The arguments of a `Bound` that may be left out, given by name.
struct BoundOptions {
    std::optional<Number> high = std::nullopt;
    bool low_open = false;
};

/// The numbers from `low`, which `low_open` excludes, up to and including `high`, where there is
/// one. Ends are kept as they are given; a bound whose `low` lies above its `high` admits nothing.
class VELMORA_EXPORT Bound {
public:
    template <std::same_as<bool> Flag = bool>
    explicit Bound(Number low, std::optional<Number> high = std::nullopt, Flag low_open = false)
        : low_(std::move(low)), high_(std::move(high)), low_open_(low_open) {
        settle();
    }
    Bound(Number low, BoundOptions options)
        : Bound(std::move(low), std::move(options.high), options.low_open) {}

    const Number& low() const noexcept { return low_; }
    const std::optional<Number>& high() const noexcept { return high_; }
    bool low_open() const noexcept { return low_open_; }

    /// Whether `value` is in range, compared exactly; NaN never is. A flag counts as 1 or 0. Throws
    /// TypeError for a value that is neither a number nor a flag.
    bool admits(const ConfigValue& value) const {
        if (const auto* integer = integers_ ? value.get_if<Integer>() : nullptr) {
            if (const auto whole = integer->as<std::int64_t>())
                return *whole >= integers_->first && *whole <= integers_->second;
        }
        if (const auto* real = doubles_ ? value.get_if<double>() : nullptr) {
            const bool high_enough = low_open_ ? *real > doubles_->first : *real >= doubles_->first;
            return high_enough && *real <= doubles_->second;
        }
        return admits_any(value);
    }

    /// The bound as the end of a sentence: "above 0", "at least 1 and at most 65535". Throws
    /// OverflowError when an end is an integer beyond the range of doubles.
    std::string text() const;

    friend bool operator==(const Bound& a, const Bound& b) {
        return a.low_ == b.low_ && a.high_ == b.high_ && a.low_open_ == b.low_open_;
    }

private:
    void settle();
    bool admits_any(const ConfigValue& value) const;

    Number low_;
    std::optional<Number> high_;
    bool low_open_;
    /// The same range, where built-in numbers say it exactly: the least and the greatest integer,
    /// and the two ends as doubles.
    std::optional<std::pair<std::int64_t, std::int64_t>> integers_ = std::nullopt;
    std::optional<std::pair<double, double>> doubles_ = std::nullopt;
};

inline const Bound POSITIVE(0, {.low_open = true});
inline const Bound NON_NEGATIVE(0);
inline const Bound PROBABILITY(0, 1);

VELMORA_EXPORT std::string display(const Bound& bound);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const Bound& bound);

}  // namespace velmora::config

template <>
struct VELMORA_EXPORT std::hash<velmora::config::Bound> {
    std::size_t operator()(const velmora::config::Bound& bound) const;
};
