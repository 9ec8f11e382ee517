// Builds values from bytes, shows them, and offers them to a key of every kind.
#include <cstddef>
#include <vector>

#include "require.hpp"

namespace {

using namespace velmora::config;

// Reads values in prefix notation: a letter, then what the value consists of.
class Builder {
public:
    explicit Builder(std::string_view bytes) : bytes_(bytes) {}

    bool at_end() const { return bytes_.empty(); }

    ConfigValue next() {
        const char kind = take_as<char>();
        if (kind == 't') return true;
        if (kind == 'i') return take_as<std::int64_t>();
        if (kind == 'I') return Integer::parse(take_text()).value_or(0);
        if (kind == 'd') return take_as<double>();
        if (kind == 's') return take_text();
        if (kind == 'l') return next_list();
        if (kind == 'm') return next_mapping();
        return kind == 'r' ? next_reference() : nullptr;
    }

private:
    std::string_view take(std::size_t size) {
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(taken.size());
        return taken;
    }

    template <class T>
    T take_as() {
        T value{};
        take(sizeof value).copy(reinterpret_cast<char*>(&value), sizeof value);
        return value;
    }

    std::string_view take_text() { return take(take_as<unsigned char>()); }

    List next_list() {
        List list;
        made_.emplace_back(list);
        for (unsigned left = take_as<unsigned char>() % 8; left > 0; --left) list.push_back(next());
        return list;
    }

    Mapping next_mapping() {
        Mapping mapping;
        made_.emplace_back(mapping);
        for (unsigned left = take_as<unsigned char>() % 8; left > 0; --left) {
            // A key must not change any more, as what it refers to might.
            const int references = references_;
            const ConfigValue key = next();
            mapping.set(references == references_ ? key : nullptr, next());
        }
        return mapping;
    }

    // To a list or a mapping, which may be one that is not complete yet and so contains itself. Few
    // times only, because every time may double what there is to show.
    ConfigValue next_reference() {
        const std::size_t which = take_as<unsigned char>();
        return made_.empty() || ++references_ > 6 ? nullptr : made_[which % made_.size()];
    }

    std::string_view bytes_;
    std::vector<ConfigValue> made_;
    int references_ = 0;
};

const RecordType kinds("Kinds", {{"bool", bool_type, setting(false, "")},
                                 {"int", int_type, setting(0, "")},
                                 {"float", float_type, setting(0.0, "")},
                                 {"str", str_type, setting("", "")},
                                 {"list", list_of(str_type), setting(List{}, "")}});
const RecordType config("Config", {{"kinds", kinds, section(kinds, "", {Restart::none})}});

void check_forms(const ConfigValue& value) {
    using velmora::utils::prefix_size;
    const std::string form = display(value);
    const bool cut = prefix_size(form, 80) < form.size();
    require_utf8(form);
    require(_shown(value) == (cut ? form.substr(0, prefix_size(form, 77)) + "..." : form),
            "what is shown is not the beginning of the display form");
}

void check_coercion(const Key& key, const ConfigValue& value) {
    try {
        require_accepted(key, key.coerce(value));
    } catch (const ConfigKeyError& error) {
        require_utf8(error.message());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<Section> sections = sections_of(config);
    Builder builder({reinterpret_cast<const char*>(data), size});
    for (int left = 16; left > 0 && !builder.at_end(); --left) {
        const ConfigValue value = builder.next();
        check_forms(value);
        for (const Key& key : sections[0].keys()) check_coercion(key, value);
    }
    return 0;
}
