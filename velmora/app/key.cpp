#include "velmora/app/key.hpp"

#include "velmora/app/declaration_data.hpp"

namespace velmora::app {

const std::string& Key::label() const noexcept {
    return key_->label();
}
const std::string& Key::section() const noexcept {
    return key_->key().section();
}
const std::string& Key::name() const noexcept {
    return key_->key().name();
}
const std::string& Key::doc() const noexcept {
    return key_->key().setting().doc();
}
config::KeyKind Key::kind() const noexcept {
    return key_->key().kind();
}
config::Restart Key::restart() const noexcept {
    return key_->key().restart();
}
const std::optional<std::string>& Key::env() const noexcept {
    return key_->key().setting().env();
}
const std::optional<config::Bound>& Key::bounds() const noexcept {
    return key_->counted().bounds();
}
const std::vector<std::string>& Key::choices() const noexcept {
    return key_->counted().choices();
}
const std::vector<std::string>& Key::formerly() const noexcept {
    return key_->traits().formerly;
}
const std::string& Key::unit() const noexcept {
    return key_->traits().unit;
}
bool Key::is_required() const noexcept {
    return key_->traits().required;
}
bool Key::is_optional() const noexcept {
    return key_->traits().optional;
}
bool Key::is_secret() const noexcept {
    return key_->traits().secret;
}
const config::ConfigValue& Key::default_value() const noexcept {
    return key_->default_value();
}

config::ConfigValue Key::coerce(const config::ConfigValue& value) const {
    Verdict verdict = key_->judge({value});
    if (!verdict.accepted()) throw config::ConfigKeyError(verdict.refusal, verdict.cause);
    return std::move(verdict.value);
}

std::string Key::accepted() const {
    return key_->accepted_text();
}

std::string Key::shown(const config::ConfigValue& value) const {
    return key_->shown_in_full(value);
}

const std::string& Section::name() const noexcept {
    return section_->section->name();
}
const std::string& Section::doc() const noexcept {
    return section_->section->setting().doc();
}
config::Restart Section::restart() const noexcept {
    return section_->section->setting().restart();
}
bool Section::is_raw() const noexcept {
    return section_->raw;
}
bool Section::is_secret() const noexcept {
    return section_->secret;
}

std::vector<Key> Section::keys() const {
    std::vector<Key> keys;
    keys.reserve(section_->keys.size());
    for (const JudgedKey& each : section_->keys)
        keys.push_back(Key(std::shared_ptr<const JudgedKey>(section_.share(), &each)));
    return keys;
}

}  // namespace velmora::app
