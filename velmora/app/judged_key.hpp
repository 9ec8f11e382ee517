// The one judgement of this layer over a value for a key. Private.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "velmora/app/traits.hpp"
#include "velmora/config/schema.hpp"
#include "velmora/yaml/located.hpp"

namespace velmora::app {

/// A value as a source gives it.
struct GivenRaw {
    const config::ConfigValue& value;
    /// How it is written, where it is a plain scalar of YAML that is no text; else empty.
    std::string_view spelling = {};
    /// Knows the spellings of the items of a list; may be null.
    const yaml::LocatedValue* document = nullptr;
};

/// Raised for an item of a list.
class RefusedItem : public config::ConfigKeyError {
public:
    RefusedItem(const config::ConfigKeyError& error, std::size_t item)
        : ConfigKeyError(error.message(), error.cause()), item_(item) {}

    /// Its position, from 0.
    std::size_t item() const noexcept { return item_; }

private:
    std::size_t item_;
};

class JudgedKey {
public:
    /// `key` must outlive the object; `traits` may be null.
    JudgedKey(const config::Key& key, const KeyTraits* traits, config::ConfigValue default_value);

    const config::Key& key() const noexcept { return *key_; }
    const KeyTraits& traits() const noexcept { return traits_; }
    const config::ConfigValue& default_value() const noexcept { return default_value_; }
    const std::string& label() const noexcept { return label_; }
    /// The label that the key had by a name that it had.
    std::string old_label(const std::string& name) const { return key_->section() + "." + name; }

    /// The value that the key takes for what a source gives. Throws ConfigKeyError, RefusedItem for
    /// an item of a list. The message about a secret key does not show the value, and has no cause
    /// that does; nor does any when the source itself is `secret`.
    config::ConfigValue judge(const GivenRaw& raw, bool secret = false) const;

    /// What the key takes: "an int, at least 1 and at most 65535".
    std::string accepted_text() const;

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
    config::ConfigValue judge_openly(const GivenRaw& raw) const;
    config::ConfigValue judge_list(const GivenRaw& raw) const;
    config::ConfigValue judge_items(const config::List& items) const;
    config::Key item_key(const std::string& name) const;

    const config::Key* key_;
    KeyTraits traits_;
    config::ConfigValue default_value_;
    std::string label_;
    std::optional<config::Key> item_;
};

}  // namespace velmora::app
