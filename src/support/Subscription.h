// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <utility>

namespace kivo {

// The right to be called. Destroying or cancelling it ends that right: the callback is not called afterwards,
// not even by a notification that is already running. Move-only; an empty one cancels nothing.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> onCancel) : onCancel_(std::move(onCancel)) {}
    Subscription(Subscription&& other) noexcept : onCancel_(std::exchange(other.onCancel_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            cancel();
            onCancel_ = std::exchange(other.onCancel_, nullptr);
        }
        return *this;
    }
    ~Subscription() { cancel(); }

    void cancel() {
        if (auto onCancel = std::exchange(onCancel_, nullptr))
            onCancel();
    }
    explicit operator bool() const { return static_cast<bool>(onCancel_); }

private:
    std::function<void()> onCancel_;
};

} // namespace kivo
