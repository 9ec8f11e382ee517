// Reads every section of the example's configuration from a YAML text, whatever that is.
#include <velmora/utils/logging.hpp>
#include <velmora/yaml/yaml.hpp>

#include "require.hpp"
#include "settings.hpp"

using namespace velmora::config;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<Section> sections = sections_of(settings());
    velmora::utils::set_sink(
        [](const velmora::utils::LogRecord& record) { require_utf8(record.message()); });
    try {
        const ConfigValue file = velmora::yaml::load({reinterpret_cast<const char*>(data), size});
        for (const Section& section : sections) {
            const ConfigValue* const given = file.find(section.name());
            const Record record = section.read(given != nullptr ? *given : ConfigValue());
            for (const Key& key : section.keys())
                require_accepted(key, record.get<ConfigValue>(key.name()));
        }
    } catch (const velmora::yaml::Error& error) {
        require_utf8(error.message());
    }
    return 0;
}
