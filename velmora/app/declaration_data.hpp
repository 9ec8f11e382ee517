// A declaration with everything settled that loads need of it. Private.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "velmora/app/declaration.hpp"
#include "velmora/app/judged_key.hpp"

namespace velmora::app {

struct DeclaredSection {
    const config::Section* section;
    /// The position of its first key among those of all sections, and its keys.
    std::size_t first_key;
    std::span<const JudgedKey> keys = {};
    bool raw = false;
    /// Whether all of it is secret, which a raw one may be, or one of its keys.
    bool secret = false;
    bool has_secrets = false;
    /// Whether its field is declared under another type than its default is of.
    bool mistyped = false;
};

class Declaration::Data {
public:
    explicit Data(const config::RecordType& config_type);
    Data(const Data&) = delete;
    Data& operator=(const Data&) = delete;

    const std::vector<DeclaredSection>& sections() const noexcept { return sections_; }
    const std::string& section_name(std::size_t section) const noexcept {
        return sections_[section].section->name();
    }
    /// Those of all sections, one section after the other.
    const std::vector<JudgedKey>& keys() const noexcept { return keys_; }

    /// Whether there is a secret among the keys and the raw sections.
    bool has_secrets() const noexcept { return has_secrets_; }

    /// The position of the section of this name, or of the key with this label; `none` for none.
    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    std::size_t find_section(std::string_view name) const;
    std::size_t find_key(std::string_view label) const;
    /// The same of the key that had this label before.
    std::size_t find_old_key(const std::string& label) const;
    /// The position of a section's key that has this name, or had it.
    std::size_t find_key(std::size_t section, const std::string& name) const;
    /// Those of the keys that are meant by a label, the name of a section or that of a key.
    std::vector<std::size_t> keys_meant(std::string_view name) const;

    /// Throw ConfigKeyError, which names the nearest one, when there is none.
    std::size_t section_at(std::string_view name) const;
    std::size_t key_at(std::string_view label) const;

    /// Says that there is no key with this label, and which is meant.
    std::string no_key_text(std::string_view label) const;

    /// "; did you mean 'port'?" for what is no section, or no key of the section at `section`; or
    /// where a key of this name belongs.
    std::string hint_for_section(std::string_view name) const;
    std::string hint_for_key(std::size_t section, std::string_view name) const;

private:
    std::string no_section_text(std::string_view name) const;
    std::string labels_text(const std::vector<std::size_t>& keys) const;

    std::vector<config::Section> declared_;
    std::vector<DeclaredSection> sections_;
    std::vector<JudgedKey> keys_;
    std::unordered_map<std::string_view, std::size_t> sections_by_name_;
    std::unordered_map<std::string_view, std::size_t> keys_by_label_;
    std::unordered_map<std::string, std::size_t> keys_by_old_label_;
    bool has_secrets_ = false;
};

struct Declaration::Uses {
    struct LabelledCheck {
        std::vector<std::string> labels;
        Check check;
    };

    detail::Bind bind = nullptr;
    std::vector<LabelledCheck> checks = {};
};

/// What `lint` finds.
std::vector<std::string> mistakes_in(const Declaration::Data& declaration);

}  // namespace velmora::app
