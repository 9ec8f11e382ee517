// What a load has come to: every value of every key, and the ones that hold.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/app/fault.hpp"
#include "velmora/app/raw.hpp"
#include "velmora/config/record.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/utils/not_null.hpp"
#include "velmora/yaml/located.hpp"

namespace velmora::app {

/// A value that a source gives a key.
class VELMORA_EXPORT GivenValue {
public:
    /// For loads.
    GivenValue(std::shared_ptr<const std::string> source, yaml::Position position,
               config::ConfigValue value, std::string refusal, bool secret)
        : source_(std::move(source)),
          position_(position),
          value_(std::move(value)),
          refusal_(std::move(refusal)),
          secret_(secret) {}

    /// As messages name it: "/etc/webd.yaml", "$WEBD_PORT".
    const std::string& source() const noexcept { return *source_; }
    /// Both count from 1, the column in characters; 0 for what stands in no file.
    std::size_t line() const noexcept { return position_.line; }
    std::size_t column() const noexcept { return position_.column; }
    /// The source and the place in it, "/etc/webd.yaml:3:9", with nothing escaped.
    std::string place() const;

    bool accepted() const noexcept { return refusal_.empty(); }
    /// Why it is refused; empty when it is accepted.
    const std::string& refusal() const noexcept { return refusal_; }

    /// What the key makes of it; what is given, when it is refused. Throws ConfigKeyError for a value
    /// of a secret key, or one in which there may be a secret.
    const config::ConfigValue& value() const;
    /// The same of any key.
    const config::ConfigValue& reveal() const noexcept { return value_; }
    bool is_secret() const noexcept { return secret_; }

private:
    std::shared_ptr<const std::string> source_;
    yaml::Position position_;
    config::ConfigValue value_;
    std::string refusal_;
    bool secret_;
};

class Values;
namespace detail {
VELMORA_EXPORT const void* bound(const Values& values) noexcept;
}

/// The values of a configuration. Immutable: lists and mappings that come out of it are shared by
/// all its copies and must not be changed. Copying is cheap.
class VELMORA_EXPORT Values {
public:
    /// The value of the key with this label. Throws ConfigKeyError when there is no such key, and for
    /// a secret one.
    const config::ConfigValue& operator[](std::string_view label) const&;
    config::ConfigValue operator[](std::string_view label) const&& { return (*this)[label]; }

    /// The value of a key as a `T`, as `config::ConfigValue::get` reads it; throws as `operator[]`
    /// does, too.
    template <class T>
    T get(std::string_view label) const {
        return (*this)[label].get<T>();
    }

    /// The value of any key, secret ones included. Throws ConfigKeyError when there is no such key.
    const config::ConfigValue& reveal(std::string_view label) const&;
    config::ConfigValue reveal(std::string_view label) const&& { return reveal(label); }

    /// The display form of a value; "(secret)" for that of a secret key.
    std::string shown(std::string_view label) const;

    /// All values that the key is given, the strongest first. The first that is accepted holds; when
    /// none is, the default does. Throws ConfigKeyError when there is no such key.
    const std::vector<GivenValue>& given(std::string_view label) const&;
    std::vector<GivenValue> given(std::string_view label) const&& { return given(label); }

    /// The one of these that holds, null for the default.
    const GivenValue* held(std::string_view label) const&;
    const GivenValue* held(std::string_view label) const&& = delete;

    /// A new record of the values of a section. Throws ConfigKeyError when there is no such section,
    /// and for one with secret keys.
    config::Record record(std::string_view section) const;
    /// The same of any section; the display form of the record shows its secrets.
    config::Record reveal_record(std::string_view section) const;

    /// What is given of a raw section. Throws ConfigKeyError when there is no such section, and
    /// TypeError when it is not raw.
    const Raw& raw(std::string_view section) const&;
    Raw raw(std::string_view section) const&& { return raw(section); }

    /// All that was wrong: layers weakest first, in each the keys in the order of declaration, then
    /// unknown names by their place.
    const std::vector<Fault>& faults() const& noexcept;
    std::vector<Fault> faults() const&& { return faults(); }

    struct Data;

private:
    friend class Loading;
    friend class LiveValues;
    friend const void* detail::bound(const Values& values) noexcept;

    explicit Values(std::shared_ptr<const Data> data) : data_(std::move(data)) {}

    utils::NotNull<Data> data_;
};

/// Values that cannot come into effect. Its message has a line for every fault.
class VELMORA_EXPORT LoadError : public ValueError {
public:
    explicit LoadError(Values values);

    /// All that were found, warnings and advice included.
    const std::vector<Fault>& faults() const noexcept { return values_.faults(); }

    /// The values as far as they are known, to be explained: each key has that which would hold if
    /// nothing else were wrong.
    const Values& values() const noexcept { return values_; }

private:
    Values values_;
};

}  // namespace velmora::app
