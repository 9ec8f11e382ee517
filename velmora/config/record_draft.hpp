// Records in the making. Private: records are made by their types and by sections.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "velmora/config/record.hpp"

namespace velmora::config::detail {

class RecordDraft {
public:
    /// `section` is the name that messages call the record by, null for that of its type.
    explicit RecordDraft(RecordType type, std::shared_ptr<const std::string> section = nullptr)
        : type_(std::move(type)), section_(std::move(section)) {
        values_.reserve(type_.fields().size());
    }

    /// Gives the field at `position`, which must exist, its value.
    template <class Value>
    void give(std::size_t position, Value&& value) {
        if (position == values_.size()) {
            values_.emplace_back(std::forward<Value>(value));
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
    bool has_gaps_ = false;  ///< Whether one of these may have none yet.
};

}  // namespace velmora::config::detail
