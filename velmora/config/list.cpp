#include "velmora/config/list.hpp"

#include "velmora/config/value.hpp"

namespace velmora::config {

detail::Handle* List::Data::next_handle(std::size_t& position) noexcept {
    while (position < items.size()) {
        if (detail::Handle* handle = items[position++].handle()) return handle;
    }
    return nullptr;
}

List::List() : handle_(new Data) {}

void List::take(std::vector<ConfigValue> items) noexcept {
    data().items = std::move(items);
}

void List::push_back(ConfigValue item) {
    Data& all = data();
    detail::Adding adding(all, item.handle());
    all.items.push_back(std::move(item));
    adding.finish(all.items.back().handle());
}

void List::set(std::size_t index, ConfigValue item) {
    Data& all = data();
    detail::Adding adding(all, item.handle());
    std::swap(all.items[index], item);
    adding.finish(all.items[index].handle());
}

List List::copy() const {
    List result;
    result.data().items = data().items;
    return result;
}

}  // namespace velmora::config
