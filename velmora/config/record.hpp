// The records that are made of record types.
//
//     const RecordType point("Point", {{"x", float_type, {.default_value = 0.0}},
//                                      {"label", str_type, {.default_value = "origin"}}});
//     Record record = point.make({{"x", 1.5}});
//     record.get<std::string>("label");  // "origin"
//
// A configuration is declared with the functions of declaration.hpp rather than field by field like
// this.
#pragma once

#include <concepts>
#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "velmora/config/field.hpp"
#include "velmora/config/record_type.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/utils/not_null.hpp"

namespace velmora::config {

namespace detail {
class RecordDraft;
}

/// One value for each field of a record type. Copies share the lists and mappings among the values.
/// Once moved from, a record has no fields until it is assigned to.
class VELMORA_EXPORT Record {
public:
    Record(const Record&) = default;
    Record(Record&&) noexcept = default;
    Record& operator=(Record other) noexcept;
    ~Record() = default;

    const RecordType& type() const noexcept { return type_; }

    /// The value of a field, valid until the record is changed, moved from or destroyed. Throws
    /// TypeError, which names the nearest field, when there is no such one.
    const FieldValue& operator[](std::string_view field) const;

    /// The value of a field as a `T`: `Record` for a record, else whatever `ConfigValue::as` reads.
    /// A field declared as float reads as a double, the nearest one, also where an integer stands,
    /// as a default may. Throws TypeError when there is no such field or its value is no `T`, an
    /// integer that does not fit included. Messages about a record that `Section::read` made call a
    /// field by its key's label.
    template <class T>
    T get(std::string_view field) const;

    /// Puts `value` in place of a field's value. Throws TypeError when there is no such field.
    void set(std::string_view field, FieldValue value);

    /// Of one type, and equal in every field.
    VELMORA_EXPORT friend bool operator==(const Record& a, const Record& b);
    friend std::string display(const Record& record);

private:
    friend class detail::RecordDraft;

    Record(const RecordType& type, std::vector<FieldValue> values,
           std::shared_ptr<const std::string> section);

    std::size_t position(std::string_view field) const;
    std::optional<double> float_at(std::size_t position) const;
    [[noreturn]] void refuse_reading(std::size_t position, std::string_view wanted) const;

    RecordType type_;
    std::vector<FieldValue> values_;
    /// The name of the section that the record was read for; null when it was not.
    std::shared_ptr<const std::string> section_;
};

/// What a field holds: a value, or a record of a section.
class FieldValue {
public:
    template <class T>
    requires std::convertible_to<T, ConfigValue> FieldValue(T&& value)
        : held_(std::in_place_type<ConfigValue>, std::forward<T>(value)) {}
    FieldValue(Record record)
        : held_(utils::NotNull<Record>(std::make_shared<const Record>(std::move(record)))) {}

    /// Null when it is the other.
    const ConfigValue* if_value() const noexcept { return std::get_if<ConfigValue>(&held_); }
    const Record* if_record() const noexcept {
        const auto* record = std::get_if<utils::NotNull<Record>>(&held_);
        return record != nullptr ? record->get() : nullptr;
    }

    friend bool operator==(const FieldValue& a, const FieldValue& b) = default;

private:
    friend class detail::RecordDraft;

    FieldValue() noexcept = default;

    /// Holds neither as long as its record is in the making.
    std::variant<std::monostate, ConfigValue, utils::NotNull<Record>> held_;
};

struct RecordType::Given {
    std::string_view field;
    FieldValue value;
};

template <class T>
T Record::get(std::string_view field) const {
    const std::size_t at = position(field);
    const FieldValue& held = values_[at];
    if constexpr (std::same_as<T, Record>) {
        if (const Record* record = held.if_record()) return *record;
        refuse_reading(at, "a record");
    } else {
        if (const ConfigValue* value = held.if_value()) {
            if (std::optional<T> read = value->as<T>()) return *std::move(read);
        }
        if constexpr (std::same_as<T, double> || std::same_as<T, std::optional<double>>) {
            if (const std::optional<double> read = float_at(at)) return *read;
        }
        refuse_reading(at, detail::wanted_text<T>());
    }
}

/// The display form: the type's name and every field's value.
VELMORA_EXPORT std::string display(const Record& record);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const Record& record);

}  // namespace velmora::config
