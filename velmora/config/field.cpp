#include "velmora/config/field.hpp"

#include <algorithm>

namespace velmora::config {

Metadata::Metadata(std::initializer_list<std::pair<const std::string, Descriptor>> entries) {
    if (entries.size() == 0) return;
    first_ = *entries.begin();
    more_.assign(entries.begin() + 1, entries.end());
}

Descriptor Metadata::operator[](std::string_view key) const {
    if (first_.first == key) return first_.second;
    const auto found = std::find_if(more_.begin(), more_.end(),
                                    [key](const Entry& entry) { return entry.first == key; });
    return found != more_.end() ? found->second : Descriptor();
}

}  // namespace velmora::config
