#include "velmora/app/declaration.hpp"

#include <algorithm>
#include <utility>

#include "velmora/app/declaration_data.hpp"
#include "velmora/app/loading.hpp"
#include "velmora/config/record.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/nearest_name.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {

namespace {

std::shared_ptr<const Declaration::Data> checked(const config::RecordType& config_type) {
    auto data = std::make_shared<const Declaration::Data>(config_type);
    const std::vector<std::string> mistakes = mistakes_in(*data);
    if (mistakes.empty()) return data;
    throw TypeError("the declaration has mistakes:\n" + utils::joined(mistakes, "\n"));
}

}  // namespace

Declaration::Data::Data(const config::RecordType& config_type)
    : sections_(sections_of(config_type)) {
    const config::Record defaults = config_type.make();
    for (const config::Section& section : sections_) {
        const config::FieldDecl& field = *config_type.find_field(section.name());
        const auto record = defaults.get<config::Record>(section.name());
        raw_.push_back(!field.metadata()[_RAW_SECTION].is_null());
        mistyped_.push_back(record.type() != section.kind());
        first_keys_.push_back(keys_.size());
        sections_by_name_.emplace(section.name(), sections_by_name_.size());
        const config::Record own = section.kind().make();
        for (const config::Key& key : section.keys()) {
            const auto& metadata = section.kind().find_field(key.name())->metadata();
            keys_.emplace_back(key, metadata[_KEY_TRAITS].get_if<KeyTraits>().get(),
                               own.get<config::ConfigValue>(key.name()));
        }
    }
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        keys_by_label_.emplace(keys_[i].label(), i);
        for (const std::string& name : keys_[i].traits().formerly)
            keys_by_old_label_.emplace(keys_[i].old_label(name), i);
        has_secrets_ = has_secrets_ || keys_[i].traits().secret;
    }
}

std::size_t Declaration::Data::find_section(std::string_view name) const {
    const auto found = sections_by_name_.find(name);
    return found != sections_by_name_.end() ? found->second : none;
}

std::size_t Declaration::Data::find_key(std::string_view label) const {
    const auto found = keys_by_label_.find(label);
    return found != keys_by_label_.end() ? found->second : none;
}

std::size_t Declaration::Data::find_old_key(const std::string& label) const {
    const auto found = keys_by_old_label_.find(label);
    return found != keys_by_old_label_.end() ? found->second : none;
}

bool Declaration::Data::is_key(std::size_t section, const std::string& name) const {
    return sections_[section].kind().find_field(name) != nullptr ||
           (!keys_by_old_label_.empty() &&
            find_old_key(sections_[section].name() + "." + name) != none);
}

std::size_t Declaration::Data::section_at(std::string_view name) const {
    const std::size_t found = find_section(name);
    if (found == none) throw config::ConfigKeyError(no_section_text(name));
    return found;
}

std::size_t Declaration::Data::key_at(std::string_view label) const {
    const std::size_t found = find_key(label);
    if (found == none) throw config::ConfigKeyError(no_key_text(label));
    return found;
}

std::string Declaration::Data::no_section_text(std::string_view name) const {
    return "there is no section " + utils::shown_text(name) + hint_for_section(name);
}

std::string Declaration::Data::no_key_text(std::string_view label) const {
    const std::string_view name = label.substr(0, label.find('.'));
    const std::size_t section = find_section(name);
    if (section == none) return no_section_text(name);
    if (is_raw(section)) return "the section " + std::string(name) + " is read as a whole";
    std::vector<std::string_view> labels;
    const std::size_t first = first_keys_[section];
    for (std::size_t i = 0; i < sections_[section].keys().size(); ++i)
        labels.push_back(keys_[first + i].label());
    return "there is no key " + utils::shown_text(label) + utils::did_you_mean(label, labels);
}

std::string Declaration::Data::hint_for_section(std::string_view name) const {
    return utils::did_you_mean(name, utils::names_of(sections_));
}

std::string Declaration::Data::hint_for_key(std::size_t section, std::string_view name) const {
    return utils::did_you_mean(name, utils::names_of(sections_[section].keys()));
}

Declaration::Declaration(const config::RecordType& config_type)
    : Declaration(config_type, nullptr) {}

Declaration::Declaration(const config::RecordType& config_type, detail::Bind bind)
    : data_(checked(config_type)), uses_(std::make_shared<const Uses>(Uses{std::move(bind)})) {}

const std::vector<config::Section>& Declaration::sections() const noexcept {
    return data_->sections();
}

const config::Section& Declaration::section(std::string_view name) const {
    return sections()[data_->section_at(name)];
}

const config::Key& Declaration::key(std::string_view label) const {
    return data_->keys()[data_->key_at(label)].key();
}

Declaration Declaration::check(std::vector<std::string> labels, Check rule) const {
    for (const std::string& label : labels) data_->key_at(label);
    if (labels.empty()) throw ValueError("a check must name the keys that it speaks of");
    Uses uses = *uses_;
    uses.checks.push_back({std::move(labels), std::move(rule)});
    Declaration checking = *this;
    checking.uses_ = utils::NotNull<Uses>(std::make_shared<const Uses>(std::move(uses)));
    return checking;
}

Values Declaration::load(const std::vector<Layer>& layers, const LoadOptions& options) const {
    return Loading(*this, layers, options).load();
}

}  // namespace velmora::app
