// The declared fields of record types, and what is attached to them.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <variant>
#include <vector>

#include "velmora/config/declared_type.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

class FieldValue;

/// A value of any type, attached to a field; shared by all copies, never copied itself.
class Descriptor {
public:
    Descriptor() = default;
    template <class T>
    explicit Descriptor(std::shared_ptr<T> value) {
        if (value == nullptr) return;
        value_ = std::move(value);
        type_ = &typeid(std::shared_ptr<const T>);
    }

    /// The very value that was attached, when it is a `T`; else null.
    template <class T>
    std::shared_ptr<const T> get_if() const {
        const bool is_one = type_ != nullptr && *type_ == typeid(std::shared_ptr<const T>);
        return is_one ? std::static_pointer_cast<const T>(value_) : nullptr;
    }

    bool is_null() const noexcept { return value_ == nullptr; }

private:
    std::shared_ptr<const void> value_;
    /// That of a pointer to the value, null when there is none.
    const std::type_info* type_ = nullptr;
};

/// The descriptors of a field by text key; never changed once made.
class VELMORA_EXPORT Metadata {
public:
    Metadata() = default;
    Metadata(std::initializer_list<std::pair<const std::string, Descriptor>> entries);
    Metadata(std::string key, Descriptor descriptor)
        : first_(std::move(key), std::move(descriptor)) {}

    /// The descriptor under `key`, a null one when there is none.
    Descriptor operator[](std::string_view key) const;

    /// The same descriptors and, under `key`, this one.
    Metadata with(std::string_view key, Descriptor descriptor) const;

private:
    using Entry = std::pair<std::string, Descriptor>;

    /// Most fields have one descriptor, which takes no memory of its own.
    Entry first_;
    std::vector<Entry> more_;
};

/// Makes a fresh default on every call.
using DefaultFactory = std::function<FieldValue()>;

/// What a field is besides its name and its declared type.
struct FieldDetails {
    /// The default value, or what makes one, or neither.
    std::variant<std::monostate, ConfigValue, DefaultFactory> default_value = {};
    Metadata metadata = {};
};

/// One declared field of a record type.
class VELMORA_EXPORT FieldDecl {
public:
    FieldDecl(std::string name, DeclaredType type, FieldDetails details = {})
        : name_(std::move(name)), type_(std::move(type)), details_(std::move(details)) {}

    const std::string& name() const noexcept { return name_; }
    const DeclaredType& type() const noexcept { return type_; }
    const Metadata& metadata() const noexcept { return details_.metadata; }

    /// Null when the field has none; at most one of the two is not.
    const ConfigValue* default_value() const noexcept {
        return std::get_if<ConfigValue>(&details_.default_value);
    }
    const DefaultFactory* default_factory() const noexcept {
        return std::get_if<DefaultFactory>(&details_.default_value);
    }

private:
    std::string name_;
    DeclaredType type_;
    FieldDetails details_;
};

}  // namespace velmora::config
