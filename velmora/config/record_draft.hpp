// Records in the making. Private: records are made by their types and by sections.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "velmora/config/record.hpp"

namespace velmora::config::detail {

/// The factory of a list default, known as such so that its copy is made in its place.
struct ListDefault {
    List items;

    FieldValue operator()() const { return items.copy(); }
};

class RecordDraft {
public:
    /// `section` is the name that messages call the record by, null for that of its type.
    // NOLINTNEXTLINE(modernize-pass-by-value): to move a type is to copy it.
    explicit RecordDraft(const RecordType& type,
                         std::shared_ptr<const std::string> section = nullptr)
        : type_(type), section_(std::move(section)) {
        values_.reserve(type_.fields().size());
    }

    /// Gives the field at `position`, which must exist, its value.
    template <class Value>
    void give(std::size_t position, Value&& value) {
        if (position == next_) {
            values_.emplace_back(std::forward<Value>(value));
            ++next_;
        } else {
            give_out_of_order(position, std::forward<Value>(value));
        }
    }

    /// The record of what was given and, in the order of the fields, the defaults of the rest.
    /// Throws as `RecordType::make` does.
    Record finish() &&;

private:
    void give_out_of_order(std::size_t position, FieldValue value);
    FieldValue default_of(const FieldDecl& field) const;

    RecordType type_;
    std::shared_ptr<const std::string> section_;
    /// Of the fields up to the last one that was given a value.
    std::vector<FieldValue> values_;
    std::size_t next_ = 0;   ///< Their number.
    bool has_gaps_ = false;  ///< Whether one of these may have none yet.
};

}  // namespace velmora::config::detail
