// Record types: ordered lists of declared fields, of which records are made. record.hpp completes
// this header.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/utils/export.hpp"
#include "velmora/utils/not_null.hpp"

namespace velmora::config {

class DeclaredType;
class FieldDecl;
class Record;

/// An ordered list of declared fields. A handle: copies are one type, which equals only itself,
/// whatever the fields of others.
class VELMORA_EXPORT RecordType {
public:
    /// A value given for a field.
    struct Given;

    /// Throws TypeError, which names both, when two fields have one name.
    RecordType(std::string name, std::vector<FieldDecl> fields);

    const std::string& name() const noexcept;

    /// In the order of declaration; they live as long as the type.
    const std::vector<FieldDecl>& fields() const noexcept;

    /// The field of this name, null when there is none.
    const FieldDecl* find_field(std::string_view name) const;

    /// The position of the field of this name. Throws TypeError, which names the nearest one, when
    /// there is none.
    std::size_t position_of(std::string_view name) const;

    /// Every field's declared type by the field's name, references resolved. Throws TypeError when
    /// a reference names no type.
    std::map<std::string, DeclaredType, std::less<>> resolve_types() const;

    /// A new record of the `given` values, unconverted and unchecked, and the defaults of all other
    /// fields, whose factories run in the order of the fields. Throws TypeError when a name is no
    /// field's, when a field that has no default is not given, and when the defaults hold records
    /// of each other without end; what a default factory throws passes.
    Record make(std::vector<Given> given) const;
    Record make() const;

    friend bool operator==(const RecordType& a, const RecordType& b) noexcept {
        return a.data_.get() == b.data_.get();
    }

    std::size_t hash() const noexcept { return std::hash<const void*>{}(data_.get()); }

private:
    struct Data;

    utils::NotNull<Data> data_;
};

VELMORA_EXPORT std::string display(const RecordType& type);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const RecordType& type);

}  // namespace velmora::config

template <>
struct std::hash<velmora::config::RecordType> {
    std::size_t operator()(const velmora::config::RecordType& type) const noexcept {
        return type.hash();
    }
};
