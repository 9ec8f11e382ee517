#include "velmora/config/record.hpp"

#include <array>
#include <ostream>
#include <unordered_map>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::config {

// --- RecordType ---

struct RecordType::Data {
    std::string name;
    std::vector<FieldDecl> fields;
    /// By names that refer into `fields`.
    std::unordered_map<std::string_view, std::size_t> positions;
};

RecordType::RecordType(std::string name, std::vector<FieldDecl> fields) {
    auto data = std::make_shared<Data>(Data{std::move(name), std::move(fields), {}});
    for (std::size_t i = 0; i < data->fields.size(); ++i) {
        const std::string& field = data->fields[i].name();
        const auto [first, fresh] = data->positions.try_emplace(field, i);
        if (!fresh) {
            throw TypeError("two fields of " + data->name +
                            " have one name: " + utils::quoted_text(field) + " (field " +
                            std::to_string(first->second + 1) + ") and " +
                            utils::quoted_text(field) + " (field " + std::to_string(i + 1) + ")");
        }
    }
    data_ = std::move(data);
}

const std::string& RecordType::name() const noexcept {
    return data_->name;
}

const std::vector<FieldDecl>& RecordType::fields() const noexcept {
    return data_->fields;
}

std::size_t RecordType::position_of(std::string_view field, std::size_t expected) const {
    if (expected < data_->fields.size() && data_->fields[expected].name() == field) return expected;
    const auto found = data_->positions.find(field);
    if (found != data_->positions.end()) return found->second;
    throw TypeError(name() + " has no field " + utils::quoted_text(field));
}

std::map<std::string, DeclaredType, std::less<>> RecordType::resolve_types() const {
    std::map<std::string, DeclaredType, std::less<>> types;
    for (const FieldDecl& field : fields()) types.emplace(field.name(), field.type().resolved());
    return types;
}

Record RecordType::make(std::vector<Given> given) const {
    RecordDraft draft(*this);
    for (Given& each : given) draft.give(position_of(each.field), std::move(each.value));
    return std::move(draft).finish();
}

Record RecordType::make() const {
    return RecordDraft(*this).finish();
}

// --- Declared types ---

std::optional<DeclaredType> TypeReference::target() const {
    return resolve_ ? resolve_() : std::nullopt;
}

DeclaredType DeclaredType::list_of(const DeclaredType& element) {
    return DeclaredType(std::in_place_type<ListOf>,
                        {std::make_shared<const DeclaredType>(element)});
}

DeclaredType DeclaredType::other(std::string name) {
    return DeclaredType(std::in_place_type<Other>, {std::move(name)});
}

bool DeclaredType::is(Basic basic) const noexcept {
    const auto* own = std::get_if<Basic>(&form_);
    return own != nullptr && *own == basic;
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
    if (const auto* list = std::get_if<ListOf>(&form_))
        return list_of(list->element->resolved(most_steps));
    const auto* reference = std::get_if<TypeReference>(&form_);
    if (reference == nullptr) return *this;
    const std::optional<DeclaredType> target = most_steps > 0 ? reference->target() : std::nullopt;
    if (!target)
        throw TypeError("the reference " + utils::quoted_text(reference->name()) +
                        " names no type");
    return target->resolved(most_steps - 1);
}

std::string DeclaredType::name() const {
    struct Name {
        std::string operator()(Basic basic) const {
            constexpr std::array<const char*, 5> names = {"bool", "int", "float", "str", "list"};
            return names[static_cast<std::size_t>(basic)];
        }
        std::string operator()(const ListOf& list) const {
            return "list[" + list.element->name() + "]";
        }
        std::string operator()(const RecordType& record) const { return record.name(); }
        std::string operator()(const TypeReference& reference) const { return reference.name(); }
        std::string operator()(const Other& type) const { return type.name; }
    };
    return std::visit(Name{}, form_);
}

// --- Metadata ---

Descriptor Metadata::operator[](std::string_view key) const {
    const auto found = entries_.find(key);
    return found != entries_.end() ? found->second : Descriptor();
}

// --- Records ---

Record::Record(RecordType type, std::vector<FieldValue> values)
    : type_(std::move(type)), values_(std::move(values)) {}

Record& Record::operator=(Record other) noexcept {
    std::swap(type_, other.type_);
    std::swap(values_, other.values_);
    return *this;
}

const FieldValue& Record::operator[](std::string_view field) const {
    return values_[type_.position_of(field)];
}

void Record::set(std::string_view field, FieldValue value) {
    values_[type_.position_of(field)] = std::move(value);
}

bool operator==(const Record& a, const Record& b) {
    return a.type_ == b.type_ && a.values_ == b.values_;
}

void Record::throw_unwanted(std::size_t position, std::string_view wanted) const {
    const Record* record = values_[position].if_record();
    const std::string held = record != nullptr ? "a record of " + record->type().name()
                                               : _shown(*values_[position].if_value());
    throw TypeError(type_.name() + "." + type_.fields()[position].name() + " holds " + held +
                    ", not " + std::string(wanted));
}

std::optional<double> Record::float_at(std::size_t position) const {
    const ConfigValue* value = values_[position].if_value();
    const auto* integer = value != nullptr ? value->get_if<Integer>() : nullptr;
    const DeclaredType& type = type_.fields()[position].type();
    if (integer == nullptr || !type.resolved().is(DeclaredType::Basic::float_)) return std::nullopt;
    try {
        return integer->to_double();
    } catch (const OverflowError&) {
        return std::nullopt;
    }
}

FieldValue& FieldValue::operator=(FieldValue other) noexcept {
    held_ = std::move(other.held_);
    return *this;
}

RecordDraft::RecordDraft(RecordType type)
    : type_(std::move(type)), values_(type_.fields().size(), FieldValue()) {}

Record RecordDraft::finish() && {
    for (std::size_t i = 0; i < values_.size(); ++i) {
        if (!std::holds_alternative<std::monostate>(values_[i].held_)) continue;
        const FieldDecl& field = type_.fields()[i];
        if (const ConfigValue* value = field.default_value()) {
            values_[i].held_ = *value;
        } else if (const DefaultFactory* factory = field.default_factory()) {
            values_[i] = (*factory)();
        } else {
            throw TypeError(type_.name() + " needs a value for its field " +
                            utils::quoted_text(field.name()));
        }
    }
    return {std::move(type_), std::move(values_)};
}

std::string display(const Record& record) {
    std::vector<std::pair<std::string_view, std::string>> fields;
    for (const FieldDecl& field : record.type().fields()) {
        const FieldValue& held = record[field.name()];
        fields.emplace_back(field.name(), held.if_record() != nullptr ? display(*held.if_record())
                                                                      : display(*held.if_value()));
    }
    return display_record(record.type().name(), fields);
}

std::string display(const RecordType& type) {
    return "RecordType(" + utils::quoted_text(type.name()) + ")";
}

std::ostream& operator<<(std::ostream& out, const Record& record) {
    return out << display(record);
}
std::ostream& operator<<(std::ostream& out, const RecordType& type) {
    return out << display(type);
}

}  // namespace velmora::config
