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
        : type_(std::move(type)),
          values_(type_.fields().size(), FieldValue()),
          section_(std::move(section)) {}

    /// Gives the field at `position`, which must exist, its value.
    void give(std::size_t position, FieldValue value) { values_[position] = std::move(value); }
    void give(std::size_t position, ConfigValue&& value) {
        values_[position].held_.emplace<ConfigValue>(std::move(value));
    }

    /// The record of what was given and, in the order of the fields, the defaults of the rest.
    /// Throws as `RecordType::make` does.
    Record finish() &&;

private:
    void take_default(std::size_t position);

    RecordType type_;
    std::vector<FieldValue> values_;
    std::shared_ptr<const std::string> section_;
};

}  // namespace velmora::config::detail
