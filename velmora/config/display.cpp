#include "velmora/config/display.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <unordered_set>

#include "velmora/utils/quoting.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::config {

namespace {

// The shortest digits that read back, in the notation that shows their magnitude at a glance.
void append_double(std::string& out, double value) {
    if (std::isnan(value)) {
        out += "nan";
        return;
    }
    const double magnitude = std::abs(value);
    const bool fixed = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e16);
    std::array<char, 32> buffer;
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                      fixed ? std::chars_format::fixed : std::chars_format::scientific);
    const std::string_view text(buffer.data(), end.ptr);
    out += text;
    if (fixed && text.find('.') == std::string_view::npos) out += ".0";
}

// Writes a display form up to `enough` bytes, without recursion: a value may be nested without
// limit.
class Writer {
public:
    Writer(std::string& out, std::size_t enough) : out_(out), enough_(enough) {}

    void write(const ConfigValue& value) {
        begin(value);
        while (!open_.empty() && !is_enough()) go_on();
    }

private:
    // Of a form that is to be cut, one character more than is kept.
    bool is_enough() const {
        return enough_ != std::string::npos && out_.size() > utils::shown_characters &&
               utils::prefix_size(out_, utils::shown_characters) < out_.size();
    }

    // A list or mapping that is being written. Of a mapping, keys and values take turns as
    // children.
    struct Open {
        bool list;
        const ConfigValue* items;
        const Mapping::Entry* entries;
        std::size_t children;
        const void* identity;  // Null for what does not contain itself.
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
        begin_children("[", "[...]", {true, list.begin(), nullptr, list.size(), identity_of(list)});
    }
    void begin_held(const Mapping& mapping) {
        begin_children("{", "{...}",
                       {false, nullptr, mapping.begin(), 2 * mapping.size(), identity_of(mapping)});
    }

    template <class T>
    static const void* identity_of(const T& object) {
        return object.may_contain_itself() ? object.identity() : nullptr;
    }

    void begin_children(std::string_view bracket, std::string_view again, Open open) {
        if (open.identity != nullptr && !identities_.insert(open.identity).second) {
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
            if (open.identity != nullptr) identities_.erase(open.identity);
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
    return utils::cut(std::move(out), utils::shown_characters);
}

bool shares_state(const ConfigValue& value) {
    return value.get_if<List>() != nullptr || value.get_if<Mapping>() != nullptr;
}

std::string display_fields(std::string_view name,
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
