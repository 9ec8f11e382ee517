#include "velmora/config/list.hpp"

#include "velmora/config/value.hpp"

namespace velmora::config {

class List::Data : public detail::Shared {
public:
    std::vector<ConfigValue> items;

private:
    detail::Handle* next_handle(std::size_t& position) noexcept override {
        while (position < items.size()) {
            if (detail::Handle* handle = items[position++].handle()) return handle;
        }
        return nullptr;
    }
};

List::List() : handle_(new Data) {}

List::Data& List::data() const noexcept {
    return static_cast<Data&>(*handle_.get());
}

void List::take(std::vector<ConfigValue> items) noexcept {
    data().items = std::move(items);
}

std::size_t List::size() const noexcept {
    return data().items.size();
}

const ConfigValue* List::begin() const noexcept {
    return data().items.data();
}

const ConfigValue* List::end() const noexcept {
    return begin() + size();
}

const ConfigValue& List::operator[](std::size_t index) const noexcept {
    return data().items[index];
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
