#include "velmora/config/list.hpp"

#include <algorithm>
#include <iterator>
#include <memory>

#include "velmora/config/value.hpp"

namespace velmora::config {

detail::Handle* List::Data::next_handle(std::size_t& position) noexcept {
    while (position < size_) {
        if (detail::Handle* handle = items_[position++].handle()) return handle;
    }
    return nullptr;
}

void List::Data::push_back(ConfigValue item) {
    if (elsewhere_.empty()) {
        elsewhere_.reserve(std::max(2 * size_, size_ + 1));
        elsewhere_.assign(std::move_iterator(items_), std::move_iterator(items_ + size_));
        std::destroy_n(items_, size_);
    }
    elsewhere_.push_back(std::move(item));
    items_ = elsewhere_.data();
    size_ = elsewhere_.size();
}

List::List() : handle_(Data::make(std::vector<ConfigValue>())) {}

void List::push_back(ConfigValue item) {
    Data& all = data();
    detail::Adding adding(all, item.handle());
    all.push_back(std::move(item));
    adding.finish(all.begin()[all.size() - 1].handle());
}

void List::set(std::size_t index, ConfigValue item) {
    Data& all = data();
    detail::Adding adding(all, item.handle());
    ConfigValue& place = all.begin()[index];
    std::swap(place, item);
    adding.finish(place.handle());
}

List List::copy() const {
    const ConfigValue* items = begin();
    return List(
        Data::make(size(), [items](std::size_t i) -> const ConfigValue& { return items[i]; }));
}

}  // namespace velmora::config
