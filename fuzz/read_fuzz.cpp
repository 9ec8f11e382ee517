// Reads every section of the example's configuration from a YAML text, whatever that is, and asks
// where all parts of it stand.
#include <set>

#include <velmora/config/display.hpp>
#include <velmora/utils/logging.hpp>
#include <velmora/yaml/located.hpp>
#include <velmora/yaml/yaml.hpp>

#include "require.hpp"
#include "settings.hpp"

namespace app = velmora::app;
using namespace velmora::config;
using velmora::yaml::LocatedValue;
using velmora::yaml::Span;

namespace {

// Each part lies within the text, on one line if it has a size, and a spelling reads as its value.
class Parts {
public:
    explicit Parts(const LocatedValue& file) : file_(file) {
        require_part(file.value(), file.root(), {});
    }

private:
    void require_part(const ConfigValue& value, const Span& span, std::string_view spelling) {
        const auto begin = file_.position(span.offset);
        const auto end = file_.position(span.offset + span.size);
        require(begin.line == end.line, "a part that does not end on its line");
        require(spelling.empty() || display(velmora::yaml::load(spelling)) == display(value),
                "a spelling of another value");
        if (const auto* list = value.get_if<List>(); list != nullptr && is_new(*list)) {
            for (std::size_t i = 0; i < list->size(); ++i)
                require_part((*list)[i], file_.item_span(*list, i), file_.spelling(*list, i));
        }
        if (const auto* mapping = value.get_if<Mapping>(); mapping != nullptr && is_new(*mapping)) {
            for (const Mapping::Entry& entry : *mapping) {
                require_part(entry.key, file_.key_span(*mapping, entry), {});
                require_part(entry.value, file_.value_span(*mapping, entry),
                             file_.spelling(*mapping, entry));
            }
        }
    }

    bool is_new(const auto& collection) { return visited_.insert(collection.identity()).second; }

    const LocatedValue& file_;
    std::set<const void*> visited_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<app::Section> sections = schema().declaration().sections();
    velmora::utils::set_sink(
        [](const velmora::utils::LogRecord& record) { require_utf8(record.message()); });
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    ConfigValue file;
    try {
        file = velmora::yaml::load(text);
    } catch (const velmora::yaml::Error& error) {
        require_utf8(error.message());
        return 0;
    }
    const LocatedValue located = velmora::yaml::load_located(text);
    require(display(located.value()) == display(file), "a value that is another one");
    Parts{located};
    const auto report = [](const app::Fault& fault) { require_utf8(text_of(fault)); };
    const auto require_values = [](const app::Values& values) {
        for (const app::Section& section : sections) {
            for (const app::Key& key : section.keys()) require_accepted(key, values[key.label()]);
        }
    };
    try {
        const app::Layer layer = app::text(std::string(text), "f");
        require_values(schema().declaration().load({layer}, {.report = report}));
    } catch (const app::LoadError& error) {  // As checks find.
        require_utf8(error.message());
        require_values(error.values());
    }
    return 0;
}
