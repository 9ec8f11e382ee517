#include "velmora/app/values.hpp"

#include <algorithm>
#include <utility>

#include "velmora/app/values_data.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"

namespace velmora::app {

std::string GivenValue::place() const {
    if (line == 0) return *source;
    return *source + ":" + std::to_string(line) + ":" + std::to_string(column);
}

const config::ConfigValue& Values::operator[](std::string_view label) const& {
    return *data_->held[data_->declaration->key_at(label)];
}

const std::vector<GivenValue>& Values::given(std::string_view label) const& {
    return data_->given[data_->declaration->key_at(label)];
}

const GivenValue* held_of(const std::vector<GivenValue>& given) {
    const auto held = std::find_if(given.begin(), given.end(),
                                   [](const GivenValue& each) { return each.accepted(); });
    return held != given.end() ? &*held : nullptr;
}

void Values::Data::hold() {
    held.clear();
    lists.clear();
    for (std::size_t i = 0; i < given.size(); ++i) {
        const config::ConfigValue& standard = declaration->keys()[i].default_value();
        const auto* list = standard.get_if<config::List>();
        if (const GivenValue* strongest = held_of(given[i])) {
            held.push_back(&strongest->value);
        } else if (list != nullptr) {
            // A list of its own, so that nobody who changes it changes the declaration's.
            held.push_back(&lists.emplace_back(list->copy()));
        } else {
            held.push_back(&standard);
        }
    }
}

const GivenValue* Values::held(std::string_view label) const& {
    return held_of(given(label));
}

bool same(const Raw& a, const Raw& b) {
    return a.document() == b.document() ? a.value() == b.value()
                                        : display(a.value()) == display(b.value());
}

config::Record Values::record(std::string_view section) const {
    const Declaration::Data& declaration = *data_->declaration;
    const std::size_t position = declaration.section_at(section);
    const config::RecordType& kind = declaration.sections()[position].kind();
    const std::size_t first = declaration.first_key(position);
    std::vector<config::RecordType::Given> given;
    for (std::size_t i = 0; i < kind.fields().size(); ++i) {
        const config::ConfigValue& value = *data_->held[first + i];
        const auto* list = value.get_if<config::List>();
        given.push_back(
            {kind.fields()[i].name(), list != nullptr ? config::ConfigValue(list->copy()) : value});
    }
    return kind.make(std::move(given));
}

const Raw& Values::raw(std::string_view section) const& {
    const std::size_t position = data_->declaration->section_at(section);
    if (data_->declaration->is_raw(position)) return data_->raws[position];
    throw TypeError("the section " + std::string(section) +
                    " is not raw: its values are those of its keys");
}

const std::vector<Fault>& Values::faults() const& noexcept {
    return data_->faults;
}

}  // namespace velmora::app
