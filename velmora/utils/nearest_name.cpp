#include "velmora/utils/nearest_name.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "velmora/utils/quoting.hpp"

namespace velmora::utils {

namespace {

// How many characters must be put in, left out or replaced, or neighbours swapped, to make `a` of
// `b`.
std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> before_last(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::swap(before_last, last);
        std::swap(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], before_last[j - 2] + 1);
        }
    }
    return row.back();
}

}  // namespace

std::string_view nearest_name(std::string_view name, const std::vector<std::string_view>& known) {
    const std::size_t most = std::max<std::size_t>(1, name.size() / 3);
    std::size_t least = most + 1;
    std::string_view nearest;
    for (const std::string_view each : known) {
        const auto [shorter, longer] = std::minmax({name.size(), each.size()});
        if (longer - shorter >= least) continue;
        const std::size_t distance = edit_distance(name, each);
        if (distance >= least) continue;
        least = distance;
        nearest = each;
    }
    return nearest;
}

std::string did_you_mean(std::string_view name, const std::vector<std::string_view>& known) {
    const std::string_view nearest = nearest_name(name, known);
    return nearest.empty() ? "" : "; did you mean " + quoted_text(nearest) + "?";
}

}  // namespace velmora::utils
