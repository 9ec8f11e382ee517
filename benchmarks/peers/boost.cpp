#include <boost/program_options.hpp>

#include "../contender.hpp"
#include "../declare.hpp"

namespace bench {

namespace po = boost::program_options;

using velmora::config::KeyKind;

namespace {

po::value_semantic* semantic_of(const KeyFacts& key) {
    switch (key.kind) {
        case KeyKind::bool_:
            return po::value<bool>()->default_value(std::get<bool>(key.fallback));
        case KeyKind::int_:
            return po::value<std::int64_t>()->default_value(std::get<std::int64_t>(key.fallback));
        case KeyKind::float_:
            return po::value<double>()->default_value(std::get<double>(key.fallback));
        case KeyKind::str:
            return po::value<std::string>()->default_value(std::get<std::string>(key.fallback));
        case KeyKind::list:
            break;
    }
    return po::value<Texts>()->default_value(*texts_of(std::get<Values>(key.fallback)), "...");
}

const Contender declare("declare/Boost.Program_options", [](Run& run) {
    run.once(
        [] {
            po::options_description options;
            for (const SectionFacts& section : service_sections()) {
                for (const KeyFacts& key : section.keys) {
                    const std::string label = section.name + "." + key.name;
                    options.add_options()(label.c_str(), semantic_of(key), key.doc.c_str());
                }
            }
            return options;
        },
        all_labels(),
        [](const po::options_description& options) {
            Texts labels;
            for (const auto& option : options.options()) labels.push_back(option->long_name());
            return labels;
        });
});

}  // namespace

}  // namespace bench
