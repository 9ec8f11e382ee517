// A list of values. Include value.hpp, which says what a value is.
#pragma once

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

#include "velmora/config/shared.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

class ConfigValue;
class List;

namespace detail {

template <class T>
concept MakesValue = std::convertible_to<T, ConfigValue>;

template <class T>
inline constexpr bool is_vector = false;
template <class T>
inline constexpr bool is_vector<std::vector<T>> = true;

/// One list or vector is no item, but all of them.
template <class T>
inline constexpr bool is_whole_list = std::same_as<T, List> || is_vector<T>;

template <class... Items>
concept ListItems = sizeof...(Items) > 0 &&
                    !(sizeof...(Items) == 1 &&
                      (is_whole_list<std::remove_cvref_t<Items>> && ...)) &&
                    (MakesValue<Items> && ...);

}  // namespace detail

/// A list of values. A handle: copies share one list, which `copy` does not. Once moved from, it
/// may only be assigned to or destroyed.
///
/// A list may contain itself, directly or through other lists and mappings. All that do so together
/// live as long as any of them is in use, even when they are taken out of each other later. Adding
/// a value to a list that has other handles takes a walk through all lists and mappings in that
/// value; where it leads back to the list, this is a change of every list and mapping on the way,
/// during which no other thread may use, copy or drop a handle of them.
class VELMORA_EXPORT List {
public:
    List();
    /// A list of these items. One list in braces is itself, as with every type, and one vector
    /// gives all items: a list of one list is List{ConfigValue(list)}.
    template <class... Items>
    requires detail::ListItems<Items...>
    explicit List(Items&&... items);
    template <detail::MakesValue T>
    explicit List(std::vector<T> items);

    std::size_t size() const noexcept;
    bool empty() const noexcept { return size() == 0; }
    const ConfigValue* begin() const noexcept;
    const ConfigValue* end() const noexcept;
    const ConfigValue& operator[](std::size_t index) const noexcept;

    void push_back(ConfigValue item);
    /// Replaces the item at `index`, which must exist.
    void set(std::size_t index, ConfigValue item);

    /// A new list of the same items; lists and mappings among them are shared.
    List copy() const;

    /// Whether both are handles of one list, so that a change to the one shows in the other.
    bool same_as(const List& other) const noexcept { return identity() == other.identity(); }
    /// An address that all handles of one list, and no others, have in common.
    const void* identity() const noexcept { return handle_.get(); }

    /// Whether the list may contain itself, directly or through others; false for most.
    bool may_contain_itself() const noexcept { return handle_.get()->was_on_circle(); }

    /// As ConfigValue's.
    VELMORA_EXPORT friend bool operator==(const List& a, const List& b);

private:
    friend class ConfigValue;
    class Data;

    explicit List(detail::Handle handle) noexcept : handle_(std::move(handle)) {}

    inline Data& data() const noexcept;

    detail::Handle handle_;
};

}  // namespace velmora::config
