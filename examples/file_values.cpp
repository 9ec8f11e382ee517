#include "file_values.hpp"

using namespace velmora::config;

namespace {

const ConfigValue* find(const ConfigValue& value, const std::string& name) {
    const auto* mapping = value.get_if<Mapping>();
    return mapping != nullptr ? mapping->find(name) : nullptr;
}

}  // namespace

ConfigValue section_in(const ConfigValue& file, const std::string& section) {
    const ConfigValue* found = find(file, section);
    return found != nullptr ? *found : ConfigValue();
}

std::optional<ConfigValue> value_in(const ConfigValue& section, const Key& key) {
    const ConfigValue* found = find(section, key.name());
    if (found == nullptr) return std::nullopt;
    try {
        return key.coerce(*found);
    } catch (const ConfigKeyError&) {
        return std::nullopt;
    }
}
