// A configuration of 20 sections of 20 keys, from the same facts for every contender.
#pragma once

#include <string>
#include <vector>

#include "keys.hpp"

namespace bench {

struct SectionFacts {
    std::string name;
    std::string doc;
    std::vector<KeyFacts> keys;
};

const std::vector<SectionFacts>& service_sections();

/// "SECTION.KEY" of every key, in their order.
Texts all_labels();

}  // namespace bench
