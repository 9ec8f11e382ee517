#include "velmora/config/kind.hpp"

#include <ostream>

namespace velmora::config {

std::string_view name_of(KeyKind kind) noexcept {
    switch (kind) {
        case KeyKind::bool_:
            return "bool";
        case KeyKind::int_:
            return "int";
        case KeyKind::float_:
            return "float";
        case KeyKind::str:
            return "str";
        case KeyKind::list:
            return "list";
    }
    return "no kind";
}

std::ostream& operator<<(std::ostream& out, KeyKind kind) {
    return out << name_of(kind);
}

}  // namespace velmora::config
