// What a load has come to: every value of every key, and the ones that hold.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/app/fault.hpp"
#include "velmora/app/raw.hpp"
#include "velmora/config/record.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/utils/not_null.hpp"

namespace velmora::app {

/// A value that a source gives a key.
struct GivenValue {
    /// As messages name it: "/etc/webd.yaml", "$WEBD_PORT".
    std::shared_ptr<const std::string> source;
    /// Both count from 1, the column in characters; 0 for what stands in no file.
    std::size_t line = 0;
    std::size_t column = 0;
    /// What the key makes of it; what is given, when it is refused.
    config::ConfigValue value = {};
    /// Why it is refused; empty when it is accepted.
    std::string refusal = {};

    bool accepted() const noexcept { return refusal.empty(); }
    /// The source and the place in it, "/etc/webd.yaml:3:9", with nothing escaped.
    VELMORA_EXPORT std::string place() const;
};

class Values;
namespace detail {
VELMORA_EXPORT const void* bound(const Values& values) noexcept;
}

/// The values of a configuration. Immutable: lists and mappings that come out of it are shared by
/// all its copies and must not be changed. Copying is cheap.
class VELMORA_EXPORT Values {
public:
    /// The value of the key with this label. Throws ConfigKeyError when there is no such key.
    const config::ConfigValue& operator[](std::string_view label) const&;
    config::ConfigValue operator[](std::string_view label) const&& { return (*this)[label]; }

    /// The value of a key as a `T`, as `config::ConfigValue::get` reads it.
    template <class T>
    T get(std::string_view label) const {
        return (*this)[label].get<T>();
    }

    /// All values that the key is given, the strongest first. The first that is accepted holds; when
    /// none is, the default does. Throws ConfigKeyError when there is no such key.
    const std::vector<GivenValue>& given(std::string_view label) const&;
    std::vector<GivenValue> given(std::string_view label) const&& { return given(label); }

    /// The one of these that holds, null for the default.
    const GivenValue* held(std::string_view label) const&;
    const GivenValue* held(std::string_view label) const&& = delete;

    /// A new record of the values of a section. Throws ConfigKeyError when there is no such section.
    config::Record record(std::string_view section) const;

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

}  // namespace velmora::app
