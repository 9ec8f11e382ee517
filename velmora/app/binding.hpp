// Keys and sections bound to the members of structs: what the templates of schema.hpp hand over to
// compiled code. Included by schema.hpp.
#pragma once

#include <bit>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/app/declaration.hpp"
#include "velmora/app/member.hpp"
#include "velmora/app/options.hpp"
#include "velmora/app/traits.hpp"
#include "velmora/config/declaration.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::app::detail {

/// A pointer to a data member, whatever its class and its type.
using AnyMember = std::ptrdiff_t;

template <class Class, class Member>
void* locate(void* object, AnyMember member) {
    return &(static_cast<Class*>(object)->*std::bit_cast<Member Class::*>(member));
}

/// A member of a struct that is not known here.
struct MemberReference {
    AnyMember member;
    void* (*locate)(void* object, AnyMember member);

    void* in(void* object) const { return locate(object, member); }
};

template <class Class, class Member>
MemberReference reference_to(Member Class::*member) {
    return {std::bit_cast<AnyMember>(member), &locate<Class, Member>};
}

enum class Given { maybe, always };

/// What is said of a key: as the options of its type say it.
struct AnyOptions {
    AnyOptions(KeyOptions&& all) : AnyOptions(all, nullptr, nullptr) {}
    AnyOptions(NumberOptions&& all) : AnyOptions(all, &all.bounds, nullptr) {}
    AnyOptions(TextOptions&& all) : AnyOptions(all, nullptr, &all.choices) {}

    std::optional<std::string_view> env;
    std::optional<config::Restart> restart;
    bool secret;
    std::vector<std::string>* formerly;
    std::optional<config::Bound>* bounds;
    std::vector<std::string>* choices;

private:
    template <class Options>
    AnyOptions(Options& all, std::optional<config::Bound>* its_bounds,
               std::vector<std::string>* its_choices)
        : env(all.env),
          restart(all.restart),
          secret(all.secret),
          formerly(&all.formerly),
          bounds(its_bounds),
          choices(its_choices) {}
};

using Line = config::detail::Required<std::string_view>;

/// A key and the member that it becomes. What an application compiles for each of its rows is
/// little more than the call that makes one.
class VELMORA_EXPORT BoundKey {
public:
    BoundKey(MemberReference member, const MemberOperations& operations, std::string_view name,
             Line doc, AnyOptions options, Given given);
    BoundKey(const BoundKey&);
    ~BoundKey();

    /// The field of the key, whose default is what the member is in `defaults`.
    config::FieldDecl field(void* defaults) const;
    bool is_of(const BoundKey& other) const noexcept {
        return member_.member == other.member_.member;
    }
    const std::string& name() const noexcept { return name_; }
    void add_mistake(std::string mistake) { traits_.mistakes.push_back(std::move(mistake)); }

    void assign(void* section, const config::ConfigValue& value) const {
        operations_->assign(member_.in(section), value);
    }

private:
    MemberReference member_;
    const MemberOperations* operations_;
    std::string name_;
    std::string doc_;
    config::KeyKind kind_ = config::KeyKind::str;
    config::SettingOptions options_;
    KeyTraits traits_;
};

/// A section and its struct; or, without keys, a raw one and what becomes of it.
struct BoundSection {
    config::FieldDecl field;
    MemberReference member;
    bool raw;
    std::vector<BoundKey> keys;
};

/// The field of a section whose struct is in `defaults` as it is by default.
VELMORA_EXPORT config::FieldDecl describe_section(std::string_view name, Line doc,
                                                  config::SectionOptions options,
                                                  std::vector<BoundKey>& keys, void* defaults);

/// The declaration of these sections. Each of its loads has `make` make the struct whose sections
/// and keys are then assigned to, which is what is `bound` to its values.
VELMORA_EXPORT Declaration declare(std::vector<BoundSection> sections,
                                   std::shared_ptr<void> (*make)());
template <class Config>
void* defaults_of() {
    static_assert(std::is_default_constructible_v<Config>,
                  "velmora: a configuration is made with its defaults first");
    static Config defaults{};
    return &defaults;
}

}  // namespace velmora::app::detail
