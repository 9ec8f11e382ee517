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

std::shared_ptr<const Declaration::Data> checked(const config::RecordType& config_type,
                                                 const std::vector<std::string>& more_mistakes) {
    auto data = std::make_shared<const Declaration::Data>(config_type);
    std::vector<std::string> mistakes = mistakes_in(*data);
    mistakes.insert(mistakes.end(), more_mistakes.begin(), more_mistakes.end());
    if (mistakes.empty()) return data;
    throw TypeError("the declaration has mistakes:\n" + utils::joined(mistakes, "\n"));
}

}  // namespace

Declaration::Data::Data(const config::RecordType& config_type)
    : declared_(sections_of(config_type)) {
    const config::Record defaults = config_type.make();
    for (const config::Section& section : declared_) {
        const auto& metadata = config_type.find_field(section.name())->metadata();
        const auto said = metadata[_SECTION_TRAITS].get_if<SectionTraits>();
        const SectionTraits traits = said != nullptr ? *said : SectionTraits();
        DeclaredSection& made =
            sections_.emplace_back(DeclaredSection{.section = &section,
                                                   .first_key = keys_.size(),
                                                   .raw = traits.raw,
                                                   .secret = traits.secret,
                                                   .has_secrets = traits.secret});
        made.mistyped = defaults.get<config::Record>(section.name()).type() != section.kind();
        sections_by_name_.emplace(section.name(), sections_by_name_.size());
        const config::Record own = section.kind().make();
        for (const config::Key& key : section.keys()) {
            const auto& of_key = section.kind().find_field(key.name())->metadata();
            keys_.emplace_back(key, of_key[_KEY_TRAITS].get_if<KeyTraits>().get(),
                               own.get<config::ConfigValue>(key.name()));
            made.has_secrets = made.has_secrets || keys_.back().traits().secret;
        }
        has_secrets_ = has_secrets_ || made.has_secrets;
    }
    for (DeclaredSection& each : sections_)
        each.keys = std::span(keys_).subspan(each.first_key, each.section->keys().size());
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        keys_by_label_.emplace(keys_[i].label(), i);
        for (const std::string& name : keys_[i].traits().formerly)
            keys_by_old_label_.emplace(keys_[i].old_label(name), i);
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

std::size_t Declaration::Data::find_key(std::size_t section, const std::string& name) const {
    const std::string label = section_name(section) + "." + name;
    const std::size_t found = find_key(label);
    return found != none ? found : find_old_key(label);
}

std::vector<std::size_t> Declaration::Data::keys_meant(std::string_view name) const {
    if (const std::size_t key = find_key(name); key != none) return {key};
    const std::size_t section = find_section(name);
    std::vector<std::size_t> meant;
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        if (section != none ? keys_[i].key().section() == name : keys_[i].key().name() == name)
            meant.push_back(i);
    }
    return meant;
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

std::string Declaration::Data::labels_text(const std::vector<std::size_t>& keys) const {
    constexpr std::size_t most = 5;
    std::vector<std::string> labels;
    for (std::size_t i = 0; i < std::min(keys.size(), most); ++i)
        labels.push_back(utils::quoted_text(keys_[keys[i]].label()));
    return utils::joined(labels) + (keys.size() > most ? ", ..." : "");
}

std::string Declaration::Data::no_section_text(std::string_view name) const {
    return "there is no section " + utils::shown_text(name) + hint_for_section(name);
}

std::string Declaration::Data::no_key_text(std::string_view label) const {
    const std::string_view name = label.substr(0, label.find('.'));
    const std::size_t section = find_section(name);
    const std::vector<std::size_t> meant = keys_meant(label);
    if (section == none && !meant.empty())
        return "there is no key " + utils::shown_text(label) + "; did you mean " +
               labels_text(meant) + "?";
    if (section == none) return no_section_text(name);
    if (sections_[section].raw) return "the section " + std::string(name) + " is read as a whole";
    if (name == label)
        return std::string(name) + " is a section; its keys are " + labels_text(meant);
    std::vector<std::string_view> labels;
    for (const JudgedKey& key : sections_[section].keys) labels.push_back(key.label());
    return "there is no key " + utils::shown_text(label) + utils::did_you_mean(label, labels);
}

std::string Declaration::Data::hint_for_section(std::string_view name) const {
    if (const std::size_t key = find_key(name); key != none)
        return "; write " + keys_[key].key().name() + " under " + keys_[key].key().section();
    std::string near = utils::did_you_mean(name, utils::names_of(declared_));
    if (!near.empty()) return near;
    const std::vector<std::size_t> meant = keys_meant(name);
    return meant.empty() ? "" : "; did you mean " + labels_text(meant) + "?";
}

std::string Declaration::Data::hint_for_key(std::size_t section, std::string_view name) const {
    if (const std::size_t key = find_key(name); key != none)
        return "; write " + keys_[key].key().name() + " under " + keys_[key].key().section();
    std::string near =
        utils::did_you_mean(name, utils::names_of(sections_[section].section->keys()));
    if (!near.empty()) return near;
    const std::vector<std::size_t> meant =
        find_section(name) == none ? keys_meant(name) : std::vector<std::size_t>();
    return meant.empty() ? "" : "; did you mean " + labels_text(meant) + "?";
}

Declaration::Declaration(const config::RecordType& config_type)
    : Declaration(config_type, nullptr, {}) {}

Declaration::Declaration(const config::RecordType& config_type, detail::Bind bind,
                         const std::vector<std::string>& mistakes)
    : data_(checked(config_type, mistakes)),
      uses_(std::make_shared<const Uses>(Uses{std::move(bind)})) {}

std::vector<Section> Declaration::sections() const {
    std::vector<Section> all;
    all.reserve(data_->sections().size());
    for (const DeclaredSection& each : data_->sections())
        all.push_back(Section(std::shared_ptr<const DeclaredSection>(data_.share(), &each)));
    return all;
}

Section Declaration::section(std::string_view name) const {
    const DeclaredSection& section = data_->sections()[data_->section_at(name)];
    return Section(std::shared_ptr<const DeclaredSection>(data_.share(), &section));
}

Key Declaration::key(std::string_view label) const {
    const JudgedKey& key = data_->keys()[data_->key_at(label)];
    return Key(std::shared_ptr<const JudgedKey>(data_.share(), &key));
}

std::vector<Key> Declaration::keys(std::string_view name) const {
    const std::vector<std::size_t> meant = data_->keys_meant(name);
    if (meant.empty()) throw config::ConfigKeyError(data_->no_key_text(name));
    std::vector<Key> keys;
    keys.reserve(meant.size());
    for (const std::size_t each : meant)
        keys.push_back(Key(std::shared_ptr<const JudgedKey>(data_.share(), &data_->keys()[each])));
    return keys;
}

Declaration Declaration::check(std::vector<std::string> labels, Check rule) const {
    for (const std::string& label : labels) data_->key_at(label);
    if (labels.empty()) throw ValueError("a check must name the keys that it speaks of");
    if (rule == nullptr) throw TypeError("a check must be a function");
    Uses uses = *uses_;
    uses.checks.push_back({std::move(labels), std::move(rule)});
    Declaration checking = *this;
    checking.uses_ = utils::NotNull<Uses>(std::make_shared<const Uses>(std::move(uses)));
    return checking;
}

Values Declaration::load(const std::vector<Layer>& layers, const LoadOptions& options) const {
    return Loading(*this, layers, options).load();
}

std::vector<Fault> Declaration::faults_of(const Layer& layer) const {
    const std::vector<Layer> layers = {layer};
    const LoadOptions options;
    return Loading(*this, layers, options).faults();
}

}  // namespace velmora::app
