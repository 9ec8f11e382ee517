// Configuration as plain structs: each member is a key, its initialiser the default.
//
//     struct Server {
//         std::string host = "127.0.0.1";
//         std::uint16_t port = 8080;
//     };
//     struct Config {
//         Server server;
//     };
//
//     const app::Schema<Config>& schema() {
//         static const app::Schema<Config> schema{
//             app::section(&Config::server, "server", "The HTTP server.", {.restart = Restart::daemon}, {
//                 app::key(&Server::host, "host", "Address that it listens on.", {.env = "WEBD_HOST"}),
//                 app::key(&Server::port, "port", "Port that it listens on.", {.bounds = POSITIVE}),
//             }),
//         };
//         return schema;
//     }
//
//     const app::Snapshot<Config> now = schema().load({app::file(path), app::environment()});
//     listen(now->server.host, now->server.port);
//
// What members may be, and what keys they make, says member.hpp; what else may be said of keys,
// options.hpp.
#pragma once

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "velmora/app/binding.hpp"
#include "velmora/app/declaration.hpp"
#include "velmora/app/member.hpp"
#include "velmora/app/raw.hpp"
#include "velmora/app/values.hpp"
#include "velmora/config/declaration.hpp"

namespace velmora::app {

/// The row of a key in a section that is a `Struct`.
template <class Struct>
struct KeyRow {
    detail::BoundKey key;
};

/// The row of a section in a configuration that is a `Config`.
template <class Config>
struct SectionRow {
    detail::BoundSection section;
};

/// A key by its member, its name and one line of doc. Its default is what the member is in a
/// configuration that was just made. Which options there are depends on the member's type.
template <class Struct, class Member>
KeyRow<Struct> key(Member Struct::*member, std::string_view name, detail::Line doc,
                   typename detail::OptionsOf<Member>::type options = {}) {
    return {{detail::reference_to(member), detail::OperationsOn<Member>::all, name, doc,
             std::move(options), detail::Given::maybe}};
}

/// A key without a default: loading fails as long as no source gives it a value.
template <class Struct, class Member>
KeyRow<Struct> required(Member Struct::*member, std::string_view name, detail::Line doc,
                        typename detail::OptionsOf<Member>::type options = {}) {
    return {{detail::reference_to(member), detail::OperationsOn<Member>::all, name, doc,
             std::move(options), detail::Given::always}};
}

/// A section by its member, its name, a paragraph of doc and its keys.
template <class Config, class Struct>
SectionRow<Config> section(Struct Config::*member, std::string_view name, detail::Line doc,
                           config::SectionOptions options,
                           std::initializer_list<std::type_identity_t<KeyRow<Struct>>> keys) {
    std::vector<detail::BoundKey> bound;
    bound.reserve(keys.size());
    for (const KeyRow<Struct>& row : keys) bound.push_back(row.key);
    const detail::MemberReference at = detail::reference_to(member);
    config::FieldDecl field =
        detail::describe_section(name, doc, options, bound, at.in(detail::defaults_of<Config>()));
    return {{std::move(field), at, false, std::move(bound)}};
}

/// A section that the application reads itself.
template <class Config>
SectionRow<Config> raw(Raw Config::*member, std::string_view name, detail::Line doc,
                       RawOptions options) {
    return {{raw(std::string(name), std::string(*doc), options),
             detail::reference_to(member),
             true,
             {}}};
}

template <class Config>
class Schema;
template <class Config>
class Live;

/// A configuration as it was when it was loaded. Immutable; copies share it. What it refers to lives
/// as long as a copy does: a temporary one serves for one expression, `live.now()->server.port`, and
/// not for the range of a loop, which keeps it in a variable:
///
///     for (const auto now = live.now(); const std::string& tag : now->server.tags) ...
template <class Config>
class Snapshot {
public:
    const Config& operator*() const& noexcept { return *config_; }
    const Config& operator*() const&& = delete;
    const Config* operator->() const noexcept { return config_; }

    /// Where its values come from, and what else was given.
    const Values& values() const& noexcept { return values_; }
    Values values() const&& { return values_; }
    const std::vector<Fault>& faults() const& noexcept { return values_.faults(); }
    std::vector<Fault> faults() const&& { return values_.faults(); }

private:
    friend class Schema<Config>;
    friend class Live<Config>;

    /// Of what `load` returns.
    explicit Snapshot(std::invocable auto&& load)
        : values_(load()), config_(static_cast<const Config*>(detail::bound(values_))) {}

    Values values_;
    const Config* config_;
};

/// A declaration whose sections and keys are the members of structs. Copies are one schema.
template <class Config>
class Schema {
public:
    /// Throws TypeError with a line for everything that `lint` finds.
    Schema(std::initializer_list<SectionRow<Config>> rows) : declaration_(declaration_of(rows)) {}

    const Declaration& declaration() const noexcept { return declaration_; }

    /// The schema with a check that every load makes of what is about to hold: `rule` is given a
    /// `const Config&` and returns what is wrong, an empty text for nothing. `labels` are the keys
    /// that it speaks of. As `Declaration::check`.
    template <std::invocable<const Config&> Rule>
    [[nodiscard]] Schema check(const std::vector<std::string>& labels, Rule rule) const {
        if constexpr (std::constructible_from<Rule, std::nullptr_t>) {
            if (rule == nullptr) return Schema(declaration_.check(labels, nullptr));
        }
        return Schema(declaration_.check(
            labels, [rule = std::move(rule)](const Values& values) -> std::string {
                return rule(*static_cast<const Config*>(detail::bound(values)));
            }));
    }

    /// As `Declaration::load`.
    Snapshot<Config> load(const std::vector<Layer>& layers, const LoadOptions& options = {}) const {
        return Snapshot<Config>([&] { return declaration_.load(layers, options); });
    }

private:
    explicit Schema(Declaration declaration) : declaration_(std::move(declaration)) {}

    static Declaration declaration_of(std::initializer_list<SectionRow<Config>> rows) {
        std::vector<detail::BoundSection> sections;
        for (const SectionRow<Config>& row : rows) sections.push_back(row.section);
        return detail::declare(std::move(sections), []() -> std::shared_ptr<void> {
            return std::make_shared<Config>();
        });
    }

    Declaration declaration_;
};

}  // namespace velmora::app
