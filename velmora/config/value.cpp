#include "velmora/config/value.hpp"

#include "velmora/utils/errors.hpp"

namespace velmora::config {

ConfigValue::ConfigValue(const Number& number) {
    if (const Integer* integer = number.if_integer()) {
        hold<Integer>(*integer);
    } else {
        hold<double>(*number.if_double());
    }
}

ConfigValue::ConfigValue(const char* text) {
    if (text != nullptr) hold<std::string>(text);
}

void ConfigValue::hold_owned(const ConfigValue& other) {
    if (other.type_ == Type::text) {
        hold<std::string>(other.held_.text);
    } else if (other.type_ == Type::list) {
        hold<List>(other.held_.list);
    } else {
        hold<Mapping>(other.held_.mapping);
    }
}

void ConfigValue::hold_owned(ConfigValue&& other) noexcept {
    if (other.type_ == Type::text) {
        hold<std::string>(std::move(other.held_.text));
    } else if (other.type_ == Type::list) {
        hold<List>(std::move(other.held_.list));
    } else {
        hold<Mapping>(std::move(other.held_.mapping));
    }
}

void ConfigValue::destroy_owned() noexcept {
    if (type_ == Type::text) {
        std::destroy_at(&held_.text);
    } else if (type_ == Type::list) {
        std::destroy_at(&held_.list);
    } else {
        std::destroy_at(&held_.mapping);
    }
}

ConfigValue& ConfigValue::operator=(ConfigValue&& other) noexcept {
    ConfigValue taken(std::move(other));
    const ConfigValue replaced(std::move(*this));  // Last to go: `other` may be a part of it.
    hold_that_of(std::move(taken));
    return *this;
}

std::string_view ConfigValue::type_text() const noexcept {
    return visit(
        []<class Held>(const Held&) -> std::string_view { return detail::type_text<Held>; });
}

detail::Handle* ConfigValue::handle() noexcept {
    if (type_ == Type::list) return &held_.list.handle_;
    if (type_ == Type::mapping) return &held_.mapping.handle_;
    return nullptr;
}

void detail::refuse(std::string_view wanted, const ConfigValue& got) {
    throw TypeError(
        std::string("expected ").append(wanted).append(", got ").append(got.type_text()));
}

}  // namespace velmora::config
