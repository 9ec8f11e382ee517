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

Metadata Metadata::with(std::string_view key, Descriptor descriptor) const {
    Metadata more = *this;
    const bool empty = first_.first.empty() && first_.second.is_null();
    if (empty || first_.first == key) {
        more.first_ = Entry(key, std::move(descriptor));
        return more;
    }
    std::erase_if(more.more_, [key](const Entry& entry) { return entry.first == key; });
    more.more_.emplace_back(key, std::move(descriptor));
    return more;
}

}  // namespace velmora::config
