// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>
#include <utility>

namespace kivo {

// Owns a file descriptor and closes it, or holds none (-1), as after a call that failed.
class Descriptor {
public:
    explicit Descriptor(int value = -1) : value_(value) {}
    Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Descriptor() { reset(); }

    int get() const { return value_; }
    explicit operator bool() const { return value_ >= 0; }
    // Closes it before its owner goes.
    void reset() {
        if (value_ >= 0)
            close(std::exchange(value_, -1));
    }

private:
    int value_;
};

} // namespace kivo
