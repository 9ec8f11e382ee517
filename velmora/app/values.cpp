#include "velmora/app/values.hpp"

#include <algorithm>
#include <utility>

#include "velmora/app/values_data.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {

namespace {

std::string lines_of(const std::vector<Fault>& faults) {
    std::vector<std::string> lines;
    lines.reserve(faults.size());
    for (const Fault& fault : faults) lines.push_back(one_line(fault));
    return utils::joined(lines, "\n");
}

[[noreturn]] void refuse_to_show(const std::string& what, const char* instead) {
    throw config::ConfigKeyError(what + " is secret: ask for it by " + instead);
}

// Of the same list, or with the same form: 1 is not 1.0, the order of keys counts, NaN is itself.
template <class Handle>
bool same_handle(const config::ConfigValue& a, const config::ConfigValue& b) {
    const auto* one = a.get_if<Handle>();
    const auto* other = b.get_if<Handle>();
    return one != nullptr && other != nullptr && one->same_as(*other);
}

}  // namespace

std::string GivenValue::place() const {
    if (line() == 0) return source();
    return source() + ":" + std::to_string(line()) + ":" + std::to_string(column());
}

const config::ConfigValue& GivenValue::value() const {
    if (secret_) refuse_to_show("the value from " + utils::one_line(source()), "reveal()");
    return value_;
}

const config::ConfigValue& Values::operator[](std::string_view label) const& {
    const std::size_t key = data_->declaration->key_at(label);
    if (data_->declaration->keys()[key].traits().secret)
        refuse_to_show(std::string(label), "reveal()");
    return *data_->held[key];
}

const config::ConfigValue& Values::reveal(std::string_view label) const& {
    return *data_->held[data_->declaration->key_at(label)];
}

std::string Values::shown(std::string_view label) const {
    const std::size_t key = data_->declaration->key_at(label);
    return data_->declaration->keys()[key].shown_in_full(*data_->held[key]);
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
            held.push_back(&strongest->reveal());
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
    const config::ConfigValue& one = a.reveal();
    const config::ConfigValue& other = b.reveal();
    return same_handle<config::List>(one, other) || same_handle<config::Mapping>(one, other) ||
           display(one) == display(other);
}

config::Record Values::record(std::string_view section) const {
    if (data_->declaration->sections()[data_->declaration->section_at(section)].has_secrets)
        refuse_to_show("a key of " + std::string(section), "reveal_record()");
    return reveal_record(section);
}

config::Record Values::reveal_record(std::string_view section) const {
    const Declaration::Data& declaration = *data_->declaration;
    const DeclaredSection& declared = declaration.sections()[declaration.section_at(section)];
    const config::RecordType& kind = declared.section->kind();
    std::vector<config::RecordType::Given> given;
    for (std::size_t i = 0; i < kind.fields().size(); ++i) {
        const config::ConfigValue& value = *data_->held[declared.first_key + i];
        const auto* list = value.get_if<config::List>();
        given.push_back(
            {kind.fields()[i].name(), list != nullptr ? config::ConfigValue(list->copy()) : value});
    }
    return kind.make(std::move(given));
}

const Raw& Values::raw(std::string_view section) const& {
    const std::size_t position = data_->declaration->section_at(section);
    if (data_->declaration->sections()[position].raw) return data_->raws[position];
    throw TypeError("the section " + std::string(section) +
                    " is not raw: its values are those of its keys");
}

const std::vector<Fault>& Values::faults() const& noexcept {
    return data_->faults;
}

LoadError::LoadError(Values values)
    : ValueError(lines_of(values.faults())), values_(std::move(values)) {}

}  // namespace velmora::app
