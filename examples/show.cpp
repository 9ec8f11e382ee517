#include "show.hpp"

#include <iomanip>
#include <ostream>

#include <velmora/app/explain.hpp>
#include <velmora/config/spec.hpp>
#include <velmora/utils/quoting.hpp>
#include <velmora/utils/texts.hpp>

#include "refuse.hpp"

using namespace velmora;

void show(std::ostream& out, const app::Snapshot<Config>& now) {
    for (const app::Section& section : schema().declaration().sections()) {
        for (const app::Key& key : section.keys()) {
            const app::GivenValue* const held = now.values().held(key.label());
            out << std::left << std::setw(20) << key.label() << "  "
                << now.values().shown(key.label()) << "  # "
                << (held != nullptr ? utils::one_line(held->place()) : "default") << '\n';
        }
    }
}

void explain(std::ostream& out, const app::Snapshot<Config>& now,
             const std::vector<std::string>& labels) {
    std::vector<std::string> texts;
    refuse_together(labels, [&](const std::string& name) {
        for (const app::Key& key : schema().declaration().keys(name))
            texts.push_back(text_of(app::explain(now.values(), key.label())));
    });
    if (labels.empty()) {
        for (const app::Explanation& each : app::explain(now.values()))
            texts.push_back(text_of(each));
    }
    out << utils::joined(texts, "\n");
}
