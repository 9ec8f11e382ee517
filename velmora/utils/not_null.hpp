// Shared ownership of a constant object that is always there.
#pragma once

#include <memory>
#include <utility>

#include "velmora/utils/errors.hpp"

namespace velmora::utils {

/// A shared pointer that is never null. A move copies it, so what holds one can be shown and
/// compared even after it was moved from.
template <class T>
class NotNull {
public:
    /// Throws TypeError when `pointer` is null.
    explicit NotNull(std::shared_ptr<const T> pointer) : pointer_(std::move(pointer)) {
        if (pointer_ == nullptr) throw TypeError("null where an object must be given");
    }
    NotNull(const NotNull&) noexcept = default;
    NotNull& operator=(const NotNull&) noexcept = default;
    ~NotNull() = default;

    const T& operator*() const noexcept { return *pointer_; }
    const T* operator->() const noexcept { return pointer_.get(); }
    const std::shared_ptr<const T>& share() const noexcept { return pointer_; }
    const T* get() const noexcept { return pointer_.get(); }

    /// One object equals itself, also where it holds NaN.
    friend bool operator==(const NotNull& a, const NotNull& b) {
        return a.pointer_ == b.pointer_ || *a == *b;
    }

private:
    std::shared_ptr<const T> pointer_;
};

}  // namespace velmora::utils
