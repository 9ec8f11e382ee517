#include "velmora/config/field.hpp"

namespace velmora::config {

Descriptor Metadata::operator[](std::string_view key) const {
    const auto found = entries_.find(key);
    return found != entries_.end() ? found->second : Descriptor();
}

}  // namespace velmora::config
