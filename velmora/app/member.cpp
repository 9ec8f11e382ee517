#include "velmora/app/member.hpp"

#include <array>
#include <charconv>
#include <stdexcept>

namespace velmora::app::detail {

std::string unit_text(std::intmax_t numerator, std::intmax_t denominator) {
    struct Unit {
        std::intmax_t numerator;
        std::intmax_t denominator;
        std::string_view name;
    };
    constexpr std::array<Unit, 8> units = {{{1, 1'000'000'000, "nanoseconds"},
                                            {1, 1'000'000, "microseconds"},
                                            {1, 1'000, "milliseconds"},
                                            {1, 1, "seconds"},
                                            {60, 1, "minutes"},
                                            {3'600, 1, "hours"},
                                            {86'400, 1, "days"},
                                            {604'800, 1, "weeks"}}};
    for (const Unit& unit : units) {
        if (unit.numerator == numerator && unit.denominator == denominator)
            return std::string(unit.name);
    }
    return "units of " + std::to_string(numerator) + "/" + std::to_string(denominator) + " seconds";
}

double shortest(float value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    double read = 0;
    std::from_chars(text.data(), end, read);
    return read;
}

void refuse_unnamed() {
    throw std::logic_error("names_of has named an enum's values differently than before");
}

template struct OperationsOn<bool>;
template struct OperationsOn<int>;
template struct OperationsOn<unsigned>;
template struct OperationsOn<std::uint16_t>;
template struct OperationsOn<std::int64_t>;
template struct OperationsOn<std::uint64_t>;
template struct OperationsOn<double>;
template struct OperationsOn<std::string>;
template struct OperationsOn<std::filesystem::path>;
template struct OperationsOn<std::vector<std::string>>;

}  // namespace velmora::app::detail
