#include "velmora/config/record_type.hpp"

#include <bit>
#include <memory>
#include <ostream>
#include <utility>

#include "velmora/config/record.hpp"
#include "velmora/config/record_draft.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/hash.hpp"
#include "velmora/utils/index.hpp"
#include "velmora/utils/nearest_name.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::config {

struct RecordType::Data {
    Data(std::string its_name, std::vector<FieldDecl> its_fields)
        : name(std::move(its_name)),
          fields(std::move(its_fields)),
          positions(std::bit_ceil(2 * fields.size() + 1)) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const std::size_t hash = utils::hash_text(fields[i].name());
            const std::size_t first = find(fields[i].name(), hash);
            if (first != utils::Index::none) refuse_second(first, i);
            positions.insert(hash, i);
        }
    }

    std::size_t find(std::string_view field, std::size_t hash) const {
        return positions.find(hash, [&](std::size_t i) { return fields[i].name() == field; });
    }

    [[noreturn]] void refuse_second(std::size_t first, std::size_t second) const {
        const auto with_number = [this](std::size_t i) {
            return utils::quoted_text(fields[i].name()) + " (field " + std::to_string(i + 1) + ")";
        };
        throw TypeError("two fields of " + name + " have one name: " + with_number(first) +
                        " and " + with_number(second));
    }

    std::string name;
    std::vector<FieldDecl> fields;
    utils::Index positions;
};

RecordType::RecordType(std::string name, std::vector<FieldDecl> fields)
    : data_(std::make_shared<const Data>(std::move(name), std::move(fields))) {}

const std::string& RecordType::name() const noexcept {
    return data_->name;
}

const std::vector<FieldDecl>& RecordType::fields() const noexcept {
    return data_->fields;
}

const FieldDecl* RecordType::find_field(std::string_view name) const {
    const std::size_t found = data_->find(name, utils::hash_text(name));
    return found != utils::Index::none ? &data_->fields[found] : nullptr;
}

std::size_t RecordType::position_of(std::string_view name) const {
    if (const FieldDecl* field = find_field(name))
        return static_cast<std::size_t>(field - fields().data());
    throw TypeError(this->name() + " has no field " + utils::quoted_text(name) +
                    utils::did_you_mean(name, utils::names_of(fields())));
}

std::map<std::string, DeclaredType, std::less<>> RecordType::resolve_types() const {
    std::map<std::string, DeclaredType, std::less<>> types;
    for (const FieldDecl& field : fields()) types.emplace(field.name(), field.type().resolved());
    return types;
}

Record RecordType::make(std::vector<Given> given) const {
    detail::RecordDraft draft(*this);
    for (Given& each : given) draft.give(position_of(each.field), std::move(each.value));
    return std::move(draft).finish();
}

Record RecordType::make() const {
    return detail::RecordDraft(*this).finish();
}

std::string display(const RecordType& type) {
    return "RecordType(" + utils::quoted_text(type.name()) + ")";
}

std::ostream& operator<<(std::ostream& out, const RecordType& type) {
    return out << display(type);
}

}  // namespace velmora::config
