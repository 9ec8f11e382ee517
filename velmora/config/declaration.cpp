#include "velmora/config/declaration.hpp"

#include <memory>
#include <ostream>
#include <tuple>

#include "velmora/config/display.hpp"
#include "velmora/config/record_draft.hpp"
#include "velmora/utils/hash.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::config {

namespace {

FieldDetails section_details(DefaultFactory fresh, std::string doc, SectionOptions options) {
    return {std::move(fresh),
            Metadata(std::string(_SECTION), Descriptor(std::make_shared<SectionSetting>(
                                                std::move(doc), *options.restart)))};
}

}  // namespace

std::string_view name_of(Restart restart) noexcept {
    switch (restart) {
        case Restart::none:
            return "none";
        case Restart::worker:
            return "worker";
        case Restart::daemon:
            return "daemon";
    }
    return "no scope";
}

bool operator==(const Setting& a, const Setting& b) {
    const auto fields = [](const Setting& s) {
        return std::tie(s.doc(), s.env(), s.bounds(), s.choices(), s.restart());
    };
    return fields(a) == fields(b);
}

FieldDetails detail::describe_key(ConfigValue default_value, std::string&& doc,
                                  SettingOptions&& options) {
    Metadata metadata(std::string(_SETTING),
                      Descriptor(std::make_shared<Setting>(std::move(doc), std::move(options))));
    const auto* list = default_value.get_if<List>();
    if (list == nullptr) return {std::move(default_value), std::move(metadata)};
    return {DefaultFactory(ListDefault{list->copy()}), std::move(metadata)};
}

FieldDetails section(RecordType kind, detail::Doc doc, SectionOptions options) {
    return section_details([kind = std::move(kind)] { return kind.make(); }, *std::move(doc),
                           options);
}

FieldDetails section(TypeReference kind, detail::Doc doc, SectionOptions options) {
    return section_details(
        [kind = std::move(kind)] { return DeclaredType(kind).resolved().record_type().make(); },
        *std::move(doc), options);
}

std::string display(const Setting& setting) {
    const auto& bounds = setting.bounds();
    const auto& restart = setting.restart();
    return display_fields(
        "Setting", {{"doc", utils::quoted_text(setting.doc())},
                    {"env", setting.env() ? utils::quoted_text(*setting.env()) : "None"},
                    {"bounds", bounds ? display(*bounds) : "None"},
                    {"choices", display(List(std::vector<ConfigValue>(setting.choices().begin(),
                                                                      setting.choices().end())))},
                    {"restart", restart ? utils::quoted_text(name_of(*restart)) : "None"}});
}

std::string display(const SectionSetting& setting) {
    return display_fields("SectionSetting",
                          {{"doc", utils::quoted_text(setting.doc())},
                           {"restart", utils::quoted_text(name_of(setting.restart()))}});
}

std::ostream& operator<<(std::ostream& out, Restart restart) {
    return out << name_of(restart);
}
std::ostream& operator<<(std::ostream& out, const Setting& setting) {
    return out << display(setting);
}
std::ostream& operator<<(std::ostream& out, const SectionSetting& setting) {
    return out << display(setting);
}

}  // namespace velmora::config

using velmora::config::SectionSetting;
using velmora::config::Setting;
using velmora::utils::hash_fields;

std::size_t std::hash<Setting>::operator()(const Setting& setting) const {
    return hash_fields(setting.doc(), setting.env(), setting.bounds(), setting.choices(),
                       setting.restart());
}

std::size_t std::hash<SectionSetting>::operator()(const SectionSetting& setting) const {
    return hash_fields(setting.doc(), setting.restart());
}
