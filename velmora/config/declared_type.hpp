// What a field is declared to hold.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "velmora/config/kind.hpp"
#include "velmora/config/record_type.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/utils/not_null.hpp"

namespace velmora::config {

/// A reference to a type that need not exist yet, the record type that it stands in included. It is
/// resolved when the declared types are asked for. It keeps alive what its function holds: one that
/// captures the record type that it stands in would keep it for ever.
class VELMORA_EXPORT TypeReference {
public:
    /// Returns the type, or nothing when there is none. What it returns must be built by the time
    /// it is called: where static initialisers in several files resolve types, return a static of a
    /// function.
    using Resolve = std::function<std::optional<DeclaredType>()>;

    /// `name` is what messages call the type.
    TypeReference(std::string name, Resolve resolve)
        : name_(std::move(name)), resolve_(std::move(resolve)) {}

    const std::string& name() const noexcept { return name_; }

    /// The type that it refers to, which may be another reference.
    std::optional<DeclaredType> target() const;

private:
    std::string name_;
    Resolve resolve_;
};

/// What a field is declared to hold: a type that keys may have, a record type, a reference, or any
/// other type, which no key can have.
class VELMORA_EXPORT DeclaredType {
public:
    /// The type of keys of this kind; for `KeyKind::list` that of lists of texts.
    DeclaredType(KeyKind kind);
    DeclaredType(RecordType record) noexcept : form_(std::move(record)) {}
    DeclaredType(TypeReference reference) : form_(std::move(reference)) {}

    /// The type of lists of `element`, whatever that is.
    static DeclaredType list_of(const DeclaredType& element);

    /// A type of which only the name is known, for fields that are no keys: an optional type, a
    /// union, ...
    static DeclaredType other(std::string name) { return DeclaredType(Other{std::move(name)}); }

    /// The kind of the keys that are declared so: list for a list of anything, nothing for a type
    /// that no key can have, a reference included.
    std::optional<KeyKind> key_kind() const noexcept;

    /// The record type that this is. Throws TypeError when it is none.
    const RecordType& record_type() const;

    /// The type with every reference in it resolved. Throws TypeError when one names no type.
    DeclaredType resolved() const;

    /// As declarations spell it: "int", "list[str]", a record type's or a reference's name.
    std::string name() const;

private:
    struct ListOf {
        utils::NotNull<DeclaredType> element;
    };
    struct Other {
        std::string name;
    };
    using Form = std::variant<KeyKind, ListOf, RecordType, TypeReference, Other>;

    explicit DeclaredType(Form form) : form_(std::move(form)) {}

    DeclaredType resolved(int most_steps) const;

    /// Of the kinds all but list.
    Form form_;
};

inline const DeclaredType bool_type = KeyKind::bool_;
inline const DeclaredType int_type = KeyKind::int_;
inline const DeclaredType float_type = KeyKind::float_;
inline const DeclaredType str_type = KeyKind::str;
/// The list type without an element type, which no key can have.
inline const DeclaredType list_type = DeclaredType::other("list");

inline DeclaredType list_of(const DeclaredType& element) {
    return DeclaredType::list_of(element);
}

}  // namespace velmora::config
