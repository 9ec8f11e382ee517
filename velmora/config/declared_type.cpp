#include "velmora/config/declared_type.hpp"

#include <memory>

#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::config {

std::optional<DeclaredType> TypeReference::target() const {
    return resolve_ ? resolve_() : std::nullopt;
}

DeclaredType::DeclaredType(KeyKind kind) : form_(kind) {
    if (kind == KeyKind::list) *this = list_of(KeyKind::str);
}

DeclaredType DeclaredType::list_of(const DeclaredType& element) {
    return DeclaredType(
        ListOf{utils::NotNull<DeclaredType>(std::make_shared<const DeclaredType>(element))});
}

std::optional<KeyKind> DeclaredType::key_kind() const noexcept {
    if (std::holds_alternative<ListOf>(form_)) return KeyKind::list;
    const auto* kind = std::get_if<KeyKind>(&form_);
    return kind != nullptr ? std::optional(*kind) : std::nullopt;
}

const RecordType& DeclaredType::record_type() const {
    if (const auto* record = std::get_if<RecordType>(&form_)) return *record;
    throw TypeError(name() + " is no record type: it has no fields");
}

DeclaredType DeclaredType::resolved() const {
    // A longer way of references and lists is taken for one without an end.
    constexpr int most_steps = 100;
    return resolved(most_steps);
}

DeclaredType DeclaredType::resolved(int most_steps) const {
    if (const auto* list = std::get_if<ListOf>(&form_)) {
        if (std::holds_alternative<KeyKind>(list->element->form_)) return *this;
        return list_of(list->element->resolved(most_steps));
    }
    const auto* reference = std::get_if<TypeReference>(&form_);
    if (reference == nullptr) return *this;
    const std::optional<DeclaredType> target = most_steps > 0 ? reference->target() : std::nullopt;
    if (!target) {
        throw TypeError("the reference " + utils::quoted_text(reference->name()) +
                        " names no type");
    }
    return target->resolved(most_steps - 1);
}

std::string DeclaredType::name() const {
    struct Name {
        std::string operator()(KeyKind kind) const { return std::string(name_of(kind)); }
        std::string operator()(const ListOf& list) const {
            return "list[" + list.element->name() + "]";
        }
        std::string operator()(const RecordType& record) const { return record.name(); }
        std::string operator()(const TypeReference& reference) const { return reference.name(); }
        std::string operator()(const Other& type) const { return type.name; }
    };
    return std::visit(Name{}, form_);
}

}  // namespace velmora::config
