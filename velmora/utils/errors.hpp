// The kinds of failure, split by what whoever catches them does differently.
#pragma once

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "velmora/utils/export.hpp"

namespace velmora {

/// The text of an error in full: `what()` ends at its first NUL character.
class VELMORA_EXPORT Message {
public:
    explicit Message(std::string text)
        : text_(std::make_shared<const std::string>(std::move(text))) {}

    const std::string& message() const noexcept { return *text_; }

protected:
    ~Message() = default;

private:
    std::shared_ptr<const std::string> text_;  // Shared: copying an exception must not throw.
};

/// A value of a suitable type that has no acceptable reading.
class VELMORA_EXPORT ValueError : public std::invalid_argument, public Message {
public:
    explicit ValueError(const std::string& text) : std::invalid_argument(text), Message(text) {}
};

/// A value, a field or a declared type of the wrong type.
class VELMORA_EXPORT TypeError : public std::logic_error, public Message {
public:
    explicit TypeError(const std::string& text) : std::logic_error(text), Message(text) {}
};

/// A number too large for what it must become.
class VELMORA_EXPORT OverflowError : public std::overflow_error, public Message {
public:
    explicit OverflowError(const std::string& text) : std::overflow_error(text), Message(text) {}
};

/// The text of any error, in full where it has one.
inline std::string message_of(const std::exception& error) {
    const auto* own = dynamic_cast<const Message*>(&error);
    return own != nullptr ? own->message() : error.what();
}

}  // namespace velmora
