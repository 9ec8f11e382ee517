// The one judgement of this layer over a value for a key. Private.
#pragma once

#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "velmora/app/traits.hpp"
#include "velmora/config/schema.hpp"
#include "velmora/yaml/located.hpp"

namespace velmora::app {

/// Whether a value may be shown, as far as its source can tell.
enum class Privacy {
    open,    ///< Unless its key is secret.
    doubt,   ///< There may be a secret in it, which belongs to another key.
    secret,  ///< It comes from where secrets are kept.
};

/// A value as a source gives it.
struct GivenRaw {
    const config::ConfigValue& value;
    /// How it is written, where it is a plain scalar of YAML that is no text; else empty.
    std::string_view spelling = {};
    /// Knows the spellings of the items of a list; may be null.
    const yaml::LocatedValue* document = nullptr;
    Privacy privacy = Privacy::open;
};

struct Verdict {
    /// What the key makes of the value.
    config::ConfigValue value = {};
    /// Why it takes none; empty when it does.
    std::string refusal = {};
    /// The item of a list that is to blame, from 0.
    std::optional<std::size_t> item = std::nullopt;
    /// The error of the component behind a refusal that shows what it refuses; may be null.
    std::exception_ptr cause = nullptr;
    /// "25.9 is taken as 25", of a value that is taken as another one; may be empty.
    std::string advice = {};

    bool accepted() const noexcept { return refusal.empty(); }
};

class JudgedKey {
public:
    /// `key` must outlive the object; `traits` may be null.
    JudgedKey(const config::Key& key, const KeyTraits* traits, config::ConfigValue default_value);

    const config::Key& key() const noexcept { return *key_; }
    const KeyTraits& traits() const noexcept { return traits_; }
    /// By what its values are judged, or the items of its lists.
    const config::Setting& counted() const noexcept {
        return item_ ? item_->setting() : key_->setting();
    }
    const config::ConfigValue& default_value() const noexcept { return default_value_; }
    const std::string& label() const noexcept { return label_; }
    /// The label that the key had by a name that it had.
    std::string old_label(const std::string& name) const { return key_->section() + "." + name; }

    /// What becomes of what a source gives. Shows nothing of what is private.
    Verdict judge(const GivenRaw& raw) const;

    /// What the key takes: "an int, at least 1 and at most 65535", with numbers in full. The ends
    /// that only the type of a member has are left out unless `all_ends` are asked for.
    std::string accepted_text(bool all_ends = false) const;

    /// What else helps whoever has given a value that is refused: the range in full, where messages
    /// round it, and the unit. May be empty.
    std::string note() const;

    /// A value of the key as every text of this layer shows it: the display form, unless it is
    /// secret, cut where it is long.
    std::string shown(const config::ConfigValue& value) const;
    /// The same, never cut.
    std::string shown_in_full(const config::ConfigValue& value) const;

private:
    bool is_hidden(const config::ConfigValue& value) const {
        return traits_.secret && !value.is_null();
    }
    config::ConfigValue taken(const GivenRaw& raw) const;
    config::ConfigValue taken_list(const GivenRaw& raw) const;
    void check_texts(const config::List& items) const;
    config::ConfigValue taken_items(const config::List& items) const;
    std::string advice_on(const GivenRaw& raw, const config::ConfigValue& value) const;
    config::Key item_key(std::size_t item) const;

    const config::Key* key_;
    KeyTraits traits_;
    config::ConfigValue default_value_;
    std::string label_;
    std::optional<config::Key> item_;
    /// Whether it counts units of which there are no parts.
    bool whole_;
};

/// What stands for a value that is not shown.
inline constexpr std::string_view hidden_text = "(secret)";

}  // namespace velmora::app
