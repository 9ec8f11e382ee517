#include "velmora/config/record.hpp"

#include <ostream>
#include <span>
#include <utility>

#include "velmora/config/display.hpp"
#include "velmora/config/record_draft.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::config {

namespace {

// Counts the records that are being made, one for the default of another.
class Level {
public:
    explicit Level(const RecordType& type) {
        constexpr int most_levels = 100;
        if (levels_ == most_levels) {
            throw TypeError("a record of " + type.name() +
                            " has no end: its defaults hold records of each other");
        }
        ++levels_;
    }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    ~Level() { --levels_; }

private:
    static thread_local int levels_;
};

thread_local int Level::levels_ = 0;

// Null for every other default.
const detail::ListDefault* list_default(const FieldDecl& field) {
    const DefaultFactory* make = field.default_factory();
    return make != nullptr ? make->target<detail::ListDefault>() : nullptr;
}

}  // namespace

void detail::RecordDraft::give_out_of_order(std::size_t position, FieldValue value) {
    if (position >= next_) {
        values_.resize(position + 1, FieldValue());
        next_ = position + 1;
        has_gaps_ = true;
    }
    values_[position] = std::move(value);
}

FieldValue detail::RecordDraft::default_of(const FieldDecl& field) const {
    if (const ConfigValue* value = field.default_value()) return *value;
    if (const DefaultFactory* make = field.default_factory()) {
        const Level level(type_);
        return (*make)();
    }
    throw TypeError(type_.name() + " needs a value for its field " +
                    utils::quoted_text(field.name()));
}

Record detail::RecordDraft::finish() && {
    const std::vector<FieldDecl>& fields = type_.fields();
    for (std::size_t i = 0; has_gaps_ && i < values_.size(); ++i) {
        if (std::holds_alternative<std::monostate>(values_[i].held_))
            values_[i] = default_of(fields[i]);
    }
    for (const FieldDecl& field : std::span(fields).subspan(next_)) {
        if (const ConfigValue* value = field.default_value()) {
            values_.emplace_back(*value);
        } else if (const ListDefault* list = list_default(field)) {
            values_.emplace_back(list->items.copy());
        } else {
            values_.push_back(default_of(field));
        }
    }
    return {type_, std::move(values_), std::move(section_)};
}

// NOLINTNEXTLINE(modernize-pass-by-value): to move a type is to copy it.
Record::Record(const RecordType& type, std::vector<FieldValue> values,
               std::shared_ptr<const std::string> section)
    : type_(type), values_(std::move(values)), section_(std::move(section)) {}

Record& Record::operator=(Record other) noexcept {
    std::swap(type_, other.type_);
    std::swap(values_, other.values_);
    std::swap(section_, other.section_);
    return *this;
}

const FieldValue& Record::operator[](std::string_view field) const {
    return values_[position(field)];
}

std::size_t Record::position(std::string_view field) const {
    const std::size_t position = type_.position_of(field);
    if (position < values_.size()) return position;
    throw TypeError("a record of " + type_.name() + " that was moved from has no fields");
}

void Record::set(std::string_view field, FieldValue value) {
    std::swap(values_[position(field)], value);
}

bool operator==(const Record& a, const Record& b) {
    return a.type_ == b.type_ && a.values_ == b.values_;
}

void Record::refuse_reading(std::size_t position, std::string_view wanted) const {
    const Record* record = values_[position].if_record();
    const std::string held = record != nullptr ? "a record of " + record->type().name()
                                               : _shown(*values_[position].if_value());
    throw TypeError((section_ != nullptr ? *section_ : type_.name()) + "." +
                    type_.fields()[position].name() + " holds " + held + ", not " +
                    std::string(wanted));
}

std::optional<double> Record::float_at(std::size_t position) const {
    const ConfigValue* value = values_[position].if_value();
    const auto* integer = value != nullptr ? value->get_if<Integer>() : nullptr;
    const DeclaredType& type = type_.fields()[position].type();
    if (integer == nullptr || type.resolved().key_kind() != KeyKind::float_) return std::nullopt;
    try {
        return integer->to_double();
    } catch (const OverflowError&) {
        return std::nullopt;
    }
}

std::string display(const Record& record) {
    std::vector<std::pair<std::string_view, std::string>> fields;
    for (std::size_t i = 0; i < record.values_.size(); ++i) {
        const FieldValue& held = record.values_[i];
        fields.emplace_back(record.type_.fields()[i].name(), held.if_record() != nullptr
                                                                 ? display(*held.if_record())
                                                                 : display(*held.if_value()));
    }
    return display_fields(record.type_.name(), fields);
}

std::ostream& operator<<(std::ostream& out, const Record& record) {
    return out << display(record);
}

}  // namespace velmora::config
