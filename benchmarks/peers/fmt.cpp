#include <fmt/format.h>

#include "../by_hand.hpp"
#include "../contender.hpp"
#include "../numbers.hpp"
#include "../texts.hpp"

namespace bench {

namespace {

struct Appender {
    fmt::memory_buffer& out;

    void operator()(std::monostate) const { write("{}", "None"); }
    void operator()(bool flag) const { write("{}", flag ? "True" : "False"); }
    void operator()(const std::string& text) const { write("{:?}", text); }
    void operator()(const Values&) const { throw std::invalid_argument("a list in a list"); }
    void operator()(auto number) const { write("{}", number); }

    template <class T>
    void write(fmt::format_string<const T&> format, const T& value) const {
        fmt::format_to(fmt::appender(out), format, value);
    }
};

std::string form(const Values& list) {
    fmt::memory_buffer out;
    out.push_back('[');
    for (const Value& value : list) {
        if (out.size() > 1) out.append(std::string_view(", "));
        std::visit(Appender{out}, value);
    }
    out.push_back(']');
    return fmt::to_string(out);
}

const Contender show_int("show_int/fmt", [](Run& run) {
    run.each(integers(), bare_integer_texts(),
             [](std::int64_t integer) { return fmt::to_string(integer); });
});

const Contender show_double("show_double/fmt", [](Run& run) {
    run.each(reals(), real_texts(), [](double real) { return fmt::to_string(real); });
});

const Contender show_list("show_list/fmt", [](Run& run) {
    run.once([] { return form(mixed_values()); }, form_by_hand(mixed_values()), respelled);
});

}  // namespace

}  // namespace bench
