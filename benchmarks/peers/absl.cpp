#include <absl/strings/numbers.h>
#include <absl/strings/str_split.h>
#include <absl/strings/strip.h>

#include "../contender.hpp"
#include "../numbers.hpp"
#include "../texts.hpp"

namespace bench {

namespace {

const Contender to_int("text_to_int/absl", [](Run& run) {
    const auto parse = [](const std::string& text, std::int64_t& integer) {
        return absl::SimpleAtoi(text, &integer);
    };
    run.each(bare_integer_texts(), integers(),
             [&](const std::string& text) { return parse_with<std::int64_t>(parse, text); });
});

const Contender to_float("text_to_float/absl", [](Run& run) {
    const auto parse = [](const std::string& text, double& real) {
        return absl::SimpleAtod(text, &real);
    };
    run.each(real_texts(), reals(),
             [&](const std::string& text) { return parse_with<double>(parse, text); });
});

const Contender to_list("text_to_list/absl", [](Run& run) {
    run.once(
        [] {
            Texts items = absl::StrSplit(five_items_text(), ',', absl::SkipWhitespace());
            for (std::string& item : items) absl::StripAsciiWhitespace(&item);
            return items;
        },
        five_items());
});

}  // namespace

}  // namespace bench
