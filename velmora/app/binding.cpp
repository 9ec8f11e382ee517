#include "velmora/app/binding.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string_view>
#include <utility>

#include "velmora/app/raw.hpp"
#include "velmora/app/values_data.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::app::detail {

namespace {

bool is_infinite(const config::Number& end) {
    const double* const number = end.if_double();
    return number != nullptr && std::isinf(*number);
}

// The end as a float has it, if the member is one.
config::Number as_held(const config::Number& end, bool single) {
    const double* const number = end.if_double();
    return single && number != nullptr ? shortest(static_cast<float>(*number)) : end;
}

// The bounds that are asked for, as a member of this type has them; infinite at open ends.
config::Bound as_held(const config::Bound& bounds, bool single) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    return config::Bound(
        as_held(bounds.low(), single),
        {.high = bounds.high() ? as_held(*bounds.high(), single) : config::Number(infinite),
         .low_open = bounds.low_open() && !is_infinite(bounds.low())});
}

// The same with those of the type for the ends that are left open.
config::Bound narrowed(const config::Bound& said, const config::Bound& limits,
                       std::vector<std::string>& mistakes) {
    const bool low_given = !is_infinite(said.low());
    const bool high_given = !is_infinite(*said.high());
    if ((low_given && said.low() < limits.low()) || (high_given && *said.high() > *limits.high()))
        mistakes.push_back("its bounds go beyond its member's type, which holds what is " +
                           limits.text());
    return config::Bound(
        low_given ? said.low() : limits.low(),
        {.high = high_given ? *said.high() : *limits.high(), .low_open = said.low_open()});
}

// A doc that does not speak of the unit says it at its end.
std::string with_unit(std::string doc, const std::string& unit) {
    if (unit.empty() || doc.empty()) return doc;
    for (std::size_t i = 0; i < doc.size(); ++i) {
        if (utils::equal_ignoring_case(std::string_view(doc).substr(i, unit.size()), unit))
            return doc;
    }
    const bool stop = doc.back() == '.';
    if (stop) doc.pop_back();
    return doc + ", in " + unit + (stop ? "." : "");
}

}  // namespace

BoundKey::BoundKey(MemberReference member, const MemberOperations& operations,
                   std::string_view name, Line doc, AnyOptions options, Given given)
    : member_(member), operations_(&operations), name_(name), doc_(*doc) {
    MemberType type = operations.describe();
    kind_ = type.kind;
    const bool list = kind_ == config::KeyKind::list;
    const MemberType texts{.kind = config::KeyKind::str};
    const MemberType& counted = !list ? type : type.items != nullptr ? *type.items : texts;
    traits_.required = given == Given::always;
    traits_.optional = type.optional;
    traits_.secret = options.secret;
    traits_.formerly = std::move(*options.formerly);
    traits_.single = type.single;
    config::SettingOptions judging{.choices = counted.choices};
    if (counted.named && counted.choices.empty())
        traits_.mistakes.emplace_back("names_of names no value of its type");
    if (options.bounds != nullptr) judging.bounds = std::move(*options.bounds);
    if (options.choices != nullptr) judging.choices = std::move(*options.choices);
    std::optional<config::Bound> said;
    if (counted.limits) {
        constexpr double infinite = std::numeric_limits<double>::infinity();
        said = as_held(judging.bounds.value_or(config::Bound(-infinite)), counted.single);
        judging.bounds = narrowed(*said, *counted.limits, traits_.mistakes);
    }
    if (!list) {
        options_ = std::move(judging);
        traits_.said_bounds = std::move(said);
    } else if (type.items != nullptr || !judging.choices.empty()) {
        traits_.items = std::make_shared<const ItemRules>(
            ItemRules{counted.kind, config::Setting(doc_, std::move(judging)), counted.single,
                      std::move(said)});
    }
    if (options.env) options_.env.emplace(*options.env);
    options_.restart = options.restart;
    doc_ = with_unit(std::move(doc_), type.unit);
    traits_.unit = std::move(type.unit);
}
BoundKey::BoundKey(const BoundKey&) = default;
BoundKey::~BoundKey() = default;

config::FieldDecl BoundKey::field(void* defaults) const {
    const config::ConfigValue value =
        traits_.required ? config::ConfigValue() : operations_->value_of(member_.in(defaults));
    return {name_, kind_, with_traits(config::setting(value, doc_, options_), traits_)};
}

config::FieldDecl describe_section(std::string_view name, Line doc, config::SectionOptions options,
                                   std::vector<BoundKey>& keys, void* defaults) {
    std::vector<config::FieldDecl> fields;
    fields.reserve(keys.size());
    for (auto key = keys.begin(); key != keys.end(); ++key) {
        const auto first = std::find_if(keys.begin(), key,
                                        [&](const BoundKey& other) { return other.is_of(*key); });
        if (first != key) key->add_mistake("its member is that of " + first->name() + " as well");
        fields.push_back(key->field(defaults));
    }
    const config::RecordType kind(std::string(name), std::move(fields));
    return {std::string(name), kind, config::section(kind, std::string(*doc), options)};
}

Declaration declare(std::vector<BoundSection> sections, std::shared_ptr<void> (*make)()) {
    std::vector<config::FieldDecl> fields;
    fields.reserve(sections.size());
    std::map<AnyMember, std::string> members;
    std::vector<std::string> mistakes;
    for (const BoundSection& section : sections) {
        const std::string& name = section.field.name();
        const auto [first, fresh] = members.try_emplace(section.member.member, name);
        if (!fresh)
            mistakes.push_back(name + ": its member is that of " + first->second + " as well");
        fields.push_back(section.field);
    }
    const config::RecordType config_type("Config", std::move(fields));
    const auto bind = [sections = std::move(sections), make](const Values::Data& data) {
        std::shared_ptr<void> config = make();
        std::size_t key = 0;
        for (std::size_t i = 0; i < sections.size(); ++i) {
            void* const object = sections[i].member.in(config.get());
            if (sections[i].raw) *static_cast<Raw*>(object) = data.raws[i];
            for (const BoundKey& each : sections[i].keys) each.assign(object, *data.held[key++]);
        }
        return config;
    };
    return {config_type, bind, mistakes};
}

const void* bound(const Values& values) noexcept {
    return values.data_->bound.get();
}

}  // namespace velmora::app::detail
