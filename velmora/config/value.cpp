#include "velmora/config/value.hpp"

#include "velmora/utils/errors.hpp"

namespace velmora::config {

ConfigValue::ConfigValue(const Number& number) {
    if (const Integer* integer = number.if_integer()) {
        value_ = *integer;
    } else {
        value_ = *number.if_double();
    }
}

ConfigValue::ConfigValue(const char* text) {
    if (text != nullptr) value_ = std::string(text);
}

ConfigValue& ConfigValue::operator=(ConfigValue&& other) noexcept {
    value_ = std::exchange(other.value_, std::monostate{});
    return *this;
}

std::string_view ConfigValue::type_text() const noexcept {
    return visit(
        []<class Held>(const Held&) -> std::string_view { return detail::type_text<Held>; });
}

detail::Handle* ConfigValue::handle() noexcept {
    if (auto* list = std::get_if<List>(&value_)) return &list->handle_;
    if (auto* mapping = std::get_if<Mapping>(&value_)) return &mapping->handle_;
    return nullptr;
}

void detail::refuse(std::string_view wanted, const ConfigValue& got) {
    throw TypeError(
        std::string("expected ").append(wanted).append(", got ").append(got.type_text()));
}

}  // namespace velmora::config
