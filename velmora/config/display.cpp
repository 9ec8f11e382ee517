#include "velmora/config/display.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ostream>

#include "velmora/utils/hash.hpp"
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

// Appends the form of a value that is no list or mapping, the beginning of it when that is enough.
inline void append_scalar(std::string& out, const ConfigValue& value, std::size_t enough) {
    if (const auto* text = value.get_if<std::string>()) {
        utils::append_quoted(out, *text, enough);
    } else if (const auto* integer = value.get_if<Integer>()) {
        integer->append_text(out, enough);
    } else if (const auto* real = value.get_if<double>()) {
        append_double(out, *real);
    } else if (const auto* flag = value.get_if<bool>()) {
        out += *flag ? "True" : "False";
    } else {
        out += "None";
    }
}

// The identities of lists and mappings, which leave in the opposite order of their coming. So a
// table of which each takes the first free place from its own on is as before when one has left.
class Identities {
public:
    // False when it is there already.
    bool insert(const void* identity) {
        if (places_.size() < 2 * (order_.size() + 1)) grow();
        const void*& place = place_of(identity);
        if (place != nullptr) return false;
        order_.push_back(identity);
        place = identity;
        return true;
    }

    void erase_last() {
        place_of(order_.back()) = nullptr;
        order_.pop_back();
    }

private:
    void grow() {
        places_.assign(std::max(std::size_t{64}, 4 * places_.size()), nullptr);
        for (const void* identity : order_) place_of(identity) = identity;
    }

    const void*& place_of(const void* identity) {
        const std::size_t last = places_.size() - 1;
        std::size_t place = utils::hash_integer(std::bit_cast<std::intptr_t>(identity)) & last;
        while (places_[place] != nullptr && places_[place] != identity) place = (place + 1) & last;
        return places_[place];
    }

    std::vector<const void*> places_;  // A power of two, at most half of them taken.
    std::vector<const void*> order_;
};

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
        char end = 0;  // Its closing bracket.
        bool circular = false;
        const ConfigValue* items = nullptr;
        const Mapping::Entry* entries = nullptr;
        std::size_t children = 0;
        std::size_t next = 0;

        bool list() const { return end == ']'; }
        const ConfigValue& child() const {
            if (list()) return items[next];
            const Mapping::Entry& entry = entries[next / 2];
            return next % 2 == 0 ? entry.key : entry.value;
        }
    };

    void begin(const ConfigValue& value) {
        if (const auto* list = value.get_if<List>()) {
            if (Open* open = begin_children(*list, "[...]")) {
                open->items = list->begin();
                open->children = list->size();
            }
        } else if (const auto* mapping = value.get_if<Mapping>()) {
            if (Open* open = begin_children(*mapping, "{...}")) {
                open->entries = mapping->begin();
                open->children = 2 * mapping->size();
            }
        } else {
            append_scalar(out_, value, enough_);
        }
    }

    // Null when it is being written already, and `again` stands for it.
    template <class T>
    Open* begin_children(const T& object, std::string_view again) {
        const bool circular = object.may_contain_itself();
        if (circular && !identities_.insert(object.identity())) {
            out_ += again;
            return nullptr;
        }
        out_ += again.front();
        // What is shown of a deep value opens eighty: three steps, where doubling takes eight.
        if (open_.size() == open_.capacity()) open_.reserve(4 * (open_.size() + 1));
        Open& open = open_.emplace_back();
        open.end = again.back();
        open.circular = circular;
        return &open;
    }

    void go_on() {
        Open& open = open_.back();
        if (open.next == open.children) {
            out_ += open.end;
            if (open.circular) identities_.erase_last();
            open_.pop_back();
            return;
        }
        if (open.next > 0) out_ += !open.list() && open.next % 2 == 1 ? ": " : ", ";
        const ConfigValue& child = open.child();
        ++open.next;
        begin(child);
    }

    std::string& out_;
    std::size_t enough_;
    std::vector<Open> open_;
    Identities identities_;  // Of those open that may contain themselves.
};

inline void append_display(std::string& out, const ConfigValue& value, std::size_t enough) {
    if (shares_state(value)) {
        Writer(out, enough).write(value);
    } else {
        append_scalar(out, value, enough);
    }
}

}  // namespace

std::string display(const ConfigValue& value) {
    if (const auto* integer = value.get_if<Integer>()) return integer->text();
    std::string out;
    append_display(out, value, std::string::npos);
    return out;
}

std::string plain_text(const ConfigValue& value) {
    const auto* text = value.get_if<std::string>();
    return text != nullptr ? *text : display(value);
}

std::string _shown(const ConfigValue& value) {
    std::string out;
    append_display(out, value, utils::shown_bytes);
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
