// Declaring a configuration: sections are record types whose fields are made by `setting`, and the
// configuration is a record type whose fields are made by `section`.
//
//     const RecordType server("Server", {
//         {"port", int_type, setting(8080, "Port that the server listens on.",
//                                    {.env = "APP_PORT", .bounds = Bound(1, 65535)})},
//     });
//     const RecordType config("Config", {
//         {"server", server, section(server, "The HTTP server.", {.restart = Restart::worker})},
//     });
#pragma once

#include <concepts>
#include <exception>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/config/bound.hpp"
#include "velmora/config/record.hpp"
#include "velmora/config/required.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

/// What must restart for a change to apply.
enum class Restart { none, worker, daemon };

/// "none", "worker" or "daemon".
VELMORA_EXPORT std::string_view name_of(Restart restart) noexcept;

/// Raised for an unknown section or key, a secret field, or a bad value.
class VELMORA_EXPORT ConfigKeyError : public ValueError {
public:
    explicit ConfigKeyError(const std::string& message, std::exception_ptr cause = nullptr)
        : ValueError(message), cause_(std::move(cause)) {}

    /// The error that led to this one, null when there is none.
    const std::exception_ptr& cause() const noexcept { return cause_; }

private:
    std::exception_ptr cause_;
};

/// The keys of a field's metadata under which its `Setting` or `SectionSetting` stands.
inline constexpr std::string_view _SETTING = "velmora:setting";
inline constexpr std::string_view _SECTION = "velmora:section";

/// What may be said of a key, given by name. The order is that of `Setting`.
struct SettingOptions {
    /// The environment variable that the application lets override the key. It is recorded here,
    /// for whoever reads the environment; none for an empty option or a null pointer.
    detail::OptionalText env = {};
    /// The numbers that the key accepts; empty for every finite one. Meant for int and float keys.
    std::optional<Bound> bounds = std::nullopt;
    /// The texts that the key accepts; empty for every one. Meant for str keys.
    std::vector<std::string> choices = {};
    /// What must restart for a change to apply; empty for what the key's section says, which is not
    /// the same as `Restart::none`.
    std::optional<Restart> restart = std::nullopt;
};

/// What a key is besides its name, its type and its default.
class VELMORA_EXPORT Setting {
public:
    /// `doc` is one line that says what the key does. Nothing is checked or reordered.
    explicit Setting(detail::Doc doc, SettingOptions options = {})
        : doc_(*std::move(doc)), options_(std::move(options)) {}

    const std::string& doc() const noexcept { return doc_; }
    const std::optional<std::string>& env() const noexcept { return options_.env; }
    const std::optional<Bound>& bounds() const noexcept { return options_.bounds; }
    const std::vector<std::string>& choices() const noexcept { return options_.choices; }
    const std::optional<Restart>& restart() const noexcept { return options_.restart; }

    VELMORA_EXPORT friend bool operator==(const Setting& a, const Setting& b);

private:
    std::string doc_;
    SettingOptions options_;
};

/// What a section is besides its name and its record type.
class VELMORA_EXPORT SectionSetting {
public:
    /// `doc` is a paragraph about the section; `restart` holds for its keys that name no scope of
    /// their own.
    SectionSetting(detail::Doc doc, detail::Required<Restart> restart)
        : doc_(*std::move(doc)), restart_(*restart) {}

    const std::string& doc() const noexcept { return doc_; }
    Restart restart() const noexcept { return restart_; }

    friend bool operator==(const SectionSetting& a, const SectionSetting& b) = default;

private:
    std::string doc_;
    Restart restart_;
};

struct SectionOptions {
    /// What must restart for a change to one of the section's keys that names no scope of its own.
    detail::Required<Restart> restart;
};

namespace detail {

VELMORA_EXPORT FieldDetails describe_key(ConfigValue default_value, std::string&& doc,
                                         SettingOptions&& options);

/// What a call is told that leaves `.restart` out.
struct RestartMustBeGiven {};

}  // namespace detail

/// Declares a key by its default and one line of doc. A list default is copied, now and anew for
/// every record, so that no two records share one; other defaults are taken as they are, unchecked.
template <std::convertible_to<ConfigValue> Default>
// NOLINTNEXTLINE(performance-unnecessary-value-param): the linter overlooks moves in templates.
FieldDetails setting(Default&& default_value, detail::Doc doc, SettingOptions options = {}) {
    return detail::describe_key(std::forward<Default>(default_value), *std::move(doc),
                                std::move(options));
}
/// Braces could mean null, a text or a list: write nullptr, "x" or List{"x"}.
FieldDetails setting(std::initializer_list<ConfigValue> default_in_braces, const detail::Doc& doc,
                     const SettingOptions& options = {}) = delete;

/// Declares a section by its record type, or a reference to it, and a paragraph of doc. Its default
/// is a fresh record of that type; what the section holds is the declared type of its field, which
/// should be the same.
VELMORA_EXPORT FieldDetails section(RecordType kind, detail::Doc doc, SectionOptions options);
VELMORA_EXPORT FieldDetails section(TypeReference kind, detail::Doc doc, SectionOptions options);
FieldDetails section(const DeclaredType&, detail::Doc, detail::RestartMustBeGiven = {}) = delete;

VELMORA_EXPORT std::string display(const Setting& setting);
VELMORA_EXPORT std::string display(const SectionSetting& setting);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, Restart restart);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const Setting& setting);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const SectionSetting& setting);

}  // namespace velmora::config

template <>
struct VELMORA_EXPORT std::hash<velmora::config::Setting> {
    std::size_t operator()(const velmora::config::Setting& setting) const;
};

template <>
struct VELMORA_EXPORT std::hash<velmora::config::SectionSetting> {
    std::size_t operator()(const velmora::config::SectionSetting& setting) const;
};
