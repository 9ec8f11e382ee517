#include "velmora/config/display.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <ostream>
#include <unordered_set>
#include <vector>

#include "velmora/utils/quoting.hpp"

namespace velmora::config {

namespace {

void append_double(std::string& out, double value) {
    if (std::isnan(value)) {
        out += "nan";
        return;
    }
    if (std::signbit(value)) out += '-';
    if (std::isinf(value)) {
        out += "inf";
        return;
    }
    // Shortest digits that read back: d.ddde+xx.
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                   std::chars_format::scientific);
    const std::string_view text(buffer.data(), end.ptr);
    const std::size_t mark = text.find('e');
    int exponent = 0;
    const std::size_t magnitude = mark + 2;
    std::from_chars(text.data() + magnitude, text.data() + text.size(), exponent);
    if (text[mark + 1] == '-') exponent = -exponent;
    if (exponent < -4 || exponent >= 16) {
        out += text;
        return;
    }
    std::string digits(text.substr(0, 1));
    if (mark > 1) digits += text.substr(2, mark - 2);
    if (exponent < 0) {
        out += "0.";
        out.append(static_cast<std::size_t>(-exponent - 1), '0');
        out += digits;
        return;
    }
    const std::size_t whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= whole) digits.append(whole + 1 - digits.size(), '0');
    out.append(digits, 0, whole);
    out += '.';
    out.append(digits, whole);
}

// Writes a display form up to `enough` bytes, without recursion: a value may be nested without
// limit.
class Writer {
public:
    Writer(std::string& out, std::size_t enough) : out_(out), enough_(enough) {}

    void write(const ConfigValue& value) {
        begin(value);
        while (!open_.empty() && out_.size() < enough_) go_on();
    }

private:
    // A list or mapping that is being written. Of a mapping, keys and values take turns as
    // children.
    struct Open {
        bool list;
        const ConfigValue* items;
        const Mapping::Entry* entries;
        std::size_t children;
        const void* identity;
        std::size_t next = 0;

        const ConfigValue& child() const {
            if (list) return items[next];
            const Mapping::Entry& entry = entries[next / 2];
            return next % 2 == 0 ? entry.key : entry.value;
        }
    };

    void begin(const ConfigValue& value) {
        value.visit([this](const auto& held) { begin_held(held); });
    }

    void begin_held(std::monostate) { out_ += "None"; }
    void begin_held(bool flag) { out_ += flag ? "True" : "False"; }
    void begin_held(const Integer& integer) { integer.append_text(out_, enough_); }
    void begin_held(double real) { append_double(out_, real); }
    void begin_held(const std::string& text) { utils::append_quoted(out_, text, enough_); }
    void begin_held(const List& list) {
        begin_children("[", "[...]", {true, list.begin(), nullptr, list.size(), list.identity()});
    }
    void begin_held(const Mapping& mapping) {
        begin_children("{", "{...}",
                       {false, nullptr, mapping.begin(), 2 * mapping.size(), mapping.identity()});
    }

    void begin_children(std::string_view bracket, std::string_view again, Open open) {
        if (!identities_.insert(open.identity).second) {
            out_ += again;
            return;
        }
        out_ += bracket;
        open_.push_back(open);
    }

    void go_on() {
        Open& open = open_.back();
        if (open.next == open.children) {
            out_ += open.list ? ']' : '}';
            identities_.erase(open.identity);
            open_.pop_back();
            return;
        }
        if (open.next > 0) out_ += !open.list && open.next % 2 == 1 ? ": " : ", ";
        const ConfigValue& child = open.child();
        ++open.next;
        begin(child);
    }

    std::string& out_;
    std::size_t enough_;
    std::vector<Open> open_;
    std::unordered_set<const void*> identities_;
};

}  // namespace

std::string display(const ConfigValue& value) {
    std::string out;
    Writer(out, std::string::npos).write(value);
    return out;
}

std::string plain_text(const ConfigValue& value) {
    const auto* text = value.get_if<std::string>();
    return text != nullptr ? *text : display(value);
}

std::string _shown(const ConfigValue& value) {
    std::string out;
    Writer(out, utils::shown_bytes).write(value);
    return utils::cut(std::move(out));
}

bool shares_state(const ConfigValue& value) {
    return value.get_if<List>() != nullptr || value.get_if<Mapping>() != nullptr;
}

std::string display_record(std::string_view name,
                           const std::vector<std::pair<std::string_view, std::string>>& fields) {
    std::string out(name);
    out += '(';
    std::string_view separator;
    for (const auto& [field, form] : fields) {
        out.append(separator).append(field).append("=").append(form);
        separator = ", ";
    }
    return out += ')';
}

std::ostream& operator<<(std::ostream& out, const ConfigValue& value) {
    return out << display(value);
}
std::ostream& operator<<(std::ostream& out, const List& list) {
    return out << display(list);
}
std::ostream& operator<<(std::ostream& out, const Mapping& mapping) {
    return out << display(mapping);
}
std::ostream& operator<<(std::ostream& out, const Integer& integer) {
    return out << display(integer);
}
std::ostream& operator<<(std::ostream& out, const Number& number) {
    return out << display(number);
}

}  // namespace velmora::config
