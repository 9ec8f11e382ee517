// A file descriptor that is closed at the end.
#pragma once

#include <utility>

#include <unistd.h>

class Descriptor {
public:
    explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int get() const noexcept { return descriptor_; }
    bool is_open() const noexcept { return descriptor_ != -1; }
    void close() noexcept {
        if (is_open()) ::close(std::exchange(descriptor_, -1));
    }

private:
    int descriptor_;
};
