#include "velmora/config/kind.hpp"

#include <array>
#include <cstddef>
#include <ostream>

namespace velmora::config {

std::string_view name_of(KeyKind kind) noexcept {
    constexpr std::array<std::string_view, 5> names = {"bool", "int", "float", "str", "list"};
    return names[static_cast<std::size_t>(kind)];
}

std::ostream& operator<<(std::ostream& out, KeyKind kind) {
    return out << name_of(kind);
}

}  // namespace velmora::config
