#include "show.hpp"

#include <iomanip>
#include <ostream>
#include <string>

#include <velmora/config/spec.hpp>
#include <velmora/utils/quoting.hpp>

using namespace velmora;

namespace {

std::string origin_of(const std::string& label, const app::Values& values) {
    for (const app::GivenValue& given : values.given(label)) {
        if (given.accepted()) return utils::one_line(given.place());
    }
    return "default";
}

}  // namespace

void show(std::ostream& out, const app::Snapshot<Config>& now) {
    for (const config::Section& section : schema().declaration().sections()) {
        for (const config::Key& key : section.keys()) {
            const std::string label = key.label();
            out << std::left << std::setw(20) << label << "  " << now.values()[label] << "  # "
                << origin_of(label, now.values()) << '\n';
        }
    }
}
