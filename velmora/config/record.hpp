// Record types: declared fields, and the records made of them.
//
//     const RecordType point("Point", {{"x", float_type, {.default_value = 0.0}},
//                                      {"label", str_type, {.default_value = "origin"}}});
//     Record record = point.make({{"x", 1.5}});
//     record.get<std::string>("label");  // "origin"
//
// A configuration is declared with the functions of declaration.hpp rather than field by field like
// this.
#pragma once

#include <any>
#include <concepts>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "velmora/config/value.hpp"

namespace velmora::config {

class DeclaredType;
class FieldDecl;
class FieldValue;
class Record;

struct Given;

/// An ordered list of declared fields. A handle: copies are one type, which equals only itself,
/// whatever the fields of others.
class RecordType {
public:
    /// Throws TypeError, which names both, when two fields have one name.
    RecordType(std::string name, std::vector<FieldDecl> fields);

    const std::string& name() const noexcept;

    /// In the order of declaration.
    const std::vector<FieldDecl>& fields() const noexcept;

    /// The position of the field of this name, looked for at position `expected` first. Throws
    /// TypeError when there is none.
    std::size_t position_of(std::string_view field, std::size_t expected = 0) const;

    /// Every field's declared type by the field's name, references resolved. Throws TypeError when
    /// a reference names no type.
    std::map<std::string, DeclaredType, std::less<>> resolve_types() const;

    /// A new record of the `given` values, unconverted and unchecked, and the defaults of all other
    /// fields. Throws TypeError when a name is no field's, or when a field that has no default is
    /// not given; what a default factory throws passes.
    Record make(std::vector<Given> given) const;
    Record make() const;

    friend bool operator==(const RecordType& a, const RecordType& b) noexcept {
        return a.data_ == b.data_;
    }

    std::size_t hash() const noexcept { return std::hash<const void*>{}(data_.get()); }

private:
    struct Data;

    std::shared_ptr<const Data> data_;
};

/// A reference to a type that need not exist yet, the record type that it stands in included. It is
/// resolved when the declared types are asked for, and owns nothing.
class TypeReference {
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

/// What a field is declared to hold.
class DeclaredType {
public:
    /// `list` is the list type without an element type.
    enum class Basic { bool_, int_, float_, str, list };

    DeclaredType(Basic basic) noexcept : form_(basic) {}
    DeclaredType(RecordType record) noexcept : form_(std::move(record)) {}
    DeclaredType(TypeReference reference) : form_(std::move(reference)) {}

    /// The type of lists of `element`.
    static DeclaredType list_of(const DeclaredType& element);

    /// A type of the application's own, of which only the name is known: an optional type, a union,
    /// ...
    static DeclaredType other(std::string name);

    bool is(Basic basic) const noexcept;
    bool is_list_with_element() const noexcept { return std::holds_alternative<ListOf>(form_); }

    /// The record type that this is. Throws TypeError when it is none.
    const RecordType& record_type() const;

    /// The type with every reference in it resolved. Throws TypeError when one names no type.
    DeclaredType resolved() const;

    /// As declarations spell it: "int", "list[str]", a record type's or a reference's name.
    std::string name() const;

private:
    struct ListOf {
        std::shared_ptr<const DeclaredType> element;
    };
    struct Other {
        std::string name;
    };

    DeclaredType resolved(int most_steps) const;

    template <class Form>
    explicit DeclaredType(std::in_place_type_t<Form> form, Form value)
        : form_(form, std::move(value)) {}

    std::variant<Basic, ListOf, RecordType, TypeReference, Other> form_;
};

inline const DeclaredType bool_type = DeclaredType::Basic::bool_;
inline const DeclaredType int_type = DeclaredType::Basic::int_;
inline const DeclaredType float_type = DeclaredType::Basic::float_;
inline const DeclaredType str_type = DeclaredType::Basic::str;
inline const DeclaredType list_type = DeclaredType::Basic::list;

inline DeclaredType list_of(const DeclaredType& element) {
    return DeclaredType::list_of(element);
}

/// A value of any type, attached to a field; shared by all copies, never copied itself.
class Descriptor {
public:
    Descriptor() = default;
    template <class T>
    explicit Descriptor(std::shared_ptr<T> value) {
        if (value != nullptr) value_ = std::shared_ptr<const T>(std::move(value));
    }

    /// The very value that was attached, when it is a `T`; else null.
    template <class T>
    std::shared_ptr<const T> as() const {
        const auto* value = std::any_cast<std::shared_ptr<const T>>(&value_);
        return value != nullptr ? *value : nullptr;
    }

    bool is_null() const noexcept { return !value_.has_value(); }

private:
    std::any value_;
};

/// The descriptors of a field by text key; never changed once made.
class Metadata {
public:
    Metadata() = default;
    Metadata(std::initializer_list<std::pair<const std::string, Descriptor>> entries)
        : entries_(entries) {}

    /// The descriptor under `key`, a null one when there is none.
    Descriptor operator[](std::string_view key) const;

    std::size_t size() const noexcept { return entries_.size(); }

private:
    std::map<std::string, Descriptor, std::less<>> entries_;
};

/// Makes a fresh default on every call.
using DefaultFactory = std::function<FieldValue()>;

/// What a field is besides its name and its declared type.
struct FieldDetails {
    /// The default value, or what makes one, or neither.
    std::variant<std::monostate, ConfigValue, DefaultFactory> default_value = {};
    Metadata metadata = {};
};

/// One declared field of a record type.
class FieldDecl {
public:
    FieldDecl(std::string name, DeclaredType type, FieldDetails details = {})
        : name_(std::move(name)), type_(std::move(type)), details_(std::move(details)) {}

    const std::string& name() const noexcept { return name_; }
    const DeclaredType& type() const noexcept { return type_; }
    const Metadata& metadata() const noexcept { return details_.metadata; }

    /// Null when the field has none; at most one of the two is not.
    const ConfigValue* default_value() const noexcept {
        return std::get_if<ConfigValue>(&details_.default_value);
    }
    const DefaultFactory* default_factory() const noexcept {
        return std::get_if<DefaultFactory>(&details_.default_value);
    }

private:
    std::string name_;
    DeclaredType type_;
    FieldDetails details_;
};

/// One value for each field of a record type. Copies share the lists and mappings among the values.
class Record {
public:
    Record(const Record&) = default;
    Record(Record&&) noexcept = default;
    Record& operator=(Record other) noexcept;
    ~Record() = default;

    const RecordType& type() const noexcept { return type_; }

    /// The value of a field. Throws TypeError when there is no such field.
    const FieldValue& operator[](std::string_view field) const;

    /// The value of a field as a `T`: `Record` for a record, else whatever `ConfigValue::as` reads.
    /// A field declared as float reads as a double, the nearest one, also where an integer stands,
    /// as a default may. Throws TypeError when there is no such field or its value is no `T`, an
    /// integer that does not fit included.
    template <class T>
    T get(std::string_view field) const;

    /// Puts `value` in place of a field's value. Throws TypeError when there is no such field.
    void set(std::string_view field, FieldValue value);

    /// Of one type, and equal in every field.
    friend bool operator==(const Record& a, const Record& b);

private:
    friend class RecordDraft;

    Record(RecordType type, std::vector<FieldValue> values);

    [[noreturn]] void throw_unwanted(std::size_t position, std::string_view wanted) const;
    std::optional<double> float_at(std::size_t position) const;

    RecordType type_;
    std::vector<FieldValue> values_;
};

/// What a field holds: a value, or a record of a section.
class FieldValue {
public:
    template <class T>
    requires std::convertible_to<T, ConfigValue> FieldValue(T&& value)
        : held_(ConfigValue(std::forward<T>(value))) {}
    FieldValue(Record record) noexcept : held_(std::move(record)) {}

    FieldValue(const FieldValue&) = default;
    FieldValue(FieldValue&&) noexcept = default;
    FieldValue& operator=(FieldValue other) noexcept;
    ~FieldValue() = default;

    /// Null when it is the other.
    const ConfigValue* if_value() const noexcept { return std::get_if<ConfigValue>(&held_); }
    const Record* if_record() const noexcept { return std::get_if<Record>(&held_); }

    friend bool operator==(const FieldValue& a, const FieldValue& b) = default;

private:
    friend class RecordDraft;

    FieldValue() noexcept = default;

    /// Holds neither as long as its record is in the making.
    std::variant<std::monostate, ConfigValue, Record> held_;
};

/// A value given for a field.
struct Given {
    std::string_view field;
    FieldValue value;
};

/// A record in the making.
class RecordDraft {
public:
    explicit RecordDraft(RecordType type);

    /// Gives the field at `position`, which must exist, its value.
    void give(std::size_t position, FieldValue value) { values_[position] = std::move(value); }
    void give(std::size_t position, ConfigValue&& value) {
        values_[position].held_.emplace<ConfigValue>(std::move(value));
    }

    /// The record of what was given and, in the order of the fields, the defaults of the rest.
    /// Throws as `RecordType::make` does.
    Record finish() &&;

private:
    RecordType type_;
    std::vector<FieldValue> values_;
};

template <class T>
T Record::get(std::string_view field) const {
    const std::size_t position = type_.position_of(field);
    const FieldValue& held = values_[position];
    if constexpr (std::same_as<T, Record>) {
        if (const Record* record = held.if_record()) return *record;
        throw_unwanted(position, "a record");
    } else {
        if (const ConfigValue* value = held.if_value()) {
            if (std::optional<T> read = value->as<T>()) return *std::move(read);
        }
        if constexpr (std::same_as<T, double> || std::same_as<T, std::optional<double>>) {
            if (const std::optional<double> read = float_at(position)) return *read;
        }
        throw_unwanted(position, detail::wanted_text<T>());
    }
}

/// The display form: the type's name and every field's value.
std::string display(const Record& record);
std::string display(const RecordType& type);
std::ostream& operator<<(std::ostream& out, const Record& record);
std::ostream& operator<<(std::ostream& out, const RecordType& type);

}  // namespace velmora::config

template <>
struct std::hash<velmora::config::RecordType> {
    std::size_t operator()(const velmora::config::RecordType& type) const noexcept {
        return type.hash();
    }
};
