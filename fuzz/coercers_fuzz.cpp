// Builds a value from bytes, shows it, and hands it to every coercer. The fuzzer and the replay of
// its corpus in the tests run the same body.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/config/spec.hpp"
#include "velmora/utils/unicode.hpp"

namespace {

using namespace velmora::config;

void require(bool holds, const char* what, const ConfigValue& value) {
    if (holds) return;
    std::fprintf(stderr, "%s: %s\n", what, _shown(value).c_str());
    std::abort();
}

// Reads a program of one-letter instructions that push values and gather them in lists and
// mappings.
class Builder {
public:
    explicit Builder(std::string_view bytes) : bytes_(bytes) {}

    ConfigValue build() {
        while (!bytes_.empty()) step(take(1)[0]);
        return gather(values_.size());
    }

private:
    std::string_view take(std::size_t size) {
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(taken.size());
        return taken;
    }

    std::uint64_t take_bits() {
        std::uint64_t bits = 0;
        for (const char byte : take(sizeof bits))
            bits = bits << 8U | static_cast<unsigned char>(byte);
        return bits;
    }

    std::string_view take_text() {
        const std::string_view size = take(1);
        return take(size.empty() ? 0 : static_cast<unsigned char>(size[0]));
    }

    List gather(std::size_t count) {
        const auto first =
            values_.end() - static_cast<std::ptrdiff_t>(std::min(count, values_.size()));
        List list(std::vector<ConfigValue>(first, values_.end()));
        values_.erase(first, values_.end());
        return list;
    }

    void step(char instruction) {
        switch (instruction) {
            case 'n':
                values_.emplace_back();
                break;
            case 't':
                values_.emplace_back(true);
                break;
            case 'f':
                values_.emplace_back(false);
                break;
            case 'i':
                values_.emplace_back(std::bit_cast<std::int64_t>(take_bits()));
                break;
            case 'd':
                values_.emplace_back(std::bit_cast<double>(take_bits()));
                break;
            case 'I':
                if (auto integer = Integer::parse(take_text()))
                    values_.emplace_back(*std::move(integer));
                break;
            case 's':
                values_.emplace_back(take_text());
                break;
            case 'l':
                values_.emplace_back(gather(take_text().size()));
                break;
            case 'm': {
                const List items = gather(2 * (take_bits() % 8));
                Mapping mapping;
                for (std::size_t i = 0; i + 1 < items.size(); i += 2)
                    mapping.set(items[i], items[i + 1]);
                values_.emplace_back(mapping);
                break;
            }
            case 'c':
                close_cycle();
                break;
            default:
                break;
        }
    }

    // Puts the value before the last one, which may contain the last one, into it. Few times only,
    // because every time may double what there is to show.
    void close_cycle() {
        if (values_.size() < 2 || ++cycles_ > 6) return;
        const ConfigValue item = values_[values_.size() - 2];
        if (const auto* list = values_.back().get_if<List>()) {
            List(*list).push_back(item);
        } else if (const auto* mapping = values_.back().get_if<Mapping>()) {
            Mapping(*mapping).set(item, values_.back());
        }
        std::swap(values_[values_.size() - 2], values_.back());
    }

    std::string_view bytes_;
    std::vector<ConfigValue> values_;
    int cycles_ = 0;
};

// Well-formed UTF-8 by the table of the Unicode Standard ("Well-Formed UTF-8 Byte Sequences").
bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const auto at = [&](std::size_t i) {
            return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
        };
        const unsigned lead = at(0);
        const std::size_t size = lead < 0x80 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
        if ((lead >= 0x80 && lead < 0xc2) || lead > 0xf4) return false;
        const unsigned least = lead == 0xe0 ? 0xa0 : lead == 0xf0 ? 0x90 : 0x80;
        const unsigned most = lead == 0xed ? 0x9f : lead == 0xf4 ? 0x8f : 0xbf;
        if (size > 1 && (at(1) < least || at(1) > most)) return false;
        for (std::size_t i = 2; i < size; ++i) {
            if (at(i) < 0x80 || at(i) > 0xbf) return false;
        }
        text.remove_prefix(size);
    }
    return true;
}

void check_forms(const ConfigValue& value) {
    using velmora::utils::prefix_size;
    const std::string form = display(value);
    const std::string shown = _shown(value);
    require(is_utf8(form) && is_utf8(shown), "not UTF-8", value);
    const bool cut = prefix_size(form, 80) < form.size();
    const std::string expected = cut ? form.substr(0, prefix_size(form, 77)) + "..." : form;
    require(shown == expected, "not the beginning of the full form", value);
}

void check_coercer(Coercer coerce, const ConfigValue& value) {
    try {
        const ConfigValue coerced = coerce(value);
        require(coerce(coerced) == coerced, "coerced again, it differs", value);
    } catch (const velmora::ValueError& error) {
        require(is_utf8(error.what()), "message not UTF-8", value);
    } catch (const velmora::TypeError& error) {
        require(is_utf8(error.what()), "message not UTF-8", value);
    } catch (const velmora::OverflowError& error) {
        require(is_utf8(error.what()), "message not UTF-8", value);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ConfigValue all = Builder({reinterpret_cast<const char*>(data), size}).build();
    check_forms(all);
    for (const auto& [kind, coerce] : _COERCERS) {
        check_coercer(coerce, all);
        for (const ConfigValue& each : all.get<List>()) check_coercer(coerce, each);
    }
    return 0;
}
