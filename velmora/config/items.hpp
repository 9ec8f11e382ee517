// What lists and mappings hold. Included by value.hpp.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "velmora/config/value.hpp"

namespace velmora::config {

struct Mapping::Entry {
    Entry(ConfigValue its_key, ConfigValue its_value)
        : key(std::move(its_key)), value(std::move(its_value)) {}

    ConfigValue key;
    ConfigValue value;
};

/// The items that a list is made of stand behind it in one block of memory, all others elsewhere.
class List::Data final : public detail::Shared {
public:
    /// Of what `item` returns for 0, 1 and so on below `size`.
    template <class Item>
    static detail::Handle make(std::size_t size, Item item) {
        return detail::Handle(new (Room{size}) Data(size, item));
    }
    static detail::Handle make(std::vector<ConfigValue> items) {
        return detail::Handle(new (Room{0}) Data(std::move(items)));
    }
    Data(const Data&) = delete;
    Data& operator=(const Data&) = delete;
    ~Data() override {
        if (elsewhere_.empty()) std::destroy_n(items_, size_);
    }

    ConfigValue* begin() const noexcept { return items_; }
    std::size_t size() const noexcept { return size_; }

    void push_back(ConfigValue item);

    // NOLINTNEXTLINE(misc-new-delete-overloads): made by the operator new below alone.
    static void operator delete(void* memory) { ::operator delete(memory); }

private:
    struct Room {
        std::size_t items;
    };

    // Delegates, so that an item that throws leaves an object to be destroyed.
    template <class Item>
    Data(std::size_t size, Item item) : Data(std::vector<ConfigValue>()) {
        items_ = static_cast<ConfigValue*>(static_cast<void*>(this + 1));
        for (; size_ < size; ++size_) new (items_ + size_) ConfigValue(item(size_));
    }
    explicit Data(std::vector<ConfigValue> items) noexcept
        : elsewhere_(std::move(items)), items_(elsewhere_.data()), size_(elsewhere_.size()) {}

    static void* operator new(std::size_t size, Room room) {
        static_assert(alignof(ConfigValue) <= alignof(Data));
        return ::operator new(size + room.items * sizeof(ConfigValue));
    }
    static void operator delete(void* memory, Room) { ::operator delete(memory); }

    detail::Handle* next_handle(std::size_t& position) noexcept override;

    std::vector<ConfigValue> elsewhere_;
    ConfigValue* items_;
    std::size_t size_;
};

List::Data& List::data() const noexcept {
    return static_cast<Data&>(*handle_.get());
}

inline std::size_t List::size() const noexcept {
    return data().size();
}
inline const ConfigValue* List::begin() const noexcept {
    return data().begin();
}
inline const ConfigValue* List::end() const noexcept {
    return data().begin() + data().size();
}
inline const ConfigValue& List::operator[](std::size_t index) const noexcept {
    return begin()[index];
}

/// What a mapping holds, beside what finds it.
struct Mapping::Entries : detail::Shared {
    std::vector<Entry> entries;
};

const Mapping::Entries& Mapping::entries() const noexcept {
    return static_cast<const Entries&>(*handle_.get());
}

inline std::size_t Mapping::size() const noexcept {
    return entries().entries.size();
}
inline const Mapping::Entry* Mapping::begin() const noexcept {
    return entries().entries.data();
}
inline const Mapping::Entry* Mapping::end() const noexcept {
    return std::to_address(entries().entries.end());
}

template <detail::MakesValue T>
List::List(std::vector<T> items)
    : handle_([&] {
          if constexpr (std::same_as<T, ConfigValue>) {
              return Data::make(std::move(items));
          } else {
              return Data::make(items.size(), [&](std::size_t i) -> ConfigValue {
                  return static_cast<T&&>(items[i]);
              });
          }
      }()) {}

template <class... Items>
requires detail::ListItems<Items...> List::List(Items&&... items)
    : handle_([&] {
          std::array<ConfigValue, sizeof...(Items)> made = {std::forward<Items>(items)...};
          return Data::make(made.size(),
                            [&](std::size_t i) -> ConfigValue&& { return std::move(made[i]); });
      }()) {}

}  // namespace velmora::config
